// The charts as pages place them, written in QML.
#include "Kestrio/Views/Charts/ActivityChartItem.h"
#include "Kestrio/Views/Charts/StackBarItem.h"
#include "Kestrio/Views/Charts/StripCanvasItem.h"
#include "Kestrio/Views/Charts/UsageTrendItem.h"
#include "Tests/Views/Charts/ChartScene.h"

#include <QAccessible>
#include <QtQml/qqmlextensionplugin.h>

Q_IMPORT_QML_PLUGIN(Kestrio_ChartsPlugin)
Q_IMPORT_QML_PLUGIN(Kestrio_DesignPlugin)

namespace kestrio {
namespace {

constexpr auto everything = R"(
Column {
    spacing: 8
    ActivityChart { value: activity; title: "Activity"; width: parent.width }
    CategoryBreakdown { value: breakdown; width: parent.width }
    CategoryStackBar { bar: categoryBar; width: parent.width }
    UsageTrendChart { trend: browserTrend; width: parent.width }
    DayStripsView { value: strips; width: parent.width }
    Sparkline { values: [0, 0.5, 1] }
}
)";

PagesBench workday() {
    PagesBench bench;
    bench.add(9 * hour, 1800, {.app = "Google Chrome", .title = "Docs", .bundleID = "com.google.Chrome"})
        .add(9.75 * hour, 900, {.title = "main.cpp"})
        .add(10 * hour, 600, {.title = "Song", .kind = SessionKind::listening});
    return bench;
}

/// What assistive technology is told of an item.
QString told(QObject* item, QAccessible::Text text) {
    const auto* const interface = QAccessible::queryAccessibleInterface(item);
    return interface ? interface->text(text) : QString();
}

TEST(ChartViews, standOnAPageInLightAndDark) {
    const auto bench = workday();
    for (const bool isDark : {false, true}) {
        ChartScene scene(shared(bench.report()), bench.viewpoint(), everything, {800, 900}, isDark);
        EXPECT_TRUE(scene.find<ActivityChartItem>());
        EXPECT_TRUE(scene.find<StackBarItem>());
        EXPECT_TRUE(scene.find<UsageTrendItem>());
        EXPECT_TRUE(scene.find<StripCanvasItem>());
    }
}

TEST(ChartViews, standEmptyBesideNothing) {
    const PagesBench bench;
    ChartScene scene(shared(ActivityReport::empty(bench.day, Granularity::hour)), bench.viewpoint(), everything,
                     {800, 900});
    EXPECT_FALSE(scene.find<StripCanvasItem>()) << "a range without sessions shows no strips";
}

TEST(ChartViews, haveRoomInNarrowWindowsAndWithLargeText) {
    const auto bench = workday();
    ChartScene scene(shared(bench.report()), bench.viewpoint(), everything, {240, 900});
    appearance(scene.engine).setDesktop({.textScale = 2});
    scene.settle();
    scene.pointAt({120, 60});
}

TEST(ChartViews, turnAroundWithTheWriting) {
    const auto bench = workday();
    ChartScene scene(shared(bench.report()), bench.viewpoint(),
                     "Column { LayoutMirroring.enabled: true; LayoutMirroring.childrenInherit: true\n"
                     "ActivityChart { value: activity; width: parent.width }\n"
                     "DayStripsView { value: strips; width: parent.width } }",
                     {800, 700});
    auto* const chart = scene.find<ActivityChartItem>();
    EXPECT_TRUE(chart->mirrored());
    EXPECT_GT(chart->geometry().area().left(), 10);
    auto* const strip = scene.find<StripCanvasItem>();
    EXPECT_LT(strip->mapToScene({0, 0}).x(), 40) << "the days' names stand at the right";
}

TEST(ChartViews, showATooltipForTheHourUnderThePointer) {
    const auto bench = workday();
    ChartScene scene(shared(bench.report()), bench.viewpoint(),
                     "Item { ActivityChart { value: activity; title: "
                     "\"Activity\"; anchors.fill: parent } }",
                     {700, 260});
    auto* const chart = scene.find<ActivityChartItem>();
    const auto hourMiddle = chart->geometry().x(bench.at(9, 30));
    const auto before = scene.look();
    scene.pointAt(chart->mapToScene({hourMiddle, 100}));
    ASSERT_TRUE(chart->isMarked());
    EXPECT_NE(scene.look(), before);
    EXPECT_EQ(told(chart, QAccessible::Name), "Activity");
    EXPECT_EQ(told(chart, QAccessible::Description), chart->words());
}

TEST(ChartViews, theReadoutKeepsItsHeight) {
    const auto bench = workday();
    ChartScene scene(shared(bench.report()), bench.viewpoint(),
                     "Item { DayStripsView { value: strips; width: "
                     "parent.width } }",
                     {800, 400});
    auto* const strip = scene.find<StripCanvasItem>();
    const auto place = strip->mapToScene({0, 0});
    EXPECT_GT(place.y(), 60) << "below the heading, the explanation and the readout";
    EXPECT_GT(strip->width(), 500);
    scene.pointAt(strip->mapToScene({20, 10}));
    EXPECT_TRUE(strip->pointer()->isSession());
    EXPECT_EQ(strip->mapToScene({0, 0}), place) << "over a session";
    scene.pointAt(strip->mapToScene({strip->width() * 0.65, 10}));
    EXPECT_TRUE(strip->pointer()->isPointing());
    EXPECT_FALSE(strip->pointer()->isSession());
    EXPECT_EQ(strip->mapToScene({0, 0}), place) << "over nothing";
    scene.pointAt({1, 1});
    EXPECT_FALSE(strip->pointer()->isPointing());
    EXPECT_EQ(strip->mapToScene({0, 0}), place);
}

TEST(ChartViews, theKeyboardReachesChartsAndStrips) {
    const auto bench = workday();
    ChartScene scene(shared(bench.report()), bench.viewpoint(), everything, {800, 900});
    auto* const chart = scene.find<ActivityChartItem>();
    auto* const strip = scene.find<StripCanvasItem>();
    scene.window.requestActivate();
    scene.pointAt({790, 890}); // beside everything
    QTest::keyClick(&scene.window, Qt::Key_Tab);
    EXPECT_TRUE(chart->hasActiveFocus());
    QTest::keyClick(&scene.window, Qt::Key_Right);
    EXPECT_EQ(chart->tooltipHead(), "09:00 – 10:00");
    QTest::keyClick(&scene.window, Qt::Key_Tab);
    EXPECT_FALSE(chart->isMarked());
    QTest::keyClick(&scene.window, Qt::Key_Right);
    EXPECT_EQ(strip->pointer()->title(), "Docs");
    auto* const rows = scene.window.activeFocusItem();
    EXPECT_EQ(told(rows, QAccessible::Name), "When you were active");
    EXPECT_EQ(told(rows, QAccessible::Description), strip->pointer()->words());
    QTest::keyClick(&scene.window, Qt::Key_Down);
    EXPECT_EQ(strip->pointer()->title(), "Song");
    QTest::keyClick(&scene.window, Qt::Key_Tab);
    EXPECT_FALSE(strip->pointer()->isPointing());
}

TEST(ChartViews, followANewReport) {
    auto bench = workday();
    ChartScene scene(shared(bench.report()), bench.viewpoint(), everything, {800, 900});
    auto* const strip = scene.find<StripCanvasItem>();
    bench.add(20 * hour, 600);
    scene.show(shared(bench.report()), bench.viewpoint());
    scene.settle();
    EXPECT_EQ(scene.find<StripCanvasItem>(), strip) << "the rows stay";
    EXPECT_EQ(strip->pointer()->strips().data()->strips.hours, (HourRange{9, 21}));
}

} // namespace
} // namespace kestrio
