#include "Kestrio/Views/Charts/ActivityChartItem.h"
#include "Tests/Examples/ExampleHistory.h"
#include "Tests/Views/Charts/StripsBench.h"

namespace kestrio {
namespace {

TEST(HugeMonth, isDrawnAndPointedAt) {
    const Calendar calendar("en_GB", "Europe/Berlin");
    const auto now = calendar.date(2026, 10, 31, 20);
    auto sessions = exampleHistory(now, calendar, {.days = 31, .sessionsPerWorkday = 2600});
    ASSERT_GT(sessions.size(), 50'000u);
    const auto report =
        shared(ReportBuilder::build(std::move(sessions), calendar.month(now), Granularity::day, calendar, {}));
    ShownStrips shown(dayStripsValue(report, {now, calendar}), 1000);
    EXPECT_GT(shown.value.dayCount(), 20);
    shown.window.look();
    int sessionsSeen = 0;
    for (int day = 0; day < shown.value.dayCount(); ++day)
        for (qreal x = 0; x < 1000; x += 50) {
            shown.pointAt(day, false, x);
            EXPECT_TRUE(shown.pointer.isPointing());
            sessionsSeen += shown.pointer.isSession() ? 1 : 0;
        }
    EXPECT_GT(sessionsSeen, 100);
    shown.window.look();

    ChartWindow window(900, 240);
    auto& chart = window.add<ActivityChartItem>(QRectF(0, 0, 900, 240));
    chart.setChart(activityChartValue(report, calendar));
    window.look();
    window.press(chart, Qt::Key_Home);
    EXPECT_TRUE(chart.isMarked());
}

} // namespace
} // namespace kestrio
