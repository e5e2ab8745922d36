#include "Kestrio/Pages/ActivityChart.h"
#include "Kestrio/Pages/CategoryBreakdown.h"
#include "Kestrio/Pages/Sparkline.h"
#include "Kestrio/Pages/UsageTrend.h"
#include "Tests/Pages/PagesBench.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

using enum ActivityCategory;

ActivityReport hourly(const PagesBench& bench) {
    auto report = ActivityReport::empty(bench.day, Granularity::hour);
    report.buckets = {{bench.at(9), development, Seconds(600)},
                      {bench.at(9), social, Seconds(1200)},
                      {bench.at(9), work, Seconds(600)},
                      {bench.at(11), other, Seconds(30)}};
    return report;
}

Texts labels(const std::vector<TimeMark>& marks) {
    Texts all;
    for (const auto& mark : marks)
        all.push_back(mark.label);
    return all;
}

TEST(ActivityChart, stacksItsColumnsInTheOrderOfTheLegend) {
    const PagesBench bench;
    const auto chart = activityChart(hourly(bench), bench.calendar);
    EXPECT_EQ(chart.unit.title, "Minutes");
    EXPECT_EQ(chart.domain, bench.day);
    ASSERT_EQ(chart.columns.size(), 2u);
    EXPECT_EQ(chart.columns[0].interval, (DateInterval{bench.at(9), bench.at(10)}));
    EXPECT_EQ(chart.columns[0].parts, (std::vector<ChartPart>{{development, 10}, {work, 10}, {social, 20}}));
    EXPECT_DOUBLE_EQ(chart.columns[0].height(), 40);
    EXPECT_DOUBLE_EQ(chart.columns[1].height(), 0.5);
    ASSERT_EQ(chart.legend.size(), 7u);
    for (std::size_t i = 0; i < chart.legend.size(); ++i)
        EXPECT_EQ(chart.legend[i], categoryPill(allActivityCategories[i]));
    EXPECT_STREQ(ActivityChart::xLabel, "Time");
    EXPECT_STREQ(ActivityChart::colorLabel, "Category");
    EXPECT_STREQ(ActivityChart::selectionLabel, "Selected");
}

TEST(ActivityChart, countsDaysInHours) {
    const PagesBench bench;
    auto report = ActivityReport::empty(bench.day, Granularity::day);
    report.buckets = {{bench.day.start, work, Seconds(5400)}};
    const auto chart = activityChart(report, bench.calendar);
    EXPECT_EQ(chart.unit.title, "Hours");
    EXPECT_DOUBLE_EQ(chart.columns[0].height(), 1.5);
    EXPECT_EQ(chart.columns[0].interval, bench.day);
}

TEST(ActivityChart, isEmptyWithoutActivity) {
    const PagesBench bench;
    const auto chart = activityChart(ActivityReport::empty(bench.day, Granularity::hour), bench.calendar);
    EXPECT_TRUE(chart.columns.empty());
    EXPECT_EQ(chart.valueMarks, (std::vector<ValueMark>{{0, "0"}}));
    EXPECT_EQ(chart.legend.size(), 7u);
}

TEST(ActivityChart, marksTheBucketUnderThePointer) {
    const PagesBench bench;
    const auto report = hourly(bench);
    const auto chart = activityChart(report, bench.calendar);
    const auto selected = selectedBucket(report, bench.at(9, 59), bench.calendar);
    EXPECT_EQ(selected, (DateInterval{bench.at(9), bench.at(10)}));
    EXPECT_DOUBLE_EQ(columnOpacity(chart.columns[0], selected), 1);
    EXPECT_DOUBLE_EQ(columnOpacity(chart.columns[1], selected), 0.4);
    EXPECT_DOUBLE_EQ(columnOpacity(chart.columns[1], std::nullopt), 1);
    auto daily = report;
    daily.granularity = Granularity::day;
    EXPECT_EQ(selectedBucket(daily, bench.at(9, 59), bench.calendar), bench.day);
}

TEST(ActivityChart, saysItselfInWords) {
    PagesBench bench;
    bench.add(9 * hour, 1800).add(9.5 * hour, 600).add(11 * hour, 60);
    const auto report = bench.report();
    EXPECT_EQ(activityChart(report, bench.calendar).words, "41m active. Busiest: 09:00 – 10:00 with 40m. Other 41m.");
    const auto daily = bench.report(Granularity::day);
    EXPECT_EQ(activityChart(daily, bench.calendar).words, "41m active. Busiest: Fri, 20 Nov with 41m. Other 41m.");
    EXPECT_EQ(activityChart(ActivityReport::empty(bench.day, Granularity::hour), bench.calendar).words, "No activity");
}

