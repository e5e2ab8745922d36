#include "Tests/Views/Window/DashboardScreen.h"

namespace kestrio {
namespace {

constexpr Seconds hours{3'600};
constexpr Seconds aMinute{60};

std::string shownDay(const DashboardScreen& screen) {
    return screen.calendar.formatted(screen.dashboard.report().value().interval.start, "yyyy-MM-dd");
}

TEST(DashboardClock, todayStaysTodayOverMidnightAndWhenTheClockIsSet) {
    struct Row {
        const char* what;
        std::function<void(VirtualTime&)> pass;
        const char* day;
    };
    const Row rows[]{
        {"midnight", [](VirtualTime& time) { time.advance(6.5 * hours); }, "2026-11-21"},
        {"a night asleep", [](VirtualTime& time) { time.sleepMachine(15 * hours); }, "2026-11-21"},
        {"a day forward", [](VirtualTime& time) { time.jumpWallClock(24 * hours); }, "2026-11-21"},
        {"a day back", [](VirtualTime& time) { time.jumpWallClock(-24 * hours); }, "2026-11-19"},
        {"an hour back", [](VirtualTime& time) { time.jumpWallClock(-1 * hours); }, "2026-11-20"},
        {"forward and back",
         [](VirtualTime& time) {
             time.jumpWallClock(240 * hours);
             time.advance(aMinute);
             time.jumpWallClock(-240 * hours);
         },
         "2026-11-20"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        DashboardScreen screen;
        row.pass(screen.time);
        screen.time.advance(aMinute);
        screen.settle();
        EXPECT_EQ(shownDay(screen), row.day);
        EXPECT_EQ(screen.dashboard.title(), "Today");
        EXPECT_FALSE(screen.shows("Yesterday"));
    }
}

TEST(DashboardClock, aDayThatWasPickedStays) {
    DashboardScreen screen;
    screen.press(Qt::Key_BracketLeft, Qt::ControlModifier);
    EXPECT_TRUE(screen.shows("Yesterday"));
    screen.time.advance(7 * hours);
    screen.settle();
    EXPECT_EQ(shownDay(screen), "2026-11-19");
    EXPECT_FALSE(screen.shows("Yesterday")) << "the day before yesterday by now";
    screen.time.jumpWallClock(-24 * hours);
    screen.time.advance(aMinute);
    screen.settle();
    EXPECT_EQ(shownDay(screen), "2026-11-19");
    EXPECT_TRUE(screen.shows("Yesterday"));
}

TEST(DashboardClock, aPersonWhoReturnsToTodayGoesOnWithIt) {
    DashboardScreen screen;
    screen.model.step(-3);
    screen.model.showToday();
    screen.time.advance(7 * hours);
    screen.settle();
    EXPECT_EQ(shownDay(screen), "2026-11-21");
}

TEST(DashboardClock, aWeekAndAMonthMoveOnToo) {
    for (const auto mode : {RangeMode::week, RangeMode::month}) {
        DashboardScreen screen({.mode = mode});
        screen.time.advance(12 * 24 * hours);
        screen.settle();
        EXPECT_TRUE(screen.dashboard.isCurrent()) << rawValue(mode);
    }
}

TEST(DashboardClock, todayIsTodayInAnotherZoneToo) {
    DashboardScreen screen;
    screen.time.advance(hours); // half past six in the evening
    screen.calendar = Calendar("en_GB", "Asia/Tokyo");
    screen.dashboard.setCalendar(screen.calendar);
    screen.time.advance(aMinute);
    screen.settle();
    EXPECT_EQ(shownDay(screen), "2026-11-21");
    EXPECT_TRUE(screen.shows("Saturday, 21 November 2026"));
    EXPECT_EQ(screen.dashboard.report().value().interval, screen.calendar.day(screen.time.now()));
}

TEST(DashboardClock, theDayOfAClockChangeIsAWholeDay) {
    DashboardScreen screen;
    const auto change = screen.calendar.date(2027, 3, 28); // 23 hours long
    screen.time.jumpWallClock(change + 1 * hours - screen.time.now());
    screen.time.advance(4 * hours); // past the hour that does not exist
    screen.settle();
    EXPECT_EQ(shownDay(screen), "2027-03-28");
    EXPECT_EQ(screen.dashboard.report().value().interval.duration(), 23 * hours);
    screen.time.advance(19 * hours);
    screen.settle();
    EXPECT_EQ(shownDay(screen), "2027-03-29");
    EXPECT_EQ(screen.dashboard.title(), "Today");
}

} // namespace
} // namespace kestrio
