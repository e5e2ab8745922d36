#include "Kestrio/Activity/ScreenInspector.h"
#include "Kestrio/Platform/Testing/ScriptedMedia.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

namespace kestrio {
namespace {

const Rectangle mainDisplay{0, 0, 1000, 800};
const Rectangle secondDisplay{1000, 0, 1000, 800};

StackedWindow window(pid_t process, const Rectangle& bounds) {
    return {process, bounds};
}

std::vector<ScreenWindow> visible(const std::vector<StackedWindow>& windows,
                                  const std::vector<Rectangle>& displays = {mainDisplay, secondDisplay}) {
    return ScreenInspector::visibleWindows({displays, windows});
}

TEST(ScreenInspector, whatIsNothingToLookAtIsNotListed) {
    const struct {
        const char* what;
        StackedWindow window;
        bool isListed;
    } rows[] = {
        {"just large enough", {1, {10, 10, 200, 150}}, true},
        {"199 points wide", {1, {10, 10, 199, 150}}, false},
        {"a hair too narrow", {1, {10, 10, 199.999, 150}}, false},
        {"149 points high", {1, {10, 10, 200, 149}}, false},
        {"without a process", {std::nullopt, {10, 10, 400, 300}}, false},
        {"above the normal layer", {1, {10, 10, 400, 300}, 1, 3}, false},
        {"below the normal layer", {1, {10, 10, 400, 300}, 1, -1}, false},
        {"invisible", {1, {10, 10, 400, 300}, 0}, false},
        {"at the limit of visible", {1, {10, 10, 400, 300}, 0.1}, false},
        {"hardly visible", {1, {10, 10, 400, 300}, 0.11}, true},
        {"beside all displays", {1, {3000, 10, 400, 300}}, false},
        {"touching a display from outside", {1, {2000, 10, 400, 300}}, false},
        {"with one column on a display", {1, {1999, 10, 400, 300}}, true},
        {"above all displays", {1, {10, -300, 400, 300}}, false},
        {"without an area", {1, {10, 10, 0, 0}}, false},
    };
    for (const auto& row : rows)
        EXPECT_EQ(visible({row.window}).size(), row.isListed ? 1U : 0U) << row.what;
}

TEST(ScreenInspector, listsProcessAndWholeBounds) {
    const Rectangle bounds{-50, -20, 400, 300};
    EXPECT_EQ(visible({window(7, bounds)}), (std::vector<ScreenWindow>{{7, bounds, true}}));
}

TEST(ScreenInspector, ofTwoStackedWindowsOnlyTheFrontOneIsInFront) {
    const auto result = visible({window(1, {10, 10, 400, 300}), window(2, {20, 20, 400, 300})});
    ASSERT_EQ(result.size(), 2U);
    EXPECT_EQ(result[0].pid, 1);
    EXPECT_TRUE(result[0].isFrontOnDisplay);
    EXPECT_EQ(result[1].pid, 2);
    EXPECT_FALSE(result[1].isFrontOnDisplay);
}

TEST(ScreenInspector, eachDisplayHasItsOwnFrontWindow) {
    const auto result =
        visible({window(1, {10, 10, 400, 300}), window(2, {1010, 10, 400, 300}), window(3, {1020, 10, 400, 300})});
    ASSERT_EQ(result.size(), 3U);
    EXPECT_TRUE(result[0].isFrontOnDisplay);
    EXPECT_TRUE(result[1].isFrontOnDisplay);
    EXPECT_FALSE(result[2].isFrontOnDisplay);
}

TEST(ScreenInspector, whatIsNotListedClaimsNoDisplay) {
    const auto result = visible({window(1, {10, 10, 100, 100}), window(2, {20, 20, 400, 300})});
    ASSERT_EQ(result.size(), 1U);
    EXPECT_TRUE(result[0].isFrontOnDisplay);
}

TEST(ScreenInspector, aWindowBelongsToTheDisplayWithTheLargestPartOfIt) {
    // 100 points on the left, 300 on the right: it is in front there, and leaves the left display to the next one.
    const auto result = visible({window(1, {900, 10, 400, 300}), window(2, {10, 10, 400, 300})});
    ASSERT_EQ(result.size(), 2U);
    EXPECT_TRUE(result[0].isFrontOnDisplay);
    EXPECT_TRUE(result[1].isFrontOnDisplay);
}

TEST(ScreenInspector, onATieTheFirstDisplayHasTheWindow) {
    const auto result =
        visible({window(1, {800, 10, 400, 300}), window(2, {10, 10, 400, 300}), window(3, {1100, 10, 400, 300})});
    ASSERT_EQ(result.size(), 3U);
    EXPECT_TRUE(result[0].isFrontOnDisplay);
    EXPECT_FALSE(result[1].isFrontOnDisplay) << "the first display was claimed";
    EXPECT_TRUE(result[2].isFrontOnDisplay);
}

TEST(ScreenInspector, aWindowWithATenthOfItselfOnADisplayDoesNotClaimIt) {
    // A tenth on the second display, and the rest on none.
    const auto sliver = window(1, {1960, 10, 400, 300});
    auto result = visible({sliver});
    ASSERT_EQ(result.size(), 1U);
    EXPECT_FALSE(result[0].isFrontOnDisplay);
    result = visible({sliver, window(2, {1100, 10, 400, 300})});
    ASSERT_EQ(result.size(), 2U);
    EXPECT_FALSE(result[0].isFrontOnDisplay);
    EXPECT_TRUE(result[1].isFrontOnDisplay) << "the sliver claimed the display";
}

TEST(ScreenInspector, aFifthOfAWindowIsEnoughToClaimADisplay) {
    EXPECT_TRUE(visible({window(1, {1920, 0, 400, 300})})[0].isFrontOnDisplay);
    EXPECT_FALSE(visible({window(1, {1921, 0, 400, 300})})[0].isFrontOnDisplay);
}

TEST(ScreenInspector, withoutDisplaysNothingIsListed) {
    EXPECT_TRUE(visible({window(1, {10, 10, 400, 300})}, {}).empty());
}

TEST(ScreenInspector, withoutAnAnswerNothingIsListed) {
    ScriptedScreens screens;
    EXPECT_TRUE(ScreenInspector(screens).visibleWindows().empty());
    screens.screens = {{mainDisplay}, {window(1, {10, 10, 400, 300})}};
    EXPECT_EQ(ScreenInspector(screens).visibleWindows().size(), 1U);
    EXPECT_EQ(screens.asked, 2);
}

TEST(ScreenInspector, whateverStandsOnTheScreensTheOrderStaysAndNoDisplayHasTwoFronts) {
    rc::check([] {
        ScreenLayout layout;
        const auto number = [](int from, int to) { return static_cast<double>(*rc::gen::inRange(from, to)); };
        const auto rectangle = [&] {
            return Rectangle{number(-500, 2500), number(-500, 1500), number(0, 900), number(0, 900)};
        };
        for (int i = 0, count = *rc::gen::inRange(0, 4); i < count; ++i)
            layout.displays.push_back(rectangle());
        for (int i = 0, count = *rc::gen::inRange(0, 12); i < count; ++i)
            layout.windows.push_back({pid_t{i}, rectangle(), number(0, 11) / 10, *rc::gen::inRange(-1, 2)});
        std::size_t fronts = 0;
        pid_t last = -1;
        for (const auto& one : ScreenInspector::visibleWindows(layout)) {
            RC_ASSERT(one.pid > last);
            last = one.pid;
            fronts += one.isFrontOnDisplay;
        }
        RC_ASSERT(fronts <= layout.displays.size());
    });
}

} // namespace
} // namespace kestrio
