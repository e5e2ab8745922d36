#include "Kestrio/Shell/AppInfo.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

TEST(AppInfo, withoutTheBuildsWordThereAreFallbacks) {
    EXPECT_EQ(AppInfo::version(), "1.0.0");
    EXPECT_EQ(AppInfo::build(), "1");
    EXPECT_EQ(AppInfo::diagnostics({"System 1", "Chip", std::uint64_t{8} << 30}),
              "Kestrio 1.0.0 (1)\nSystem 1\nChip, 8 GB RAM");
}

} // namespace
} // namespace kestrio