TEST(ActivityChart, isWalkedThroughWithKeys) {
    using enum ChartStep;
    const PagesBench bench;
    const auto report = hourly(bench);
    const auto chart = activityChart(report, bench.calendar);
    struct Row {
        std::optional<int> from; // the hour
        ChartStep step;
        int to;
    };
    const Row rows[] = {{std::nullopt, later, 9},
                        {std::nullopt, earlier, 11},
                        {std::nullopt, first, 9},
                        {std::nullopt, last, 11},
                        {9, later, 10},
                        {10, later, 11},
                        {10, earlier, 9},
                        {23, later, 23},
                        {0, earlier, 0},
                        {3, first, 9},
                        {3, last, 11}};
    for (const auto& row : rows) {
        const auto from = row.from ? std::optional(bench.calendar.hour(bench.at(*row.from))) : std::nullopt;
        EXPECT_EQ(steppedBucket(report, chart, from, row.step, bench.calendar), bench.calendar.hour(bench.at(row.to)))
            << (row.from ? *row.from : -1) << " to " << row.to;
    }
    const auto empty = ActivityReport::empty(bench.day, Granularity::hour);
    EXPECT_FALSE(steppedBucket(empty, activityChart(empty, bench.calendar), std::nullopt, later, bench.calendar));
}

TEST(ChartTooltip, isReadAloudInOneSentence) {
    const PagesBench bench;
    EXPECT_EQ(spoken(chartTooltip(hourly(bench), bench.at(9), bench.calendar)),
              "09:00 – 10:00: 40m active, Social Media 20m, Development 10m, Work & Docs 10m");
    EXPECT_EQ(spoken(chartTooltip(hourly(bench), bench.at(10), bench.calendar)), "10:00 – 11:00: No activity");
}

TEST(ChartTooltip, listsTheCategoriesLongestFirst) {
    const PagesBench bench;
    const auto tooltip = chartTooltip(hourly(bench), bench.at(9), bench.calendar);
    EXPECT_EQ(tooltip.head, "09:00 – 10:00");
    ASSERT_EQ(tooltip.rows.size(), 3u);
    EXPECT_EQ(tooltip.rows[0], (ChartTooltip::Row{categoryPill(social), "20m"}));
    EXPECT_EQ(tooltip.rows[1], (ChartTooltip::Row{categoryPill(development), "10m"}));
    EXPECT_EQ(tooltip.rows[2], (ChartTooltip::Row{categoryPill(work), "10m"}));
    EXPECT_EQ(tooltip.sum, "40m active");
}

TEST(ChartTooltip, anEmptyBucketSaysSo) {
    const PagesBench bench;
    const auto tooltip = chartTooltip(hourly(bench), bench.at(10), bench.calendar);
    EXPECT_EQ(tooltip, (ChartTooltip{"10:00 – 11:00", {}, "No activity"}));
    auto daily = ActivityReport::empty(bench.day, Granularity::day);
    EXPECT_EQ(chartTooltip(daily, bench.day.start, bench.calendar).head, "Fri, 20 Nov");
}

TEST(ChartTooltip, isHeadedInTheLocalesWords) {
    struct Row {
        const char* locale;
        const char* hour;
        const char* day;
    };
    const Row rows[] = {{"en_GB", "13:00 – 14:00", "Fri, 20 Nov"},
                        {"en_US", "1:00 PM – 2:00 PM", "Fri, Nov 20"},
                        {"de_DE", "13:00 – 14:00", "Fr., 20. Nov."},
                        {"fr_FR", "13:00 – 14:00", "ven. 20 nov."}};
    for (const auto& row : rows) {
        const PagesBench bench{Calendar(row.locale, "Europe/Berlin")};
        auto report = ActivityReport::empty(bench.day, Granularity::hour);
        EXPECT_EQ(withPlainBlanks(chartTooltip(report, bench.at(13), bench.calendar).head), row.hour) << row.locale;
        report.granularity = Granularity::day;
        EXPECT_EQ(chartTooltip(report, bench.day.start, bench.calendar).head, row.day) << row.locale;
    }
}

TEST(ChartTooltip, theLastHourOfADayEndsAtMidnight) {
    const PagesBench bench;
    EXPECT_EQ(chartTooltip(hourly(bench), bench.at(23), bench.calendar).head, "23:00 – 00:00");
}

