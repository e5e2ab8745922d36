#include "Kestrio/Views/Charts/ColumnPlot.h"
#include "Tests/Views/Charts/ChartBench.h"

#include <QFont>

namespace kestrio {
namespace {

bool isWhole(qreal value) {
    return std::abs(value - std::round(value)) < 1e-6;
}

struct DayPlot {
    DayPlot() {
        bench.add(9 * hour, 1800).add(10 * hour, 2400).add(23 * hour, 3600);
        report = bench.report();
        plot = columnPlot(activityChart(report, bench.calendar));
    }
    ColumnPlotGeometry geometry(qreal width = 600, AxisSide side = AxisSide::right, qreal scale = 1) const {
        return {plot, QSizeF(width, 200), QFontMetricsF(QFont()), side, PixelGrid(scale)};
    }
    DateInterval at(int hours) const { return bench.calendar.hour(bench.at(hours)); }

    PagesBench bench;
    ActivityReport report;
    ColumnPlot plot;
};

TEST(ColumnPlot, takesOverWhatTheChartsSay) {
    const DayPlot day;
    EXPECT_EQ(day.plot.unit, "Minutes");
    EXPECT_EQ(day.plot.domain, day.bench.day);
    ASSERT_EQ(day.plot.columns.size(), 3u);
    EXPECT_DOUBLE_EQ(day.plot.columns[1].height(), 40);
    EXPECT_EQ(day.plot.columns[1].parts[0].color, SystemColor::gray);
    const auto trend = columnPlot(usageTrend(
        day.report, [](const auto&) { return true; }, SystemColor::teal, day.bench.calendar));
    ASSERT_EQ(trend.columns.size(), 3u);
    EXPECT_EQ(trend.columns[0].parts[0].color, SystemColor::teal);
    EXPECT_DOUBLE_EQ(trend.cornerRadius, 3);
}

TEST(ColumnPlotGeometry, spreadsTimeOverTheWholeDomain) {
    const DayPlot day;
    const auto geometry = day.geometry();
    const auto& area = geometry.area();
    EXPECT_DOUBLE_EQ(geometry.x(day.bench.day.start), area.left());
    EXPECT_DOUBLE_EQ(geometry.x(day.bench.day.end), area.right());
    EXPECT_DOUBLE_EQ(geometry.x(day.bench.at(12)), area.center().x());
    EXPECT_DOUBLE_EQ(geometry.y(0), area.bottom());
    EXPECT_DOUBLE_EQ(geometry.y(60), area.top());
    EXPECT_EQ(geometry.date(area.center().x()), day.bench.at(12));
    EXPECT_EQ(geometry.date(area.left()), day.bench.day.start);
    EXPECT_EQ(geometry.date(area.left() - 1), std::nullopt);
    EXPECT_EQ(geometry.date(area.right()), std::nullopt);
}

TEST(ColumnPlotGeometry, columnsStandOnPixelsWithinTheirHours) {
    const DayPlot day;
    for (const qreal scale : {1.0, 1.5, 2.0})
        for (const qreal width : {60.0, 127.0, 333.0, 600.0, 1240.0}) {
            const auto geometry = day.geometry(width, AxisSide::right, scale);
            for (int hours = 0; hours < 24; ++hours) {
                const auto column = geometry.column(day.at(hours), 37);
                for (const auto edge : {column.left(), column.right(), column.top(), column.bottom()})
                    EXPECT_TRUE(isWhole(edge * scale)) << edge << " at " << scale;
                EXPECT_GE(column.width(), 1 / scale - 1e-9);
                EXPECT_GE(column.left(), geometry.x(day.at(hours).start) - 0.5 / scale - 1e-9);
                EXPECT_LE(column.right(), geometry.x(day.at(hours).end) + 1.5 / scale + 1e-9);
            }
        }
}

TEST(ColumnPlotGeometry, partsLieUponOneAnotherWithoutAGap) {
    const DayPlot day;
    const auto geometry = day.geometry(600, AxisSide::right, 1.5);
    const auto lower = geometry.part(day.at(9), 0, 13.3);
    const auto upper = geometry.part(day.at(9), 13.3, 30);
    EXPECT_DOUBLE_EQ(lower.top(), upper.bottom());
    EXPECT_EQ(lower.united(upper), geometry.column(day.at(9), 30));
}

TEST(ColumnPlotGeometry, labelsNeverOverlapNorLeaveTheChart) {
    PagesBench bench;
    bench.add(9 * hour, 1800);
    const auto month = bench.calendar.month(bench.day.start);
    const auto week = bench.calendar.weekOfYear(bench.day.start);
    const ActivityReport reports[] = {bench.report(), bench.report(week, Granularity::day),
                                      bench.report(month, Granularity::day)};
    for (const auto& report : reports) {
        const auto plot = columnPlot(activityChart(report, bench.calendar));
        for (qreal width = 80; width < 1300; width += 13)
            for (const auto side : {AxisSide::left, AxisSide::right}) {
                const ColumnPlotGeometry geometry(plot, {width, 160}, QFontMetricsF(QFont()), side, PixelGrid(1));
                const auto labels = geometry.timeLabels();
                ASSERT_FALSE(labels.empty());
                for (std::size_t i = 0; i < labels.size(); ++i) {
                    EXPECT_GE(labels[i].area.left(), 0);
                    EXPECT_LE(labels[i].area.right(), width + 1e-6);
                    EXPECT_LE(labels[i].area.bottom(), 160 + 1e-6);
                    if (i > 0) {
                        EXPECT_GE(labels[i].area.left(), labels[i - 1].area.right() + 12) << width;
                    }
                }
                const auto numbers = geometry.valueLabels();
                for (std::size_t i = 1; i < numbers.size(); ++i)
                    EXPECT_LE(numbers[i].area.bottom(), numbers[i - 1].area.top() + 1) << numbers[i].text.toStdString();
                EXPECT_LE(geometry.unitLabel().area.bottom(), numbers.back().area.top() + 4);
            }
    }
}

TEST(ColumnPlotGeometry, wideEnoughShowsEveryMark) {
    const DayPlot day;
    EXPECT_EQ(day.geometry(600).timeLabels().size(), 8u);
    EXPECT_LT(day.geometry(160).timeLabels().size(), 8u);
}

TEST(ColumnPlotGeometry, numbersChangeSidesWithTheWriting) {
    const DayPlot day;
    const auto right = day.geometry(600, AxisSide::right);
    const auto left = day.geometry(600, AxisSide::left);
    for (const auto& label : right.valueLabels())
        EXPECT_GT(label.area.left(), right.area().right());
    for (const auto& label : left.valueLabels())
        EXPECT_LT(label.area.right(), left.area().left());
    EXPECT_LT(left.x(day.bench.at(9)), left.x(day.bench.at(10))) << "time runs from left to right all the same";
    EXPECT_DOUBLE_EQ(left.area().width(), right.area().width());
}

TEST(ColumnPlotGeometry, nothingAtAllHasAPlaceToo) {
    const ColumnPlot nothing;
    const ColumnPlotGeometry geometry(nothing, {0, 0}, QFontMetricsF(QFont()), AxisSide::right, PixelGrid(1));
    EXPECT_TRUE(geometry.timeLabels().empty());
    EXPECT_TRUE(geometry.valueLabels().empty());
    EXPECT_GE(geometry.area().width(), 0);
    EXPECT_DOUBLE_EQ(geometry.x(Date(5)), geometry.area().left());
}

} // namespace
} // namespace kestrio
