#include "Kestrio/Views/Window/Panels/PanelPosition.h"

#include <gtest/gtest.h>
#include <ostream>

inline void PrintTo(const QPoint& point, std::ostream* out) {
    *out << point.x() << ',' << point.y();
}

namespace kestrio {
namespace {

constexpr QSize panel(300, 500);

/// A screen with a bar of so many pixels along one of its edges.
PanelScreen screen(QRect whole, QMargins bar, double scale = 1) {
    return {whole, whole.marginsRemoved(bar), scale};
}

const QRect full(0, 0, 1920, 1080);

TEST(PanelPosition, isBesideTheClickAtEachEdge) {
    const struct {
        const char* what;
        QMargins bar;
        QPoint click;
        QPoint expected;
    } rows[] = {
        {"below a bar at the top", {0, 28, 0, 0}, {1500, 14}, {1350, 36}},
        {"above a bar at the bottom", {0, 0, 0, 40}, {1500, 1060}, {1350, 532}},
        {"right of a bar at the left", {48, 0, 0, 0}, {24, 600}, {56, 350}},
        {"left of a bar at the right", {0, 0, 48, 0}, {1900, 600}, {1564, 350}},
        {"without a bar, at the top", {}, {1500, 14}, {1350, 22}},
        {"in the corner, kept on the screen", {0, 28, 0, 0}, {1915, 14}, {1612, 36}},
        {"in the corner at the left", {0, 28, 0, 0}, {3, 14}, {8, 36}},
        {"at the bottom of a bar at the right", {0, 0, 48, 0}, {1900, 1060}, {1564, 572}},
        {"at the very corner the edge above counts", {0, 28, 0, 0}, {1919, 0}, {1612, 36}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(panelPlace(row.click, {screen(full, row.bar)})->position(panel), row.expected) << row.what;
}

TEST(PanelPosition, isOnTheClickedScreen) {
    const PanelScreen left = screen({0, 0, 1280, 1024}, {0, 28, 0, 0});
    const PanelScreen right = screen({1280, 0, 1920, 1080}, {0, 0, 0, 40});
    const PanelScreen below = screen({0, 1080, 1920, 1080}, {});
    const struct {
        const char* what;
        QPoint click;
        QPoint expected;
    } rows[] = {
        {"on the first", {1200, 14}, {972, 36}},  {"on the second", {3000, 1070}, {2850, 532}},
        {"below both", {900, 2150}, {750, 1642}}, {"between them, on the nearest", {1000, 1050}, {850, 516}},
        {"far outside", {-500, -500}, {8, 36}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(panelPlace(row.click, {left, right, below})->position(panel), row.expected) << row.what;
}

TEST(PanelPosition, countsInTheScreensOwnUnits) {
    // 3840 x 2160 pixels of which two make a unit, right of a plain one.
    const PanelScreen plain = screen({0, 0, 1920, 1080}, {});
    const PanelScreen sharp = screen({1920, 0, 1920, 1080}, {0, 32, 0, 0}, 2);
    EXPECT_EQ(panelPlace(QPoint(1920 + 2000, 30), {plain, sharp})->position(panel), QPoint(1920 + 1000 - 150, 40));
    EXPECT_EQ(panelPlace(QPoint(5700, 2000), {plain, sharp})->anchor, QPoint(1920 + 1890, 1000));
}

TEST(PanelPosition, withoutAClickIsWhereTheTrayMostLikelyIs) {
    const std::pair<QMargins, QPoint> rows[] = {
        {{0, 28, 0, 0}, {1612, 36}}, {{0, 0, 0, 40}, {1612, 532}}, {{0, 28, 0, 60}, {1612, 512}}, {{}, {1612, 8}}};
    for (const auto& [bar, expected] : rows)
        EXPECT_EQ(panelPlace(std::nullopt, {screen(full, bar)})->position(panel), expected)
            << bar.top() << bar.bottom();
}

TEST(PanelPosition, aPanelThatIsTooLargeBeginsAtTheTop) {
    const auto place = panelPlace(QPoint(1000, 1070), {screen(full, {0, 28, 0, 40})});
    EXPECT_EQ(place->position({300, 2000}), QPoint(850, 36));
    EXPECT_EQ(place->position({4000, 300}), QPoint(8, 732));
    EXPECT_EQ(place->room(), QSize(1904, 996));
}

TEST(PanelPosition, withoutAScreenThereIsNoPlace) {
    EXPECT_FALSE(panelPlace(QPoint(1, 1), {}));
}

} // namespace
} // namespace kestrio
