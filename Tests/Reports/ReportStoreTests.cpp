#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Base/VirtualQueue.h"
#include "Kestrio/Reports/ReportStore.h"
#include "Tests/Support/Eventually.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

using enum RangeMode;

constexpr double hour = 3600;

/// A store on a Friday afternoon, with a session source that counts what it is asked.
class StoreBench {
public:
    explicit StoreBench(RangeMode mode = day, ReportStore::Follows follows = ReportStore::Follows::itsPerson,
                        const char* locale = "en_GB")
        : calendar(locale, "Europe/Berlin"),
          time(calendar.date(2026, 11, 20, 15)),
          store(ReportStore::Parts{time, queue, loadingQueue,
                                   [this](DateInterval interval) -> FoundSessions {
                                       EXPECT_TRUE(loadingQueue.isCurrent());
                                       asked.push_back(interval);
                                       if (whileLoading)
                                           std::exchange(whileLoading, nullptr)();
                                       if (trouble)
                                           return *trouble;
                                       return sessions;
                                   },
                                   [this] {
                                       EXPECT_TRUE(loadingQueue.isCurrent());
                                       return classification;
                                   }},
                calendar, mode, follows) {
        observers.push_back(
            store.isLoading().observe([this](bool loading) { told.push_back(loading ? "loading" : "done"); }));
        observers.push_back(store.report().observe([this](const ActivityReport&) { told.push_back("report"); }));
        observers.push_back(store.anchor().observe([this](Date) { told.push_back("anchor"); }));
        observers.push_back(store.mode().observe([this](RangeMode) { told.push_back("mode"); }));
    }

    void addSession(Date start, double length) {
        ActivitySession session;
        session.id = static_cast<std::int64_t>(sessions.size()) + 1;
        session.start = start;
        session.end = start + Seconds(length);
        session.bundleID = "org.example.Editor";
        sessions.push_back(session);
    }

    /// Loads what was asked for and forgets how it went.
    void settle() {
        time.runPending();
        asked.clear();
        told.clear();
    }

    std::string shown() const {
        return calendar.formatted(store.report().value().interval.start, "yyyy-MM-dd") + " to " +
               calendar.formatted(store.report().value().interval.end, "yyyy-MM-dd");
    }

    Calendar calendar;
    VirtualTime time;
    VirtualQueue queue{time, "main"};
    VirtualQueue loadingQueue{time, "loading"};
    std::vector<ActivitySession> sessions;
    std::optional<DatabaseTrouble> trouble; // why they cannot be read
    Classification classification;
    std::vector<DateInterval> asked;
    std::function<void()> whileLoading;
    std::vector<std::string> told;
    ReportStore store;
    std::vector<Subscription> observers;
};

using Told = std::vector<std::string>;

TEST(ReportStore, beginsWithTheEmptyReportOfTheRangeAroundNow) {
    for (const auto mode : allRangeModes) {
        StoreBench bench(mode);
        EXPECT_EQ(bench.store.report().value(),
                  ActivityReport::empty(interval(mode, bench.time.now(), bench.calendar), granularity(mode)));
        EXPECT_EQ(bench.store.anchor().value(), bench.time.now());
        EXPECT_EQ(bench.store.mode().value(), mode);
        EXPECT_FALSE(bench.store.isLoading().value());
        EXPECT_TRUE(bench.store.isCurrent());
        bench.time.advance(Seconds(10 * hour));
        EXPECT_TRUE(bench.asked.empty()); // nobody said reload
    }
}

TEST(ReportStore, loadsOffTheMainQueueAndSwapsTheReportInAsAWhole) {
    StoreBench bench;
    bench.addSession(bench.time.now() - Seconds(600), 60);
    bench.store.reload();
    EXPECT_TRUE(bench.store.isLoading().value());
    EXPECT_TRUE(bench.asked.empty()); // nothing is read on the main queue
    bench.time.runPending();
    EXPECT_EQ(bench.asked, std::vector{bench.calendar.day(bench.time.now())});
    EXPECT_EQ(bench.store.report().value().total, Seconds(60));
    EXPECT_EQ(bench.store.report().value().granularity, Granularity::hour);
    EXPECT_EQ(bench.told, (Told{"loading", "report", "done"}));
}

TEST(ReportStore, anEqualReportTellsNobody) {
    StoreBench bench;
    bench.store.reload();
    bench.time.runPending();
    EXPECT_EQ(bench.told, (Told{"loading", "done"}));
}

