#include "Kestrio/Base/VirtualQueue.h"
#include "Kestrio/Platform/Linux/CategoryHints.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <thread>

namespace kestrio {
namespace {

std::string entry(const std::string& categories) {
    return "[Desktop Entry]\nType=Application\nName=A\nExec=a\nCategories=" + categories + "\n";
}

struct Bench {
    TemporaryFolder folder;
    VirtualTime time{Date(1'700'000'000)};
    CategoryHints hints{{folder.path()}, time, IdentityCatalogue::builtIn()};
};

TEST(CategoryHints, comeFromTheDesktopFileUnderAnyOfItsNames) {
    Bench bench;
    bench.folder.write("org.example.Player.desktop", entry("AudioVideo;Player;"));
    bench.folder.write("code_code.desktop", entry("Development;IDE;"));
    bench.folder.write("org.example.Thing.desktop", entry("Utility;"));
    EXPECT_EQ(bench.hints.category("org.example.Player"), "entertainment");
    EXPECT_EQ(bench.hints.category("com.microsoft.VSCode"), "development");
    EXPECT_EQ(bench.hints.category("org.example.Thing"), "other");
    EXPECT_EQ(bench.hints.category("org.example.absent"), std::nullopt);
    EXPECT_EQ(bench.hints.category(""), std::nullopt);
}

TEST(CategoryHints, followWhatIsInstalled) {
    Bench bench;
    EXPECT_EQ(bench.hints.category("org.example.Player"), std::nullopt);
    bench.folder.write("org.example.Player.desktop", entry("Game;"));
    bench.time.advance(Seconds(3));
    EXPECT_EQ(bench.hints.category("org.example.Player"), "entertainment");
}

TEST(CategoryHints, mayBeAskedFromSeveralThreads) {
    Bench bench;
    bench.folder.write("org.example.Player.desktop", entry("Game;"));
    const auto ask = [&] {
        for (int i = 0; i < 200; ++i) {
            EXPECT_EQ(bench.hints.category("org.example.Player"), "entertainment");
            EXPECT_EQ(bench.hints.category("org.example.n" + std::to_string(i)), std::nullopt);
        }
    };
    std::thread other(ask);
    ask();
    other.join();
}

} // namespace
} // namespace kestrio
