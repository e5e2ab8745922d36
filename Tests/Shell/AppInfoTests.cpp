#include "Kestrio/Shell/AppInfo.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

HostFacts machine(std::uint64_t memory) {
    return {"Debian GNU/Linux 12 (bookworm), Linux 6.1.0", "AMD Ryzen 5 5600", memory};
}

TEST(AppInfo, theDiagnosticsAreThreeLines) {
    EXPECT_EQ(AppInfo::diagnostics(machine(std::uint64_t{32} << 30)),
              "Kestrio " + AppInfo::version() + " (" + AppInfo::build() +
                  ")\n"
                  "Debian GNU/Linux 12 (bookworm), Linux 6.1.0\n"
                  "AMD Ryzen 5 5600, 32 GB RAM");
}

TEST(AppInfo, memoryIsCutToWholeGibibytes) {
    struct Row {
        double gibibytes;
        const char* shown;
    };
    for (const auto& row : {Row{0, ", 0 GB RAM"}, Row{0.99, ", 0 GB RAM"}, Row{1, ", 1 GB RAM"},
                            Row{15.9, ", 15 GB RAM"}, Row{16, ", 16 GB RAM"}, Row{2048, ", 2048 GB RAM"}}) {
        const auto text = AppInfo::diagnostics(machine(static_cast<std::uint64_t>(row.gibibytes * 1'073'741'824)));
        EXPECT_TRUE(text.ends_with(row.shown)) << row.gibibytes << ": " << text;
    }
}

TEST(AppInfo, theBuildSaysItsVersion) {
    EXPECT_NE(AppInfo::version(), "");
    EXPECT_NE(AppInfo::build(), "");
    EXPECT_EQ(AppInfo::version().find_first_not_of("0123456789."), std::string::npos) << AppInfo::version();
}

} // namespace
} // namespace kestrio
