#include "Tests/Views/Charts/ChartBench.h"

namespace kestrio {
namespace {

TEST(ChartValues, withoutAnythingAreEmpty) {
    EXPECT_EQ(ActivityChartValue().words(), "");
    EXPECT_TRUE(ActivityChartValue().legend().isEmpty());
    EXPECT_EQ(UsageTrendValue().words(), "");
    EXPECT_EQ(CategoryStackBarValue().words(), "");
    const DayStripsValue strips;
    EXPECT_EQ(strips.dayCount(), 0);
    EXPECT_EQ(strips.words(), "");
    EXPECT_TRUE(strips.hourAxis().isEmpty());
    EXPECT_TRUE(strips.dayLabel(0).isEmpty());
    EXPECT_DOUBLE_EQ(strips.stripHeight(), 0);
}

TEST(ChartValues, shareWhatTheyShow) {
    PagesBench bench;
    bench.add(9 * hour, 900);
    const auto report = shared(bench.report());
    const auto strips = dayStripsValue(report, bench.viewpoint());
    const auto copy = strips;
    EXPECT_EQ(copy, strips);
    EXPECT_EQ(strips.data()->strips.days[0].sessions.data(), report->sessions.data());
    EXPECT_FALSE(strips == dayStripsValue(report, bench.viewpoint())) << "made anew is another";
    EXPECT_EQ(activityChartValue(report, bench.calendar).data()->report, report);
}

TEST(DayStripsValue, hasTheTextsBesideTheStrips) {
    PagesBench bench;
    bench.add(9 * hour, 900).add(10 * hour, 900).add(9 * hour, 60, {.kind = SessionKind::listening});
    const auto strips = dayStripsValue(shared(bench.report()), bench.viewpoint());
    EXPECT_EQ(strips.heading(), "When you were active");
    EXPECT_EQ(strips.legendTitle(), "Colour = kind of activity");
    EXPECT_TRUE(strips.explanation().endsWith("watching or listening."));
    EXPECT_TRUE(strips.showsAlongside());
    EXPECT_EQ(strips.dayCount(), 1);
    EXPECT_FALSE(strips.isDense());
    EXPECT_DOUBLE_EQ(strips.stripHeight(), 52);
    EXPECT_DOUBLE_EQ(strips.mediaHeight(), 12);
    EXPECT_DOUBLE_EQ(strips.leastLegendWidth(), 130);
    EXPECT_EQ(strips.words(), "Friday, 20 Nov: 30m active");
    const auto axis = strips.hourAxis();
    ASSERT_EQ(axis.size(), 3);
    EXPECT_EQ(axis[1].toMap(), (QVariantMap{{"label", "10"}, {"fraction", 0.5}}));
    EXPECT_EQ(strips.dayLabel(0), (QVariantMap{{"title", "Friday, 20 Nov"}, {"detail", "30m active"}}));
    EXPECT_TRUE(strips.dayLabel(1).isEmpty());
    EXPECT_TRUE(strips.dayLabel(-1).isEmpty());
    ASSERT_EQ(strips.legend().size(), 1);
    EXPECT_EQ(strips.legend()[0].toMap(), (QVariantMap{{"label", "Other"}, {"color", "gray"}, {"category", "other"}}));
}

TEST(DayStripsValue, denseDaysCarryTheirDetailAsHelp) {
    PagesBench bench;
    for (int day = 0; day < 9; ++day)
        bench.add(9 * hour + day * 24 * hour, 900);
    const auto report =
        bench.report({bench.day.start, bench.calendar.addingDays(bench.day.start, 9)}, Granularity::day);
    const auto strips = dayStripsValue(shared(report), bench.viewpoint());
    EXPECT_TRUE(strips.isDense());
    EXPECT_EQ(strips.dayLabel(0), (QVariantMap{{"title", "Fri 20"}, {"help", "Friday, 20 Nov: 15m active"}}));
}

TEST(ChartValues, aBreakdownIsAMapWithItsBar) {
    const std::vector<CategoryUsage> categories{{ActivityCategory::development, Seconds(5400)},
                                                {ActivityCategory::social, Seconds(1800)}};
    const auto map = toVariant(categoryBreakdown(categories, Seconds(7200))).toMap();
    EXPECT_EQ(map["summary"].toString(), "2h active");
    EXPECT_EQ(map["bar"].value<CategoryStackBarValue>().words(), "Development 75%, Social Media 25%");
    const auto rows = map["rows"].toList();
    ASSERT_EQ(rows.size(), 2);
    EXPECT_EQ(rows[0].toMap()["share"].toString(), "75%");
    EXPECT_EQ(rows[1].toMap()["duration"].toString(), "30m");
    EXPECT_EQ(rows[1].toMap()["category"].toMap()["color"].toString(), "brown");
}

TEST(ChartValues, everyCategoryIsNamedByItsColor) {
    const char* names[] = {"blue", "teal", "purple", "orange", "red", "brown", "gray"};
    for (const auto category : allActivityCategories) {
        const auto map = toMap(categoryPill(category));
        EXPECT_EQ(map["color"].toString(), names[static_cast<std::size_t>(category)]);
        EXPECT_EQ(map["category"].toString().toStdString(), rawValue(category));
    }
}

} // namespace
} // namespace kestrio