TEST(ChartAxis, aWeekBeginsWhereTheLocaleHasIt) {
    struct Row {
        const char* locale;
        Texts days;
    };
    const Row rows[] = {{"en_GB", {"Mon 16", "Tue 17", "Wed 18", "Thu 19", "Fri 20", "Sat 21", "Sun 22"}},
                        {"en_US", {"15 Sun", "16 Mon", "17 Tue", "18 Wed", "19 Thu", "20 Fri", "21 Sat"}}};
    for (const auto& row : rows) {
        const PagesBench bench{Calendar(row.locale, "Europe/Berlin")};
        const auto week = bench.calendar.weekOfYear(bench.day.start);
        EXPECT_EQ(labels(timeMarks(week, Granularity::day, 7, bench.calendar)), row.days) << row.locale;
    }
}

TEST(ChartAxis, daysStandAtMidnightAlsoWhereTheClocksChange) {
    const PagesBench bench;
    for (const int month : {3, 10}) {
        const auto whole = bench.calendar.month(bench.calendar.date(2026, month, 15));
        for (const auto& mark : timeMarks(whole, Granularity::day, 31, bench.calendar))
            EXPECT_EQ(mark.at, bench.calendar.startOfDay(mark.at)) << mark.label;
    }
}

TEST(ChartAxis, itsNumbersAreWholeAndFew) {
    struct Row {
        double highest;
        Texts labels;
    };
    const Row rows[] = {{0, {"0"}},
                        {0.5, {"0", "1"}},
                        {3, {"0", "1", "2", "3"}},
                        {4.1, {"0", "2", "4", "6"}},
                        {40, {"0", "10", "20", "30", "40"}},
                        {60, {"0", "15", "30", "45", "60"}},
                        {1e9, {"0", "480", "960", "1440", "1920"}}};
    for (const auto& row : rows) {
        Texts shown;
        for (const auto& mark : valueMarks(row.highest))
            shown.push_back(mark.label);
        EXPECT_EQ(shown, row.labels) << row.highest;
    }
}

TEST(ChartAxis, daysAreMarkedEachOnlyWhereTheyFit) {
    const PagesBench bench;
    const auto days = [&](int count) {
        return DateInterval{bench.day.start, bench.calendar.addingDays(bench.day.start, count)};
    };
    const auto marks = [&](int count, std::size_t buckets) {
        return timeMarks(days(count), Granularity::day, buckets, bench.calendar);
    };
    EXPECT_EQ(labels(marks(3, 3)), (Texts{"Fri 20", "Sat 21", "Sun 22"}));
    EXPECT_EQ(marks(11, 10).size(), 11u);
    EXPECT_EQ(marks(11, 11).size(), 2u) << "too many buckets";
    EXPECT_EQ(labels(marks(12, 1)), (Texts{"20 Nov", "27 Nov"})) << "too long a range";
    EXPECT_EQ(labels(marks(30, 30)), (Texts{"20 Nov", "27 Nov", "4 Dec", "11 Dec", "18 Dec"}));
}

TEST(ChartAxis, labelsStandAtHoursAndAmidDays) {
    const PagesBench bench;
    const auto hours = timeMarks(bench.day, Granularity::hour, 24, bench.calendar);
    EXPECT_EQ(hours[3].at, bench.at(9));
    EXPECT_EQ(hours[3].labelAt, bench.at(9));
    const auto days = timeMarks(bench.day, Granularity::day, 1, bench.calendar);
    EXPECT_EQ(days[0].at, bench.day.start);
    EXPECT_EQ(days[0].labelAt, bench.at(12));
}

TEST(ChartAxis, hoursStandEveryThreeAlsoWhereTheClocksChange) {
    const PagesBench bench;
    EXPECT_EQ(labels(timeMarks(bench.day, Granularity::hour, 24, bench.calendar)),
              (Texts{"00", "03", "06", "09", "12", "15", "18", "21"}));
    const auto spring = bench.calendar.day(bench.calendar.date(2026, 3, 29, 12));
    EXPECT_EQ(labels(timeMarks(spring, Granularity::hour, 24, bench.calendar)),
              (Texts{"00", "03", "06", "09", "12", "15", "18", "21"}));
}

TEST(CategoryStackBar, dividesItsWidthAndKeepsSmallPartsVisible) {
    const std::vector<CategoryUsage> categories{{work, Seconds(900)}, {social, Seconds(99)}, {other, Seconds(1)}};
    const auto bar = categoryStackBar(categories, Seconds(1000));
    EXPECT_EQ(bar.widths(200), (std::vector<double>{180, 19.8, 2}));
    EXPECT_EQ(bar.parts[0].category, categoryPill(work));
    EXPECT_EQ(bar.words, "Work & Docs 90%, Social Media 10%, Other 0%");
    EXPECT_TRUE(categoryStackBar(categories, Seconds(0)).parts.empty());
    EXPECT_EQ(categoryStackBar(categories, Seconds(0)).words, "No activity");
    EXPECT_EQ(categoryStackBar({}, Seconds(10)).words, "No activity");
    EXPECT_DOUBLE_EQ(CategoryStackBar::emptyTrackOpacity, 0.08);
}