TEST(ReportStore, appliesWhatThePersonDecided) {
    StoreBench bench;
    bench.addSession(bench.time.now() - Seconds(600), 60);
    bench.store.reload();
    bench.time.runPending();
    bench.classification.categories.appOverrides["org.example.Editor"] = ActivityCategory::work;
    bench.store.reload();
    bench.time.runPending();
    EXPECT_EQ(bench.store.report().value().categories.at(0).category, ActivityCategory::work);
}

TEST(ReportStore, aNewLoadSupersedesTheOneUnderWay) {
    StoreBench bench;
    bench.store.reload();
    bench.time.runPending();
    bench.settle();
    bench.addSession(bench.time.now() - Seconds(24 * hour), 60);
    bench.addSession(bench.time.now() - Seconds(48 * hour), 90);
    // The second step comes while the first load runs.
    bench.whileLoading = [&] { bench.store.step(-1); };
    bench.store.step(-1);
    bench.time.runPending();
    EXPECT_EQ(bench.asked.size(), 2u);
    EXPECT_EQ(bench.shown(), "2026-11-18 to 2026-11-19");
    EXPECT_EQ(bench.store.report().value().total, Seconds(90));
    EXPECT_EQ(bench.told,
              (Told{"anchor", "loading", "anchor", "report", "done"})); // one report, and loading throughout
    EXPECT_FALSE(bench.store.isLoading().value());
}

TEST(ReportStore, aLoadThatWasSupersededBeforeItBeganReadsNothing) {
    StoreBench bench;
    bench.store.step(-1);
    bench.store.step(-1);
    bench.store.step(-1);
    bench.time.runPending();
    EXPECT_EQ(bench.asked.size(), 1u);
    EXPECT_EQ(bench.shown(), "2026-11-17 to 2026-11-18");
}

TEST(ReportStore, aReloadAskedForByAnObserverOfTheReportIsTheLatest) {
    StoreBench bench;
    bench.addSession(bench.time.now() - Seconds(600), 60);
    int reports = 0;
    const auto again = bench.store.report().observe([&](const ActivityReport&) {
        if (++reports == 1) {
            bench.addSession(bench.time.now() - Seconds(300), 30);
            bench.store.reload();
        }
    });
    bench.store.reload();
    bench.time.runPending();
    EXPECT_EQ(reports, 2);
    EXPECT_EQ(bench.store.report().value().total, Seconds(90));
    EXPECT_EQ(bench.told, (Told{"loading", "report", "report", "done"})); // loading until the second is there
}

TEST(ReportStore, movingInsideTheRangeLoadsNothing) {
    struct Row {
        RangeMode mode;
        int days;
        bool loads;
    };
    const Row rows[] = {
        {day, 0, false},  {day, -1, true},     {week, -4, false},  {week, 2, false},
        {week, -5, true}, {month, -19, false}, {month, -20, true},
    };
    for (const auto& row : rows) {
        StoreBench bench(row.mode);
        bench.store.setAnchor(bench.calendar.addingDays(bench.time.now(), row.days) + Seconds(60));
        bench.time.runPending();
        EXPECT_EQ(bench.asked.size(), row.loads ? 1u : 0u) << rawValue(row.mode) << " " << row.days;
    }
}

TEST(ReportStore, anotherModeAlwaysLoadsAndTheSameNever) {
    StoreBench bench;
    bench.store.setMode(day);
    bench.time.runPending();
    EXPECT_TRUE(bench.asked.empty());
    bench.store.setMode(week);
    bench.time.runPending();
    bench.store.setMode(month);
    bench.time.runPending();
    EXPECT_EQ(bench.asked,
              (std::vector{bench.calendar.weekOfYear(bench.time.now()), bench.calendar.month(bench.time.now())}));
    EXPECT_EQ(bench.store.report().value().granularity, Granularity::day);
}

TEST(ReportStore, stepsNeverIntoTheFuture) {
    for (const auto mode : allRangeModes) {
        StoreBench bench(mode);
        bench.store.step(1);
        EXPECT_EQ(bench.store.anchor().value(), bench.time.now());
        bench.store.step(1000);
        EXPECT_EQ(bench.store.anchor().value(), bench.time.now());
        bench.time.runPending();
        EXPECT_TRUE(bench.asked.empty()); // the range is the same
        bench.store.step(-2);
        bench.time.runPending();
        EXPECT_FALSE(bench.store.isCurrent());
        bench.store.step(5);
        bench.time.runPending();
        EXPECT_TRUE(bench.store.isCurrent());
        EXPECT_EQ(bench.store.anchor().value(), bench.time.now());
    }
}

