#include "Tests/Views/Charts/StripsBench.h"

#include <QSignalSpy>

namespace kestrio {
namespace {

constexpr auto invitation = "Move the pointer over a bar to see what you were doing at that moment.";

PagesBench twoQuarters() {
    PagesBench bench;
    bench.add(9 * hour, 900, {.title = "First"}).add(9.75 * hour, 900, {.title = "Second"});
    return bench;
}

DayStripsValue stripsOf(const PagesBench& bench) {
    return dayStripsValue(shared(bench.report()), bench.viewpoint());
}

TEST(StripPointer, reachesFourPointsBesideASession) {
    ShownStrips shown(stripsOf(twoQuarters()), 800);
    struct Row {
        qreal x;
        const char* title; // null: the note that nothing was recorded
    };
    const Row rows[] = {{0, "First"},   {200, "First"}, {204, "First"},  {205, nullptr},
                        {400, nullptr}, {595, nullptr}, {596, "Second"}, {600, "Second"}};
    for (const auto& row : rows) {
        shown.pointAt(0, false, row.x);
        EXPECT_EQ(shown.pointer.isSession(), row.title != nullptr) << row.x;
        if (row.title)
            EXPECT_EQ(shown.pointer.title().toStdString(), row.title) << row.x;
        else
            EXPECT_TRUE(shown.pointer.text().endsWith("nothing recorded; you were away or idle")) << row.x;
    }
}

TEST(StripPointer, invitesWhileNobodyPoints) {
    StripPointer pointer;
    EXPECT_FALSE(pointer.isPointing());
    EXPECT_FALSE(pointer.isSession());
    EXPECT_EQ(pointer.symbol(), "cursorarrow.motionlines");
    EXPECT_EQ(pointer.text(), invitation);
    EXPECT_EQ(pointer.words(), "");
    pointer.setStrips(stripsOf(twoQuarters()));
    EXPECT_EQ(pointer.text(), invitation);
    EXPECT_EQ(pointer.words(), "Friday, 20 Nov: 30m active");
    EXPECT_TRUE(pointer.category().isEmpty());
}

TEST(StripPointer, tellsOfTheSessionUnderThePointer) {
    ShownStrips shown(stripsOf(twoQuarters()), 800);
    shown.pointAt(0, false, 100);
    EXPECT_EQ(shown.pointer.appName(), "Editor");
    EXPECT_EQ(shown.pointer.bundleID(), "org.example.Editor");
    EXPECT_EQ(shown.pointer.times(), " · 09:00 – 09:15 · 15m");
    EXPECT_EQ(shown.pointer.category()["label"].toString(), "Other");
    EXPECT_EQ(shown.pointer.words(), "Editor, First, Other · 09:00 – 09:15 · 15m");
    EXPECT_EQ(shown.pointer.symbol(), "");
    shown.pointAt(0, false, 400);
    EXPECT_EQ(shown.pointer.symbol(), "moon.zzz");
    EXPECT_EQ(shown.pointer.text(), "09:30 — nothing recorded; you were away or idle");
    EXPECT_EQ(shown.pointer.title(), "");
    shown.window.pointAt(1, 1);
    EXPECT_EQ(shown.pointer.text(), invitation);
}

TEST(StripPointer, withinASessionOnlyTheCursorMoves) {
    ShownStrips shown(stripsOf(twoQuarters()), 800);
    shown.pointAt(0, false, 100);
    const QSignalSpy moves(&shown.pointer, &StripPointer::hoverChanged);
    const QSignalSpy news(&shown.pointer, &StripPointer::readoutChanged);
    shown.pointAt(0, false, 110);
    EXPECT_EQ(moves.count(), 1);
    EXPECT_EQ(news.count(), 0);
}

TEST(StripPointer, passesFromStripToStrip) {
    PagesBench bench = twoQuarters();
    bench.add(9 * hour, 1800, {.title = "Song", .kind = SessionKind::listening});
    ShownStrips shown(stripsOf(bench), 800);
    shown.pointAt(0, false, 100);
    shown.pointAt(0, true, 100);
    EXPECT_EQ(shown.pointer.title(), "Song");
    shown.pointer.leave(0, false);
    EXPECT_TRUE(shown.pointer.isPointing()) << "word from the strip that was left comes late";
    shown.pointer.leave(0, true);
    EXPECT_FALSE(shown.pointer.isPointing());
    shown.pointer.moveTo(5, false, 0, 800);
    EXPECT_FALSE(shown.pointer.isPointing()) << "no such day";
}

TEST(StripPointer, goesWithTheKeys) {
    StripPointer pointer;
    EXPECT_FALSE(pointer.press(Qt::Key_Right)) << "no strips";
    pointer.setStrips(stripsOf(twoQuarters()));
    EXPECT_FALSE(pointer.press(Qt::Key_A));
    EXPECT_FALSE(pointer.press(Qt::Key_Escape)) << "nothing to leave";
    struct Row {
        Qt::Key key;
        const char* title;
    };
    const Row rows[] = {{Qt::Key_Right, "First"}, {Qt::Key_Right, "Second"}, {Qt::Key_Right, "Second"},
                        {Qt::Key_Left, "First"},  {Qt::Key_End, "Second"},   {Qt::Key_Home, "First"},
                        {Qt::Key_Down, "First"},  {Qt::Key_Up, "First"}};
    for (const auto& row : rows) {
        EXPECT_TRUE(pointer.press(row.key)) << row.key;
        EXPECT_EQ(pointer.title().toStdString(), row.title) << row.key;
    }
    EXPECT_TRUE(pointer.press(Qt::Key_Escape));
    EXPECT_FALSE(pointer.isPointing());
}

TEST(StripPointer, staysWhereItIsWhenTheReportIsMadeAnew) {
    auto bench = twoQuarters();
    ShownStrips shown(stripsOf(bench), 800);
    shown.pointAt(0, false, 400);
    ASSERT_FALSE(shown.pointer.isSession());
    bench.add(9.4 * hour, 900, {.title = "Third"});
    shown.pointer.setStrips(stripsOf(bench));
    EXPECT_EQ(shown.pointer.title(), "Third");
    shown.pointer.setStrips(dayStripsValue(shared(ActivityReport()), bench.viewpoint()));
    EXPECT_FALSE(shown.pointer.isPointing()) << "its day is gone";
}

} // namespace
} // namespace kestrio
