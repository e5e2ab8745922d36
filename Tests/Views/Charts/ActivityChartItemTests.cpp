#include "Kestrio/Views/Charts/ActivityChartItem.h"
#include "Kestrio/Views/Charts/UsageTrendItem.h"
#include "Tests/Views/Charts/ChartBench.h"

#include <QSignalSpy>

namespace kestrio {
namespace {

using enum ActivityCategory;

/// The chart of a day: half an hour each of two categories from nine, twenty minutes of one from eleven.
struct Shown {
    Shown() : window(640, 220), item(window.add<ActivityChartItem>(QRectF(10, 10, 620, 200))) {
        auto report = ActivityReport::empty(bench.day, Granularity::hour);
        report.buckets = {{bench.at(9), development, Seconds(1800)},
                          {bench.at(9), social, Seconds(1800)},
                          {bench.at(11), other, Seconds(1200)}};
        report.total = Seconds(4800);
        report.categories = {{development, Seconds(1800)}, {social, Seconds(1800)}, {other, Seconds(1200)}};
        value = activityChartValue(shared(std::move(report)), bench.calendar);
        item.setChart(value);
    }

    DateInterval at(int hours) const { return bench.calendar.hour(bench.at(hours)); }
    /// The middle of a column's part, in the window.
    QPointF middle(int hours, double from, double to) const {
        return item.geometry().part(at(hours), from, to).center() + QPointF(10, 10);
    }
    QColor colorAt(QPointF place) { return window.colorAt(place.x(), place.y()); }
    void pointAt(int hours) {
        const auto x = (item.geometry().x(at(hours).start) + item.geometry().x(at(hours).end)) / 2;
        window.pointAt(x + 10, 100);
    }

