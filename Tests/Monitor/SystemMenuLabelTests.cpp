#include "Kestrio/Monitor/SystemMenuLabel.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

using Level = SystemInsight::Level;

TEST(SystemMenuLabel, showsWhatThePersonWantsToSee) {
    EXPECT_EQ(systemMenuLabel({true, true}, 0.42, {}), (SystemMenuLabel{"cpu", "42%"}));
    EXPECT_EQ(systemMenuLabel({true, false}, 0.42, {}), (SystemMenuLabel{"cpu", std::nullopt}));
    EXPECT_EQ(systemMenuLabel({false, true}, 0.42, {}), (SystemMenuLabel{std::nullopt, "42%"}));
    EXPECT_EQ(systemMenuLabel({false, false}, 0.42, {}), SystemMenuLabel());
    EXPECT_TRUE(systemMenuLabel({false, false}, 0.42, {}).isHidden());
    EXPECT_FALSE(systemMenuLabel({false, true}, 0.42, {}).isHidden());
    EXPECT_FALSE(systemMenuLabel({true, false}, 0.42, {}).isHidden());
}

TEST(SystemMenuLabel, warnsByItsImage) {
    const std::pair<Level, const char*> rows[] = {{Level::good, "cpu"},
                                                  {Level::info, "cpu"},
                                                  {Level::warning, "exclamationmark.triangle.fill"},
                                                  {Level::critical, "exclamationmark.triangle.fill"}};
    for (const auto& [level, image] : rows) {
        const std::vector<SystemInsight> insights{{"x", level, "", ""}};
        EXPECT_EQ(systemMenuLabel({}, 0, insights).image, image) << static_cast<int>(level);
    }
}

TEST(SystemMenuLabel, keepsItsWidthBelowTenPercent) {
    const std::pair<double, const char*> rows[] = {{0, "\u20070%"},    {0.004, "\u20070%"}, {0.005, "\u20071%"},
                                                   {0.09, "\u20079%"}, {0.094, "\u20079%"}, {0.095, "10%"},
                                                   {0.5, "50%"},       {0.996, "100%"},     {1, "100%"}};
    for (const auto& [cpu, figure] : rows)
        EXPECT_EQ(menuFigure(cpu), figure) << cpu;
}

} // namespace
} // namespace kestrio