TEST(CategoryStackBar, aTraceOfACategoryIsStillTwoPointsWide) {
    const std::vector<CategoryUsage> categories{
        {work, Seconds(1e6)}, {social, Seconds(0.4)}, {learning, Seconds(0.001)}, {other, Seconds(1e-9)}};
    const auto widths = categoryStackBar(categories, Seconds(1e6)).widths(100);
    EXPECT_EQ(std::vector(widths.begin() + 1, widths.end()), (std::vector<double>{2, 2, 2}));
    EXPECT_EQ(categoryStackBar(categories, Seconds(1e6)).words,
              "Work & Docs 100%, Social Media 0%, Learning & AI 0%, Other 0%");
}

TEST(CategoryBreakdown, hasARowPerCategory) {
    const std::vector<CategoryUsage> categories{{development, Seconds(5400)}, {social, Seconds(1800)}};
    const auto breakdown = categoryBreakdown(categories, Seconds(7200));
    ASSERT_EQ(breakdown.rows.size(), 2u);
    EXPECT_EQ(breakdown.rows[0], (CategoryBreakdown::Row{{"Development", SystemColor::blue}, "75%", "1h 30m"}));
    EXPECT_EQ(breakdown.rows[1], (CategoryBreakdown::Row{{"Social Media", SystemColor::brown}, "25%", "30m"}));
    EXPECT_EQ(breakdown.summary, "2h active");
    EXPECT_EQ(categoryBreakdown({}, Seconds(0)).summary, "0s active");
}

TEST(UsageTrend, spansTheWholeRange) {
    PagesBench bench;
    bench.add(9 * hour + 30 * minute, hour).add(12 * hour, 90, {.app = "Other"});
    const auto mine = [](const ClassifiedSession& session) { return session.appName == "Editor"; };
    const auto trend = usageTrend(bench.report(), mine, SystemColor::teal, bench.calendar);
    EXPECT_EQ(trend.domain, bench.day);
    EXPECT_EQ(trend.unit.title, "Minutes");
    EXPECT_EQ(trend.tint, SystemColor::teal);
    ASSERT_EQ(trend.columns.size(), 2u);
    EXPECT_EQ(trend.columns[0], (UsageTrend::Column{{bench.at(9), bench.at(10)}, 30}));
    EXPECT_EQ(trend.columns[1], (UsageTrend::Column{{bench.at(10), bench.at(11)}, 30}));
    const auto daily = usageTrend(bench.report(Granularity::day), mine, SystemColor::teal, bench.calendar);
    EXPECT_EQ(trend.words, "1h in all. Busiest: 09:00 – 10:00 with 30m.");
    EXPECT_EQ(daily.words, "1h in all. Busiest: Fri, 20 Nov with 1h.");
    EXPECT_EQ(daily.unit.title, "Hours");
    ASSERT_EQ(daily.columns.size(), 1u);
    EXPECT_DOUBLE_EQ(daily.columns[0].value, 1);
    EXPECT_STREQ(UsageTrend::title, "When");
    EXPECT_STREQ(UsageTrend::symbol, "chart.bar");
}

TEST(UsageTrend, agreesWithTheBucketsOfAReport) {
    PagesBench bench;
    for (int i = 0; i < 50; ++i)
        bench.add(i * 1234.5, 777);
    const auto report = bench.report();
    const auto trend = usageTrend(
        report, [](const auto&) { return true; }, SystemColor::gray, bench.calendar);
    const auto buckets = ReportBuilder::buckets(report.sessions, report.granularity, bench.calendar);
    ASSERT_EQ(trend.columns.size(), buckets.size());
    for (std::size_t i = 0; i < buckets.size(); ++i) {
        EXPECT_EQ(trend.columns[i].interval.start, buckets[i].start);
        EXPECT_DOUBLE_EQ(trend.columns[i].value, buckets[i].duration.count() / 60);
    }
}

TEST(Sparkline, spreadsValuesEvenly) {
    const std::vector<double> values{0, 0.5, 2};
    EXPECT_EQ(sparkline(values, 0, 1), (std::vector<SparklinePoint>{{0, 0}, {0.5, 0.5}, {1, 1}}));
    EXPECT_EQ(sparkline(values, 1, 1), (std::vector<SparklinePoint>{{0, 0}, {0.5, 0}, {1, 0}}));
    EXPECT_TRUE(sparkline({}, 0, 1).empty());
    EXPECT_TRUE(sparkline(std::vector<double>{1}, 0, 1).empty());
}

} // namespace
} // namespace kestrio