TEST(ReportStore, stepsByItsUnit) {
    StoreBench bench(month);
    bench.store.setAnchor(bench.calendar.date(2026, 3, 31, 12));
    bench.store.step(-1);
    bench.time.runPending();
    EXPECT_EQ(bench.shown(), "2026-02-01 to 2026-03-01");
    EXPECT_EQ(bench.calendar.formatted(bench.store.anchor().value(), "yyyy-MM-dd"), "2026-02-28");
}

TEST(ReportStore, todayRollsOverAtTheFirstTickAfterMidnight) {
    StoreBench bench(day, ReportStore::Follows::now);
    bench.store.reload();
    bench.store.startAutoRefresh(Seconds(60));
    bench.time.advance(Seconds(9 * hour - 90)); // 23:58:30
    EXPECT_EQ(bench.shown(), "2026-11-20 to 2026-11-21");
    bench.settle();
    bench.time.advance(Seconds(240));
    EXPECT_EQ(bench.shown(), "2026-11-21 to 2026-11-22");
    EXPECT_TRUE(bench.store.isCurrent());
    EXPECT_EQ(bench.store.title(), "Today");
    EXPECT_EQ(bench.asked.back(), bench.calendar.day(bench.time.now()));
}

TEST(ReportStore, reloadFollowsNowBeforeAnythingElse) {
    StoreBench bench(day, ReportStore::Follows::now);
    bench.time.sleepMachine(Seconds(3 * 24 * hour));
    EXPECT_FALSE(bench.store.isCurrent());
    bench.store.reload();
    bench.time.runPending();
    EXPECT_EQ(bench.asked, std::vector{bench.calendar.day(bench.time.now())});
    EXPECT_EQ(bench.store.anchor().value(), bench.time.now());
    EXPECT_EQ(bench.told, (Told{"anchor", "loading", "report", "done"}));
}

TEST(ReportStore, aDashboardLeftOverMidnightStaysOnItsDay) {
    StoreBench bench;
    bench.store.reload();
    bench.store.startAutoRefresh(Seconds(30));
    bench.time.advance(Seconds(8 * hour + 30));
    EXPECT_EQ(bench.store.title(), "Today");
    bench.time.advance(Seconds(2 * hour));
    EXPECT_EQ(bench.shown(), "2026-11-20 to 2026-11-21");
    EXPECT_EQ(bench.store.title(), "Yesterday");
    bench.settle();
    bench.time.advance(Seconds(hour));
    EXPECT_TRUE(bench.asked.empty()); // it does not change any more
}

TEST(ReportStore, refreshesWhileItCanChangeAndSomebodySeesIt) {
    struct Row {
        const char* what;
        RangeMode mode;
        ReportStore::Follows follows;
        int step;
        bool onScreen;
        std::size_t loads; // in ten minutes, ticking every 30 seconds
    };
    using enum ReportStore::Follows;
    const Row rows[] = {
        {"a day, at every tick", day, itsPerson, 0, true, 20},
        {"a week, once in a minute", week, itsPerson, 0, true, 10},
        {"a month, once in a minute", month, itsPerson, 0, true, 10},
        {"a past day", day, itsPerson, -1, true, 0},
        {"a past month", month, itsPerson, -1, true, 0},
        {"out of sight", day, itsPerson, 0, false, 0},
        {"today", day, now, 0, true, 20},
        {"today, out of sight", day, now, 0, false, 0},
    };
    for (const auto& row : rows) {
        StoreBench bench(row.mode, row.follows);
        bench.store.reload();
        if (row.step != 0)
            bench.store.step(row.step);
        bench.store.setOnScreen(row.onScreen);
        bench.settle();
        bench.store.startAutoRefresh(Seconds(30));
        bench.time.advance(Seconds(600 + 6)); // a tick may come a fifth of the interval late
        EXPECT_EQ(bench.asked.size(), row.loads) << row.what;
    }
}