    PagesBench bench;
    ChartWindow window;
    ActivityChartItem& item;
    ActivityChartValue value;
};

TEST(ActivityChartItem, stacksTheCategoriesInTheirColors) {
    Shown shown;
    EXPECT_TRUE(alike(shown.colorAt(shown.middle(9, 0, 30)), shown.window.palette.color(development)));
    EXPECT_TRUE(alike(shown.colorAt(shown.middle(9, 30, 60)), shown.window.palette.color(social)));
    EXPECT_TRUE(alike(shown.colorAt(shown.middle(11, 0, 20)), shown.window.palette.color(other)));
    EXPECT_TRUE(alike(shown.colorAt(shown.middle(10, 5, 10)), Qt::white)) << "nothing was done";
    EXPECT_TRUE(alike(shown.colorAt(shown.middle(11, 30, 45)), Qt::white)) << "above the column";
}

TEST(ActivityChartItem, roundsTheTopsOfItsColumns) {
    Shown shown;
    const auto column = shown.item.geometry().column(shown.at(9), 60).translated(10, 10);
    const auto image = shown.window.look();
    const auto pixel = 0.5 / image.devicePixelRatio();
    const auto corner = ChartWindow::colorIn(image, column.left() + pixel, column.top() + pixel);
    EXPECT_FALSE(alike(corner, shown.window.palette.color(social)));
    EXPECT_TRUE(alike(ChartWindow::colorIn(image, column.left() + pixel, column.bottom() - 1 - pixel),
                      shown.window.palette.color(development)));
}

TEST(ActivityChartItem, drawsLinesAtItsNumbers) {
    Shown shown;
    const auto geometry = shown.item.geometry();
    const auto image = shown.window.look();
    const auto pixel = 0.5 / image.devicePixelRatio();
    const PixelGrid pixels(image.devicePixelRatio());
    for (const double value : {0.0, 15.0, 30.0, 45.0, 60.0}) {
        const auto y = pixels.snapped(geometry.y(value)) + 10 + pixel;
        EXPECT_TRUE(alike(ChartWindow::colorIn(image, geometry.area().left() + 12, y), shown.window.palette.grid()))
            << value;
        EXPECT_TRUE(alike(ChartWindow::colorIn(image, geometry.area().left() + 12, y + 2), Qt::white)) << value;
    }
}

TEST(ActivityChartItem, marksTheHourUnderThePointerAndFadesTheOthers) {
    Shown shown;
    EXPECT_FALSE(shown.item.isMarked());
    shown.pointAt(9);
    ASSERT_TRUE(shown.item.isMarked());
    EXPECT_EQ(shown.item.marked(), shown.at(9));
    EXPECT_TRUE(alike(shown.colorAt(shown.middle(9, 0, 30)), shown.window.palette.color(development)));
    EXPECT_TRUE(alike(shown.colorAt(shown.middle(11, 0, 20)), over(shown.window.palette.color(other), 0.4)));
    shown.window.pointAt(1, 1);
    EXPECT_FALSE(shown.item.isMarked());
    EXPECT_TRUE(alike(shown.colorAt(shown.middle(11, 0, 20)), shown.window.palette.color(other)));
}

TEST(ActivityChartItem, drawsARuleThroughAnEmptyHour) {
    Shown shown;
    const auto before = shown.colorAt(shown.middle(10, 20, 28));
    EXPECT_TRUE(alike(before, Qt::white));
    shown.pointAt(10);
    const auto image = shown.window.look();
    const auto middle = shown.middle(10, 20, 28);
    int dark = 0;
    const auto scale = image.devicePixelRatio();
    for (int x = qRound((middle.x() - 4) * scale); x < qRound((middle.x() + 4) * scale); ++x)
        dark += image.pixelColor(x, qRound(middle.y() * scale)).lightness() < 200 ? 1 : 0;
    EXPECT_EQ(dark, qRound(PixelGrid(image.devicePixelRatio()).wholeWidth(1) * image.devicePixelRatio()));
}

TEST(ActivityChartItem, tellsOfTheHourUnderThePointer) {
    Shown shown;
    EXPECT_EQ(shown.item.words(), shown.value.words());
    EXPECT_EQ(shown.item.words(), "1h 20m active. Busiest: 09:00 – 10:00 with 1h. Development 30m, Social Media 30m, "
                                  "Other 20m.");
    shown.pointAt(9);
    EXPECT_EQ(shown.item.tooltipHead(), "09:00 – 10:00");
    EXPECT_EQ(shown.item.tooltipSum(), "1h active");
    const auto rows = shown.item.tooltipRows();
    ASSERT_EQ(rows.size(), 2);
    EXPECT_EQ(rows[0].toMap()["duration"].toString(), "30m");
    EXPECT_EQ(rows[0].toMap()["category"].toMap()["label"].toString(), "Development");
    EXPECT_EQ(rows[1].toMap()["category"].toMap()["category"].toString(), "social");
    EXPECT_EQ(shown.item.words(), "09:00 – 10:00: 1h active, Development 30m, Social Media 30m");
    shown.pointAt(10);
    EXPECT_EQ(shown.item.tooltipSum(), "No activity");
    EXPECT_TRUE(shown.item.tooltipRows().isEmpty());
    EXPECT_LT(shown.item.markedLeft(), shown.item.markedRight());
}

TEST(ActivityChartItem, marksOnlyWhatIsPlotted) {
    Shown shown;
    shown.window.pointAt(10 + shown.item.geometry().area().right() + 5, 100);
    EXPECT_FALSE(shown.item.isMarked()) << "over the numbers";
    shown.window.pointAt(10 + shown.item.geometry().area().right() - 1, 100);
    EXPECT_EQ(shown.item.marked(), shown.at(23));
    shown.window.pointAt(11, 100);
    EXPECT_EQ(shown.item.marked(), shown.at(0));
}

TEST(ActivityChartItem, isWalkedThroughWithTheArrows) {
    Shown shown;
    const auto walk = [&](std::vector<Qt::Key> keys) {
        for (const auto key : keys)
            shown.window.press(shown.item, key);
        return shown.item.marked();
    };
    EXPECT_EQ(walk({Qt::Key_Right}), shown.at(9));
    EXPECT_EQ(walk({Qt::Key_Right}), shown.at(10));
    EXPECT_EQ(walk({Qt::Key_End}), shown.at(11));
    EXPECT_EQ(walk({Qt::Key_Home, Qt::Key_Left}), shown.at(8));
    EXPECT_EQ(walk({Qt::Key_Escape}), std::nullopt);
    EXPECT_EQ(walk({Qt::Key_Left}), shown.at(11));
    shown.item.setFocus(false);
    EXPECT_FALSE(shown.item.isMarked()) << "the keys have gone elsewhere";
}

TEST(ActivityChartItem, keepsWhatIsMarkedWhenTheReportIsMadeAnew) {
    Shown shown;
    shown.pointAt(9);
    auto report = *shown.value.data()->report;
    report.buckets[0].duration = Seconds(600);
    const QSignalSpy told(&shown.item, &ActivityChartItem::markedChanged);
    shown.item.setChart(activityChartValue(shared(report), shown.bench.calendar));
    EXPECT_EQ(shown.item.marked(), shown.at(9));
    EXPECT_EQ(shown.item.tooltipSum(), "40m active");
    EXPECT_GE(told.count(), 1);
    const auto tomorrow = shown.bench.calendar.day(shown.bench.day.end);
    shown.item.setChart(
        activityChartValue(shared(ActivityReport::empty(tomorrow, Granularity::hour)), shown.bench.calendar));
    EXPECT_FALSE(shown.item.isMarked()) << "another day";
    EXPECT_EQ(shown.item.words(), "No activity");
    shown.item.setChart({});
    EXPECT_EQ(shown.item.words(), "");
    shown.window.press(shown.item, Qt::Key_Right);
    shown.window.look();
}

TEST(ActivityChartItem, theSameChartAgainIsNoNews) {
    Shown shown;
    const QSignalSpy news(&shown.item, &ActivityChartItem::chartChanged);
    shown.item.setChart(shown.value);
    EXPECT_EQ(news.count(), 0);
}

TEST(UsageTrendItem, drawsItsColumnsInTheTint) {
    PagesBench bench;
    bench.add(9 * hour, hour).add(11 * hour, 1800);
    const auto trend = usageTrend(
        bench.report(), [](const auto&) { return true; }, SystemColor::teal, bench.calendar);
    ChartWindow window(600, 140);
    auto& item = window.add<UsageTrendItem>(QRectF(0, 0, 600, 140));
    window.look(); // without a value there is nothing, and no fault
    item.setTrend(toVariant(trend).value<UsageTrendValue>());
    const auto at = [&](int hours, double value) {
        const auto center = item.geometry().column(bench.calendar.hour(bench.at(hours)), value).center();
        return window.colorAt(center.x(), center.y());
    };
    EXPECT_TRUE(alike(at(9, 60), window.palette.color(work)));
    EXPECT_TRUE(alike(at(11, 30), window.palette.color(work)));
    EXPECT_TRUE(alike(at(10, 20), Qt::white));
    EXPECT_EQ(item.trend().words(), "1h 30m in all. Busiest: 09:00 – 10:00 with 1h.");
}

} // namespace
} // namespace kestrio
