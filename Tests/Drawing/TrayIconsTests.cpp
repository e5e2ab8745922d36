#include "Kestrio/Drawing/Canvas.h"
#include "Kestrio/Drawing/Figures.h"
#include "Kestrio/Drawing/Symbols.h"
#include "Kestrio/Drawing/TrayIcons.h"
#include "Tests/Support/TemporaryFolder.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <set>

namespace kestrio {
namespace {

struct Colour {
    int red, green, blue, alpha;
};
Colour parts(std::uint32_t pixel) {
    const auto part = [pixel](int shift) { return static_cast<int>(pixel >> shift & 0xff); };
    return {part(16), part(8), part(0), part(24)};
}
bool isGreen(std::uint32_t pixel) {
    const auto c = parts(pixel);
    return c.green > c.red + 60 && c.green > c.blue + 60;
}
bool isRed(std::uint32_t pixel) {
    const auto c = parts(pixel);
    return c.red > c.green + 60 && c.red > c.blue + 60;
}
bool isAmber(std::uint32_t pixel) {
    const auto c = parts(pixel);
    return c.red > c.blue + 100 && c.green > c.blue + 60;
}
bool isInk(std::uint32_t pixel) {
    const auto c = parts(pixel);
    return std::min({c.red, c.green, c.blue}) > 200;
}

template <class Test>
std::size_t count(const TrayPixmap& pixmap, Test test) {
    return static_cast<std::size_t>(std::ranges::count_if(pixmap.pixels, test));
}
/// Of all pixels.
template <class Test>
double share(const TrayPixmap& pixmap, Test test) {
    return static_cast<double>(count(pixmap, test)) / static_cast<double>(pixmap.pixels.size());
}

MenuBarLabel label(TrackingState state, double minutes = 192, MenuBarSettings settings = {}) {
    return menuBarLabel(state, Seconds(60 * minutes), settings);
}

/// In how many pixels two pictures differ clearly.
std::size_t difference(const TrayPixmap& a, const TrayPixmap& b) {
    std::size_t differing = 0;
    for (std::size_t i = 0; i < a.pixels.size(); ++i) {
        const auto one = parts(a.pixels[i]);
        const auto other = parts(b.pixels[i]);
        differing += std::abs(one.red - other.red) + std::abs(one.green - other.green) > 160 ? 1 : 0;
    }
    return differing;
}

TEST(TrayIcon, comesInEverySize) {
    std::vector<int> sides;
    for (const auto& pixmap : trayIcon(label(TrackingState::tracking))) {
        sides.push_back(pixmap.side);
        EXPECT_EQ(pixmap.pixels.size(), static_cast<std::size_t>(pixmap.side * pixmap.side));
    }
    EXPECT_EQ(sides, (std::vector<int>{16, 22, 24, 32, 48, 64}));
}

TEST(TrayIcon, bringsAGroundOfItsOwnWithRoundCorners) {
    for (const int side : traySizes) {
        const auto pixmap = trayPixmap(label(TrackingState::tracking), side);
        const auto at = [&](int x, int y) { return parts(pixmap.pixels[static_cast<std::size_t>(y * side + x)]); };
        for (const auto& [x, y] :
             {std::pair(0, 0), std::pair(side - 1, 0), std::pair(0, side - 1), std::pair(side - 1, side - 1)})
            EXPECT_LT(at(x, y).alpha, 128) << side;
        EXPECT_EQ(at(side / 2, 0).alpha, 255) << side;
        EXPECT_LT(at(side / 2, 0).green, 110) << side << ": dark, so that it stands out of light bars";
    }
}

TEST(TrayIcon, theLightIsGreenWhileRecordingAndRedOtherwise) {
    for (const int side : traySizes)
        for (const bool hasTime : {true, false})
            for (const auto state : allTrackingStates) {
                const auto pixmap = trayPixmap(label(state, 192, {.showTime = hasTime}), side);
                const auto what = fmt::format("{} px, {}, time {}", side, rawValue(state), hasTime);
                const bool records = state == TrackingState::tracking;
                EXPECT_EQ(count(pixmap, isGreen) > 0, records) << what;
                EXPECT_EQ(count(pixmap, isRed) > 0, !records) << what;
                EXPECT_GT(share(pixmap, records ? isGreen : isRed), 0.02) << what;
                const auto without =
                    trayPixmap(label(state, 192, {.showTime = hasTime, .showActivityLight = false}), side);
                EXPECT_EQ(count(without, isGreen) + count(without, isRed), 0U) << what;
            }
}

TEST(TrayIcon, aPauseIsSeenWithAndWithoutTheTimeAndTheLight) {
    for (const bool hasTime : {true, false})
        for (const bool hasLight : {true, false}) {
            const MenuBarSettings settings{hasTime, hasLight};
            EXPECT_GE(difference(trayPixmap(label(TrackingState::paused, 192, settings), 22),
                                 trayPixmap(label(TrackingState::idle, 192, settings), 22)),
                      5U)
                << hasTime << hasLight;
        }
}

TEST(TrayIcon, everyMinuteLooksDifferent) {
    std::set<std::vector<std::uint32_t>> seen;
    for (int minutes = 0; minutes < 24 * 60; ++minutes)
        EXPECT_TRUE(seen.insert(trayPixmap(label(TrackingState::tracking, minutes), 22).pixels).second) << minutes;
}

TEST(TrayIcon, isLegibleBecauseNoTwoDigitsAreAlike) {
    const FigureSize smallest{9, 6, 1.4, 1};
    const auto drawn = [&](char digit) {
        Canvas canvas(12);
        canvas.fill(figures(std::string(1, digit), {1, 1}, smallest), colour(0xffffff));
        return TrayPixmap{12, canvas.pixels()};
    };
    for (char a = '0'; a <= '9'; ++a)
        for (char b = static_cast<char>(a + 1); b <= '9'; ++b) {
            std::size_t differing = 0;
            const auto one = drawn(a);
            const auto other = drawn(b);
            for (std::size_t i = 0; i < one.pixels.size(); ++i)
                differing += std::abs(parts(one.pixels[i]).alpha - parts(other.pixels[i]).alpha) > 110 ? 1 : 0;
            EXPECT_GE(differing, 3U) << a << " and " << b;
        }
}

TEST(TrayIcon, figuresStayInTheirBoxes) {
    for (const char c : std::string("0123456789hm%")) {
        const FigureSize size{9, 6, 1.4, 1};
        const std::string text(1, c);
        const double width = figuresWidth(text, size);
        EXPECT_EQ(width, std::round(width)) << c;
        const auto path = figures(text, {2, 3}, size);
        for (const auto& contour : path.contours())
            for (const auto& point : contour) {
                EXPECT_GE(point.x, 2 - 0.01) << c;
                EXPECT_LE(point.x, 2 + width + 0.01) << c;
                EXPECT_GE(point.y, 3 - 0.01) << c;
                EXPECT_LE(point.y, 12 + 0.01) << c;
            }
    }
    EXPECT_EQ(figuresWidth("", {}), 0);
    EXPECT_EQ(figuresWidth("x y", {}), 0) << "no figures";
    EXPECT_EQ(figuresWidth("00", {8, 5, 1.25, 1}), 11);
}

TEST(TrayIcon, noTimeIsTooLongForTheSmallest) {
    // The last column and row of pixels within the corners stay ground.
    for (const int side : traySizes)
        for (const double minutes : {0.0, 59.0, 60.0, 9 * 60 + 59.0, 23 * 60 + 59.0, 20 * 60 + 44.0}) {
            const auto pixmap = trayPixmap(label(TrackingState::tracking, minutes, {true, false}), side);
            for (int at = 0; at < side; ++at)
                for (const int index : {at * side + side - 1, (side - 1) * side + at})
                    EXPECT_FALSE(isInk(pixmap.pixels[static_cast<std::size_t>(index)])) << side << " " << minutes;
        }
}

TEST(SystemTrayIcon, showsTheImageTheFigureOrBoth) {
    const auto chip = [](SystemMenuLabel shown) { return trayPixmap(shown, 22); };
    const auto warning = "exclamationmark.triangle.fill";
    EXPECT_EQ(count(chip({"cpu", "42%"}), isAmber), 0U);
    EXPECT_GT(count(chip({warning, "42%"}), isAmber), 8U);
    EXPECT_GT(count(chip({warning, std::nullopt}), isAmber), 60U);
    EXPECT_GT(difference(chip({"cpu", "42%"}), chip({"cpu", std::nullopt})), 20U);
    EXPECT_GT(difference(chip({"cpu", "42%"}), chip({std::nullopt, "42%"})), 20U);
    std::set<std::vector<std::uint32_t>> seen;
    for (int percent = 0; percent <= 100; ++percent)
        for (const auto& parts : {SystemMenuParts{true, true}, SystemMenuParts{false, true}})
            EXPECT_TRUE(seen.insert(chip(systemMenuLabel(parts, percent / 100.0, {})).pixels).second) << percent;
}

TEST(Mark, isTheOneInTheProgramsIconAndInTheWindows) {
    for (const auto* file :
         {"Packaging/icons/dev.haldorvinter.Kestrio.svg", "Kestrio/Views/Design/Symbols/own/kestrio-mark.svg"})
        EXPECT_NE(fileText(std::string(KESTRIO_SOURCE "/") + file).find(symbols::markPath), std::string::npos) << file;
}

TEST(Mark, fillsItsBoxWithoutLeavingIt) {
    for (const auto& path : {symbols::mark(), symbols::chip(), symbols::warning(), symbols::pause()}) {
        ASSERT_FALSE(path.contours().empty());
        double left = symbols::box;
        double right = 0;
        for (const auto& contour : path.contours())
            for (const auto& point : contour) {
                left = std::min(left, point.x);
                right = std::max(right, point.x);
                EXPECT_TRUE(point.y >= 0 && point.y <= symbols::box);
            }
        EXPECT_GE(left, 0);
        EXPECT_LE(right, symbols::box);
        EXPECT_GE(right - left, symbols::box / 2);
    }
}

} // namespace
} // namespace kestrio
