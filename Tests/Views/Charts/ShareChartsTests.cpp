#include "Kestrio/Views/Charts/SparklineItem.h"
#include "Kestrio/Views/Charts/StackBarItem.h"
#include "Tests/Views/Charts/ChartBench.h"

namespace kestrio {
namespace {

using enum ActivityCategory;

CategoryStackBarValue barOf(std::vector<CategoryUsage> categories, double total) {
    return toVariant(categoryStackBar(categories, Seconds(total))).value<CategoryStackBarValue>();
}

TEST(StackBarItem, dividesItsWidthInTheOrderOfTheCategories) {
    ChartWindow window(220, 30);
    auto& item = window.add<StackBarItem>(QRectF(10, 10, 200, 10));
    item.setBar(barOf({{work, Seconds(50)}, {social, Seconds(30)}, {other, Seconds(20)}}, 100));
    const auto image = window.look();
    const auto at = [&](qreal x) { return ChartWindow::colorIn(image, 10 + x, 15); };
    EXPECT_TRUE(alike(at(50), window.palette.color(work)));
    EXPECT_TRUE(alike(at(97), window.palette.color(work)));
    EXPECT_TRUE(alike(at(102), window.palette.color(social)));
    EXPECT_TRUE(alike(at(130), window.palette.color(social)));
    EXPECT_TRUE(alike(at(180), window.palette.color(other)));
    EXPECT_TRUE(alike(at(198), window.palette.color(other)));
    EXPECT_TRUE(alike(at(205), Qt::white));
    const auto gap = 100 - 0.5 / image.devicePixelRatio();
    EXPECT_TRUE(alike(at(gap), Qt::white)) << "neighbours stay apart";
}

TEST(StackBarItem, beginsWhereReadingDoes) {
    ChartWindow window(200, 10);
    auto& item = window.add<StackBarItem>(QRectF(0, 0, 200, 10));
    item.setBar(barOf({{work, Seconds(75)}, {social, Seconds(25)}}, 100));
    item.setMirrored(true);
    EXPECT_TRUE(alike(window.colorAt(25, 5), window.palette.color(social)));
    EXPECT_TRUE(alike(window.colorAt(190, 5), window.palette.color(work)));
}

TEST(StackBarItem, withoutTimeIsAnEmptyTrack) {
    ChartWindow window(200, 10);
    auto& item = window.add<StackBarItem>(QRectF(0, 0, 200, 10));
    EXPECT_TRUE(alike(window.colorAt(100, 5), over(Qt::black, 0.08))) << "also without a value";
    item.setBar(barOf({{work, Seconds(0)}}, 0));
    EXPECT_TRUE(alike(window.colorAt(100, 5), over(Qt::black, 0.08)));
}

TEST(StackBarItem, smallPartsStayVisible) {
    ChartWindow window(200, 10);
    auto& item = window.add<StackBarItem>(QRectF(0, 0, 200, 10));
    item.setBar(barOf({{work, Seconds(9998)}, {social, Seconds(1)}, {other, Seconds(1)}}, 10'000));
    const auto image = window.look();
    EXPECT_TRUE(alike(ChartWindow::colorIn(image, 197, 5), window.palette.color(social)));
    EXPECT_TRUE(alike(ChartWindow::colorIn(image, 199, 5), window.palette.color(other)));
    EXPECT_TRUE(alike(ChartWindow::colorIn(image, 190, 5), window.palette.color(work)));
}

TEST(StackBarItem, widthsFillTheBarAndNoMore) {
    const std::vector<CategoryUsage> categories{{work, Seconds(9998)}, {social, Seconds(1)}, {other, Seconds(1)}};
    EXPECT_EQ(fittedWidths(categoryStackBar(categories, Seconds(10'000)), 200), (std::vector<double>{196, 2, 2}));
    EXPECT_EQ(fittedWidths(categoryStackBar(categories, Seconds(10'000)), 0), (std::vector<double>{2, 2, 2}));
    EXPECT_TRUE(fittedWidths({}, 200).empty());
}

TEST(SparklineItem, drawsALineThroughItsValues) {
    ChartWindow window(100, 40);
    auto& item = window.add<SparklineItem>(QRectF(0, 0, 100, 40));
    item.setColor(Qt::red);
    EXPECT_TRUE(alike(window.colorAt(50, 39), Qt::white)) << "nothing yet";
    item.setValues({1});
    EXPECT_TRUE(alike(window.colorAt(50, 39), Qt::white)) << "one value is no line";
    item.setLineWidth(4);
    item.setValues({1, 1, 1});
    EXPECT_TRUE(alike(window.colorAt(50, 1.5), Qt::red));
    EXPECT_TRUE(alike(window.colorAt(50, 30), over(Qt::red, 0.12))) << "the filling";
    item.setValues({0, 0});
    EXPECT_TRUE(alike(window.colorAt(50, 38), Qt::red)) << "whole also at the bottom";
    EXPECT_TRUE(alike(window.colorAt(50, 10), Qt::white));
    item.setLowest(-1);
    EXPECT_TRUE(alike(window.colorAt(50, 20), Qt::red));
    item.setHighest(0);
    EXPECT_TRUE(alike(window.colorAt(50, 1.5), Qt::red));
}

} // namespace
} // namespace kestrio
