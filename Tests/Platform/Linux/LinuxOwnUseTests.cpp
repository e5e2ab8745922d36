#include "Kestrio/Platform/Linux/LinuxOwnUse.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace kestrio {
namespace {

constexpr auto stat = "77 (a program) S 1 1 1 0 -1 4194304 1234 55 66 77 120 30 8 9 20 0 12 0 5 53841920 5253 "
                      "18446744073709551615 1 1 0 0 0 0 0 4096 1256 0 0 0 17 1 0 0 0 0 0 0 0 0 0 0 0 0 0\n";

TEST(LinuxOwnUse, sumsUpEveryThreadsWakeUps) {
    const TemporaryFolder folder;
    folder.write("stat", stat);
    folder.write("status", "VmRSS:\t    12 kB\nvoluntary_ctxt_switches:\t5\n");
    folder.write("io", "read_bytes: 4096\nwrite_bytes: 8192\n");
    folder.write("task/77/status", "voluntary_ctxt_switches:\t5\n");
    folder.write("task/78/status", "voluntary_ctxt_switches:\t30\n");
    const auto ticks = static_cast<double>(sysconf(_SC_CLK_TCK));
    EXPECT_EQ(readOwnUse(folder.path()),
              (OwnUse{.cpu = Seconds(150 / ticks), .memory = 12 * 1024, .wakeups = 35, .bytesWritten = 8'192}));
}

TEST(LinuxOwnUse, goesOnWithoutWhatCannotBeReadBesidesTheTime) {
    const TemporaryFolder folder;
    EXPECT_EQ(readOwnUse(folder.path()), std::nullopt);
    folder.write("stat", "nonsense");
    EXPECT_EQ(readOwnUse(folder.path()), std::nullopt);
    folder.write("stat", stat);
    const auto use = readOwnUse(folder.path());
    ASSERT_TRUE(use);
    EXPECT_EQ(use->memory + use->wakeups + use->bytesWritten, 0u);
}

TEST(LinuxOwnUse, isReadOfThisVeryProgram) {
    const auto use = readOwnUse();
    ASSERT_TRUE(use);
    EXPECT_GT(use->memory, 0u);
}

} // namespace
} // namespace kestrio
