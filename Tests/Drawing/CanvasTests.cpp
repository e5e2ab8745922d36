#include "Kestrio/Drawing/Canvas.h"

#include <cmath>
#include <gtest/gtest.h>
#include <numbers>

namespace kestrio {
namespace {

constexpr auto white = colour(0xffffff);

/// How much of each pixel is covered, in percent, row by row.
std::vector<int> covered(int side, const Path& path) {
    Canvas canvas(side);
    canvas.fill(path, white);
    std::vector<int> result;
    for (const auto pixel : canvas.pixels())
        result.push_back(static_cast<int>(std::lround((pixel >> 24) / 2.55)));
    return result;
}

double area(int side, const Path& path) {
    double sum = 0;
    for (const int percent : covered(side, path))
        sum += percent;
    return sum / 100;
}

Path box(double left, double top, double right, double bottom) {
    return Path().add({{left, top}, {right, top}, {right, bottom}, {left, bottom}});
}

TEST(Canvas, isTransparentAtFirst) {
    EXPECT_EQ(Canvas(2).pixels(), std::vector<std::uint32_t>(4, 0));
}

TEST(Canvas, pixelsAreCoveredByTheirShare) {
    EXPECT_EQ(covered(3, box(1, 1, 2, 2)), (std::vector<int>{0, 0, 0, 0, 100, 0, 0, 0, 0}));
    EXPECT_EQ(covered(2, box(0.5, 0, 2, 1)), (std::vector<int>{50, 100, 0, 0}));
    EXPECT_EQ(covered(2, box(0, 0.25, 2, 1)), (std::vector<int>{75, 75, 0, 0}));
    EXPECT_EQ(covered(2, box(0.5, 0.5, 1.5, 1.5)), (std::vector<int>{25, 25, 25, 25}));
    EXPECT_EQ(covered(2, Path().add({{0, 0}, {2, 0}, {0, 2}})), (std::vector<int>{100, 50, 50, 0}));
}

TEST(Canvas, whatLiesOutsideIsLeftOut) {
    EXPECT_EQ(covered(2, box(-5, -5, 1, 9)), (std::vector<int>{100, 0, 100, 0}));
    EXPECT_EQ(covered(2, box(-5, -5, -1, -1)), (std::vector<int>{0, 0, 0, 0}));
    EXPECT_EQ(covered(2, Path()), (std::vector<int>{0, 0, 0, 0}));
    EXPECT_EQ(covered(2, Path().add({{0, 0}, {2, 2}})), (std::vector<int>{0, 0, 0, 0})) << "a line has no inside";
}

TEST(Canvas, overlappingShapesCoverOnceAndTheOtherWayRoundCutsOut) {
    EXPECT_EQ(covered(2, box(0, 0, 1, 1).add(box(0, 0, 1, 1))), (std::vector<int>{100, 0, 0, 0}));
    const auto hole = Path().add({{0, 0}, {0, 1}, {1, 1}, {1, 0}});
    EXPECT_EQ(covered(2, box(0, 0, 2, 2).add(hole)), (std::vector<int>{0, 100, 100, 100}));
}

TEST(Canvas, coloursLieOverOneAnother) {
    Canvas canvas(1);
    canvas.fill(box(0, 0, 1, 1), colour(0xff0000));
    EXPECT_EQ(canvas.pixels()[0], 0xffff0000);
    canvas.fill(box(0, 0, 0.5, 1), colour(0x0000ff));
    EXPECT_EQ(canvas.pixels()[0], 0xff800080);
    canvas.fill(box(0, 0, 1, 1), colour(0x00ff00, 0));
    EXPECT_EQ(canvas.pixels()[0], 0xff800080);
}

TEST(Canvas, colourIsNotMultipliedWithTheAlpha) {
    Canvas canvas(1);
    canvas.fill(box(0, 0, 0.5, 1), colour(0x204060));
    EXPECT_EQ(canvas.pixels()[0], 0x80204060);
    canvas.erase(box(0, 0, 1, 0.5));
    EXPECT_EQ(canvas.pixels()[0], 0x40204060);
    canvas.erase(box(0, 0, 1, 1));
    EXPECT_EQ(canvas.pixels()[0], 0U);
}

TEST(Canvas, aGradientRunsFromTheTopOfThePictureToItsBottom) {
    Canvas canvas(2);
    canvas.fill(box(0, 0, 1, 2), colour(0x000000), colour(0x0000ff));
    EXPECT_EQ(canvas.pixels(), (std::vector<std::uint32_t>{0xff000040, 0, 0xff0000bf, 0}));
}

TEST(Path, circlesAndRoundedBoxesHaveTheirArea) {
    EXPECT_NEAR(area(32, circle({16, 16}, 10)), 100 * std::numbers::pi, 2);
    EXPECT_NEAR(area(32, roundedRectangle({2, 2}, {30, 22}, 4)), 28 * 20 - (4 - std::numbers::pi) * 16, 1);
}

TEST(Path, aLineIsStrokedWithARoundNib) {
    EXPECT_NEAR(area(32, stroked({{6, 16}, {26, 16}}, 4)), 20 * 4 + 4 * std::numbers::pi, 1);
    EXPECT_NEAR(area(32, stroked({{16, 16}}, 8)), 16 * std::numbers::pi, 1) << "a point is a dot";
    EXPECT_NEAR(area(32, stroked({{6, 6}, {6, 6}, {16, 16}, {6, 16}}, 0)), 0, 0.01);
}

TEST(Path, isPlacedByScaleAndOffset) {
    const auto placed = box(0, 0, 1, 1).placed(2, {3, 4});
    EXPECT_EQ(placed.contours(), (std::vector<Contour>{{{3, 4}, {5, 4}, {5, 6}, {3, 6}}}));
}

TEST(Path, isReadFromSVG) {
    const auto path = pathFromSVG("M1 2 L3,4 L 5 -6.5Z M0 0 L1 0 L1 1");
    EXPECT_EQ(path.contours(), (std::vector<Contour>{{{1, 2}, {3, 4}, {5, -6.5}}, {{0, 0}, {1, 0}, {1, 1}}}));
    const auto curve = pathFromSVG("M0 0 C0 10 10 10 10 0 Z");
    ASSERT_EQ(curve.contours().size(), 1U);
    EXPECT_EQ(curve.contours()[0].back(), (DrawingPoint{10, 0}));
    EXPECT_NEAR(area(12, curve), 60, 0.5);
    for (const char* text : {"", "Z", "L1 1", "M", "M1", "C1 1 2 2 3 3", "M0 0 Q1 1 2 2", "M0 0 C1 1 2", "nonsense"})
        EXPECT_TRUE(pathFromSVG(text).contours().empty()) << text;
}

TEST(Pen, arcsGoClockwiseOrBack) {
    const auto end = [](double turns) { return Pen({2, 1}).arc({1, 1}, turns).points().back(); };
    EXPECT_NEAR(end(0.25).x, 1, 1e-9);
    EXPECT_NEAR(end(0.25).y, 2, 1e-9);
    EXPECT_NEAR(end(-0.25).y, 0, 1e-9);
    EXPECT_NEAR(end(0.5).x, 0, 1e-9);
}

} // namespace
} // namespace kestrio
