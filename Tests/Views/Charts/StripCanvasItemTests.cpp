#include "Tests/Views/Charts/StripsBench.h"

namespace kestrio {
namespace {

/// From nine to ten: the first quarter, and the last; a song in the middle. 800 points, so that a point is 4.5 seconds.
DayStripsValue quarters() {
    PagesBench bench;
    bench.add(9 * hour, 900, {.title = "First"})
        .add(9.75 * hour, 900, {.title = "Second", .url = "https://github.com/a"})
        .add(9.25 * hour, 1800, {.title = "Song", .kind = SessionKind::listening});
    return dayStripsValue(shared(bench.report()), bench.viewpoint());
}

QColor categoryColor(const ShownStrips& shown, std::size_t session) {
    return shown.window.palette.color(shown.value.data()->report->sessions[session].category);
}

TEST(StripCanvasItem, fillsSessionsWithTheirCategory) {
    ShownStrips shown(quarters(), 800);
    EXPECT_TRUE(alike(shown.colorAt(0, false, 100, 12), categoryColor(shown, 0)));
    EXPECT_TRUE(alike(shown.colorAt(0, false, 700, 12), categoryColor(shown, 1)));
    const auto track = over(Qt::black, 0.07);
    EXPECT_TRUE(alike(shown.colorAt(0, false, 400, 12), track)) << "away";
    EXPECT_TRUE(alike(shown.colorAt(0, false, 203, 12), track));
    EXPECT_TRUE(alike(shown.colorAt(0, false, 597, 12), track));
    EXPECT_TRUE(alike(shown.window.colorAt(ShownStrips::left - 5, 20), Qt::white));
}

TEST(StripCanvasItem, theMediaLineIsFaded) {
    ShownStrips shown(quarters(), 800);
    const auto category = shown.value.data()->report->alongsideSessions[0].category;
    const auto track = over(Qt::black, 0.05);
    EXPECT_TRUE(alike(shown.colorAt(0, true, 100, 4), track));
    EXPECT_TRUE(alike(shown.colorAt(0, true, 400, 4), over(shown.window.palette.color(category), 0.75, track)));
}

TEST(StripCanvasItem, itsTrackHasRoundCorners) {
    ShownStrips shown(quarters(), 800);
    EXPECT_TRUE(alike(shown.colorAt(0, true, 0.1, 0.1), Qt::white));
    EXPECT_FALSE(alike(shown.colorAt(0, true, 20, 0.6), Qt::white));
}

TEST(StripCanvasItem, drawsALineAtEachHour) {
    PagesBench bench;
    bench.add(9 * hour, 60).add(11.9 * hour, 360);
    ShownStrips shown(dayStripsValue(shared(bench.report()), bench.viewpoint()), 900);
    const auto track = over(Qt::black, 0.07);
    const auto image = shown.window.look();
    const auto pixel = 1 / image.devicePixelRatio();
    for (const qreal x : {300.0, 600.0}) {
        int dark = 0;
        for (qreal at = x - 3; at < x + 3; at += pixel) {
            const auto color = ChartWindow::colorIn(image, ShownStrips::left + at + pixel / 2, 20);
            dark += alike(color, over(Qt::black, 0.08, track)) ? 1 : 0;
        }
        EXPECT_EQ(dark, std::max(1, qRound(image.devicePixelRatio()))) << x;
    }
}

TEST(StripCanvasItem, theCursorAndTheHighlightFollowThePointer) {
    ShownStrips shown(quarters(), 800);
    shown.pointAt(0, false, 100);
    const auto fill = categoryColor(shown, 0);
    const auto cursor = shown.colorAt(0, false, 100, 12);
    EXPECT_TRUE(alike(cursor, over(Qt::black, 0.55, fill)));
    EXPECT_TRUE(alike(shown.colorAt(0, false, 150, 0.2), Qt::black)) << "the frame at the top";
    EXPECT_TRUE(alike(shown.colorAt(0, false, 150, 12), fill)) << "inside the frame";
    EXPECT_TRUE(alike(shown.colorAt(0, false, 700, 1), categoryColor(shown, 1))) << "the other has none";
    shown.pointAt(0, false, 400);
    EXPECT_TRUE(alike(shown.colorAt(0, false, 150, 1), fill));
    EXPECT_TRUE(alike(shown.colorAt(0, false, 400, 12), over(Qt::black, 0.55, over(Qt::black, 0.07))));
    shown.window.pointAt(1, 1);
    EXPECT_TRUE(alike(shown.colorAt(0, false, 400, 12), over(Qt::black, 0.07)));
}

TEST(StripCanvasItem, whatIsDrawnInPartsLooksAsDrawnWhole) {
    ShownStrips shown(quarters(), 800);
    shown.window.look();
    for (const qreal x : {0.0, 30.0, 199.0, 203.0, 400.0, 598.0, 700.0, 799.0, 100.0}) {
        shown.pointAt(0, false, x);
        const auto inParts = shown.window.look();
        for (auto* item : shown.items)
            item->update();
        EXPECT_EQ(shown.window.look(), inParts) << x;
    }
}

TEST(StripCanvasItem, isDrawnAnewInNewColors) {
    ShownStrips shown(quarters(), 800);
    shown.window.look();
    shown.window.palette.setCategories(QVariantList(7, QColor(Qt::green)));
    EXPECT_TRUE(alike(shown.colorAt(0, false, 100, 12), Qt::green));
}

TEST(StripCanvasItem, aDayWithOnlySoundHasAnEmptyTrack) {
    PagesBench bench;
    bench.add(9 * hour, 600, {.kind = SessionKind::listening});
    ShownStrips shown(dayStripsValue(shared(bench.report()), bench.viewpoint()), 480);
    ASSERT_EQ(shown.value.dayCount(), 1);
    EXPECT_TRUE(alike(shown.colorAt(0, false, 185, 12), over(Qt::black, 0.07)));
    EXPECT_FALSE(alike(shown.colorAt(0, true, 181.5, 4), over(Qt::black, 0.05)));
}

TEST(StripCanvasItem, withoutADayDrawsNothing) {
    ShownStrips shown(quarters(), 800);
    shown.strip(0).setDay(7);
    EXPECT_TRUE(alike(shown.colorAt(0, false, 100, 12), Qt::white));
    shown.strip(0).setDay(0);
    EXPECT_TRUE(alike(shown.colorAt(0, false, 100, 12), categoryColor(shown, 0)));
    shown.pointer.setStrips({});
    EXPECT_TRUE(alike(shown.colorAt(0, false, 100, 12), Qt::white));
}

TEST(StripCanvasItem, anEqualReportMadeAnewIsLookedInto) {
    PagesBench bench;
    bench.add(9 * hour, 900, {.title = "First"});
    auto strips = dayStripsValue(shared(bench.report()), bench.viewpoint());
    ShownStrips shown(strips, 400);
    shown.window.look();
    const std::weak_ptr<const ActivityReport> old = strips.data()->report;
    shown.value = strips = dayStripsValue(shared(bench.report()), bench.viewpoint());
    shown.pointer.setStrips(strips);
    EXPECT_TRUE(old.expired()) << "the report before is let go";
    EXPECT_TRUE(alike(shown.colorAt(0, false, 50, 12), categoryColor(shown, 0)));
}

} // namespace
} // namespace kestrio
