#include "Programs/Window/ZoneWatch.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

TEST(ZoneWatch, noticesAnotherZone) {
    const TemporaryFolder folder;
    const auto file = folder.path() / "localtime";
    ZoneWatch watch(file);
    EXPECT_FALSE(watch.hasChanged()) << "there is none";
    fs::create_symlink("Berlin", file);
    EXPECT_TRUE(watch.hasChanged());
    EXPECT_FALSE(watch.hasChanged());
    const auto next = folder.path() / "next";
    fs::create_symlink("Tokyo", next);
    fs::rename(next, file); // as the system does it
    EXPECT_TRUE(watch.hasChanged());
    EXPECT_FALSE(watch.hasChanged());
    fs::remove(file);
    EXPECT_TRUE(watch.hasChanged());
}

} // namespace
} // namespace kestrio