TEST(ReportStore, aTickInWeekModeRightAfterALoadDoesNothing) {
    StoreBench bench(week);
    bench.store.startAutoRefresh(Seconds(60));
    bench.time.advance(Seconds(30));
    bench.store.reload();
    bench.settle();
    bench.time.advance(Seconds(45)); // the first tick: 42 seconds at most after the load
    EXPECT_TRUE(bench.asked.empty());
    bench.time.advance(Seconds(60));
    EXPECT_EQ(bench.asked.size(), 1u);
}

TEST(ReportStore, aStoreThatNeverLoadedIsDueAtOnce) {
    StoreBench bench(month);
    bench.store.startAutoRefresh(Seconds(30));
    bench.time.advance(Seconds(37));
    EXPECT_EQ(bench.asked.size(), 1u);
}

TEST(ReportStore, aClockSetBackDoesNotStopTheRefreshes) {
    StoreBench bench(week);
    bench.store.reload();
    bench.settle();
    bench.store.startAutoRefresh(Seconds(60));
    bench.time.jumpWallClock(Seconds(-3 * hour));
    bench.time.advance(Seconds(73));
    EXPECT_EQ(bench.asked.size(), 1u);
}

TEST(ReportStore, aNewTimerReplacesTheOld) {
    StoreBench bench;
    bench.store.startAutoRefresh(Seconds(10));
    bench.store.startAutoRefresh(Seconds(60));
    bench.time.advance(Seconds(73));
    EXPECT_EQ(bench.asked.size(), 1u);
}

TEST(ReportStore, anotherCalendarLoadsItsOwnRange) {
    StoreBench bench(week);
    bench.store.setCalendar(Calendar("en_US", "America/New_York"));
    bench.time.runPending();
    const Calendar newYork("en_US", "America/New_York");
    EXPECT_EQ(bench.asked, std::vector{newYork.weekOfYear(bench.time.now())});
    EXPECT_EQ(bench.store.subtitle(), "Nov 15 – Nov 21, 2026");
}

TEST(ReportStore, whatCannotBeReadIsToldAndLeavesTheReportOfItsRange) {
    StoreBench bench;
    bench.addSession(bench.time.now() - Seconds(600), 60);
    bench.store.reload();
    bench.settle();
    bench.trouble = DatabaseTrouble::damaged;
    bench.store.reload();
    bench.time.runPending();
    EXPECT_EQ(bench.store.trouble().value(), DatabaseTrouble::damaged);
    EXPECT_EQ(bench.store.report().value().total, Seconds(60));
    EXPECT_EQ(bench.told, (Told{"loading", "done"}));
    bench.store.step(-1);
    bench.time.runPending();
    EXPECT_EQ(bench.store.report().value(),
              ActivityReport::empty(bench.calendar.day(bench.time.now() - Seconds(24 * hour)), Granularity::hour));
    EXPECT_EQ(bench.store.trouble().value(), DatabaseTrouble::damaged);
    EXPECT_FALSE(bench.store.isLoading().value());
}

TEST(ReportStore, triesAgainUntilItCanRead) {
    for (const int step : {0, -1}) { // whether the range can still change or not
        StoreBench bench;
        bench.store.step(step);
        bench.settle();
        bench.trouble = DatabaseTrouble::locked;
        bench.store.reload();
        bench.time.runPending();
        bench.time.advance(3 * ReportStore::retryInterval);
        EXPECT_EQ(bench.asked.size(), 4U);
        bench.trouble = DatabaseTrouble::missing;
        bench.time.advance(ReportStore::retryInterval);
        EXPECT_EQ(bench.store.trouble().value(), DatabaseTrouble::missing);
        bench.trouble.reset();
        bench.addSession(bench.store.anchor().value() - Seconds(600), 60);
        bench.time.advance(ReportStore::retryInterval);
        EXPECT_EQ(bench.store.trouble().value(), std::nullopt);
        EXPECT_EQ(bench.store.report().value().total, Seconds(60));
        bench.settle();
        bench.time.advance(10 * ReportStore::retryInterval);
        EXPECT_TRUE(bench.asked.empty());
    }
}

TEST(ReportStore, doesNotTryAgainWhileNobodySeesIt) {
    StoreBench bench;
    bench.trouble = DatabaseTrouble::missing;
    bench.store.reload();
    bench.settle();
    bench.store.setOnScreen(false);
    bench.time.advance(Seconds(hour));
    EXPECT_TRUE(bench.asked.empty());
}

TEST(ReportStore, titlesFollowTheAnchor) {
    StoreBench bench;
    EXPECT_EQ(bench.store.title(), "Today");
    EXPECT_EQ(bench.store.subtitle(), "Friday, 20 November 2026");
    bench.store.step(-1);
    EXPECT_EQ(bench.store.title(), "Yesterday");
    bench.store.setMode(week);
    EXPECT_EQ(bench.store.title(), "This Week");
    bench.store.step(-1);
    EXPECT_EQ(bench.store.title(), "Week of 9 Nov");
    EXPECT_EQ(bench.store.subtitle(), "9 Nov – 15 Nov 2026");
    bench.store.setMode(month);
    EXPECT_EQ(bench.store.title(), "This Month");
    bench.store.step(-1);
    EXPECT_EQ(bench.store.title(), "October 2026");
}

TEST(ReportStore, aStoreThatIsGoneIsToldNothing) {
    const Calendar calendar("en_GB", "Europe/Berlin");
    VirtualTime time(calendar.date(2026, 11, 20, 15));
    VirtualQueue queue(time, "main");
    VirtualQueue loadingQueue(time, "loading");
    int asked = 0;
    std::optional<ReportStore> store;
    const auto make = [&](ReportStore::Sessions sessions) {
        store.emplace(
            ReportStore::Parts{time, queue, loadingQueue, std::move(sessions), [] { return Classification(); }},
            calendar, day, ReportStore::Follows::itsPerson);
    };
    make([&](DateInterval) {
        ++asked;
        return std::vector<ActivitySession>();
    });
    store->startAutoRefresh(Seconds(10));
    store->reload();
    store.reset(); // before the load began
    time.advance(Seconds(100));
    EXPECT_EQ(asked, 0);
    make([&](DateInterval) {
        ++asked;
        store.reset(); // while it loads
        return std::vector<ActivitySession>();
    });
    store->reload();
    time.advance(Seconds(100));
    EXPECT_EQ(asked, 1);
}

TEST(ReportStore, loadsOnARealThreadAndDropsWhatCameTooLate) {
    // For the checks of data races: many loads, given up at every stage.
    const Calendar calendar("en_GB", "Europe/Berlin");
    const SystemClock clock;
    WorkerQueue loadingQueue("loading");
    WorkerQueue queue("main");
    std::atomic<int> asked = 0;
    auto store = queue.sync([&] {
        return std::make_unique<ReportStore>(ReportStore::Parts{clock, queue, loadingQueue,
                                                                [&](DateInterval interval) {
                                                                    ++asked;
                                                                    ActivitySession session;
                                                                    session.start = interval.start;
                                                                    session.end = interval.end;
                                                                    return std::vector(200, session);
                                                                },
                                                                [] { return Classification(); }},
                                             calendar, day, ReportStore::Follows::itsPerson);
    });
    for (int i = 0; i < 200; ++i)
        queue.async([&] { store->step(-1); });
    ASSERT_TRUE(eventually([&] { return queue.sync([&] { return !store->isLoading().value(); }); }));
    queue.sync([&] {
        EXPECT_EQ(store->report().value().interval, calendar.day(store->anchor().value()));
        EXPECT_GE(asked, 1);
        store->reload();
        store.reset();
    });
    loadingQueue.sync([] {});
    queue.sync([] {});
}

TEST(ReportStore, anEqualReportLeavesTheShownOneWhereItIs) {
    StoreBench bench;
    bench.addSession(bench.time.now() - Seconds(hour), 60);
    bench.store.reload();
    bench.settle();
    const auto shown = bench.store.report().share();
    bench.store.reload();
    bench.time.runPending();
    EXPECT_EQ(bench.store.report().share(), shown);
    EXPECT_EQ(bench.told, (Told{"loading", "done"}));
}

TEST(ReportStore, aReportThatIsNoLongerShownIsFreedOnTheLoadingQueue) {
    StoreBench bench;
    const std::weak_ptr<const ActivityReport> left = bench.store.report().share();
    bench.addSession(bench.time.now() - Seconds(hour), 60);
    bench.store.reload();
    bench.loadingQueue.sync([] {});
    bench.queue.sync([] {});
    EXPECT_EQ(bench.told, (Told{"loading", "report", "done"}));
    EXPECT_FALSE(left.expired());
    bench.loadingQueue.sync([] {});
    EXPECT_TRUE(left.expired());
}

} // namespace
} // namespace kestrio
