#include "Tests/ExpectedLog.h"
#include "Tests/Resources/RecorderBench.h"

#include <csignal>
#include <deque>
#include <gtest/gtest.h>
#include <sys/resource.h>

namespace kestrio {
namespace {

using Texts = std::vector<std::string>;
using Kind = ResourceEventKind;
constexpr std::uint64_t gibibyte = 1 << 30;

SettingValue number(std::int64_t value) {
    return value;
}

std::map<std::string, SettingValue> detail(std::int64_t seconds) {
    return {{"resourceDetail", number(seconds)}};
}

tindra::OptimizerConfig optimizerOn() {
    return {true, {}, {}};
}

// --- Pace ------------------------------------------------------------------------------------------------------------

TEST(ResourceRecorder, keepsThePaceThatIsNeeded) {
    using Log = RecorderBench::Log;
    const struct {
        const char* about;
        Log log;
        bool enabled;
        std::int64_t detail;
        bool visible;
        bool optimizer;
        int ticks; // in a minute and a bit
    } rows[] = {
        {"every second", Log::kept, true, 1, false, false, 61},
        {"every five", Log::kept, true, 5, false, false, 12},
        {"every ten", Log::kept, true, 10, false, false, 6},
        {"minutes alone", Log::kept, true, 0, false, false, 6},
        {"seven is one", Log::kept, true, 7, false, false, 61},
        {"a negative one is one", Log::kept, true, -5, false, false, 61},
        {"a page and every second", Log::kept, true, 1, true, false, 61},
        {"a page and every five", Log::kept, true, 5, true, false, 30},
        {"a page and every ten", Log::kept, true, 10, true, false, 30},
        {"a page and minutes", Log::kept, true, 0, true, false, 30},
        {"nothing needs it", Log::kept, false, 1, false, false, 0},
        {"a page alone", Log::kept, false, 1, true, false, 30},
        {"the optimizer alone", Log::kept, false, 1, false, true, 6},
        {"no store", Log::unavailable, true, 1, false, false, 0},
        {"no store and a page", Log::unavailable, true, 1, true, false, 30},
        {"no store and the optimizer", Log::unavailable, true, 1, false, true, 6},
    };
    for (const auto& row : rows) {
        RecorderBench bench({{"resourceLogEnabled", row.enabled}, {"resourceDetail", number(row.detail)}}, row.log);
        if (row.optimizer)
            bench.optimizer.config = optimizerOn();
        bench.recorder->setPageVisible(row.visible);
        bench.recorder->start();
        bench.advance(61.5);
        EXPECT_EQ(static_cast<int>(bench.recorder->history().size()), row.ticks) << row.about;
    }
}

TEST(ResourceRecorder, readsTheDetailThatThePersonSet) {
    const std::pair<std::int64_t, std::int64_t> rows[] = {{0, 0}, {1, 1}, {2, 1}, {5, 5}, {7, 1}, {10, 10}, {-1, 1}};
    for (const auto& [set, meant] : rows)
        EXPECT_EQ(RecorderBench(detail(set)).recorder->detailSeconds(), meant) << set;
    EXPECT_EQ(RecorderBench({{"resourceDetail", std::string("fast")}}).recorder->detailSeconds(), 1);
}

TEST(ResourceRecorder, followsAChangeOfTheSettingsAndOfThePage) {
    RecorderBench bench(detail(10));
    bench.recorder->start();
    const auto ticksIn = [&](double seconds) {
        int ticks = 0;
        const auto counting = bench.recorder->observe([&] { ++ticks; });
        bench.advance(seconds);
        return ticks;
    };
    EXPECT_EQ(ticksIn(31.5), 3);
    bench.settings.set("resourceDetail", number(1));
    EXPECT_EQ(ticksIn(30.5), 30);
    bench.settings.set("resourceLogEnabled", false);
    EXPECT_EQ(ticksIn(30), 0);
    bench.recorder->setPageVisible(true);
    EXPECT_TRUE(bench.recorder->isPageVisible());
    EXPECT_EQ(ticksIn(20.5), 10);
    bench.recorder->setPageVisible(false);
    EXPECT_EQ(ticksIn(30), 0);
    bench.optimizer.config = optimizerOn();
    bench.settings.set("optimizerEnabled", true);
    EXPECT_EQ(ticksIn(31.5), 3);
    bench.settings.set("idleMinutes", number(9));
    bench.recorder->stop();
    EXPECT_EQ(ticksIn(30), 0);
    bench.settings.set("resourceLogEnabled", true);
    EXPECT_EQ(ticksIn(30), 0) << "nobody listens after the end";
}

TEST(ResourceRecorder, startsAndStopsOnce) {
    RecorderBench bench;
    bench.recorder->stop();
    bench.recorder->start();
    bench.recorder->start();
    bench.advance(10.5);
    EXPECT_EQ(bench.recorder->history().size(), 10u);
    EXPECT_EQ(bench.workspace.observations, 1);
    bench.recorder->stop();
    bench.recorder->stop();
    EXPECT_FALSE(bench.workspace.isObserved());
    bench.recorder->start();
    bench.advance(10.5);
    EXPECT_EQ(bench.recorder->history().size(), 20u);
}

TEST(ResourceRecorder, scansEveryTenSecondsAndEveryThreeUnderTheEyesOfSomebody) {
    RecorderBench bench;
    bench.recorder->start();
    bench.advance(61.5);
    EXPECT_EQ(bench.scans, 7) << "at the 1st, 11th, ... 61st second";
    bench.recorder->setPageVisible(true);
    bench.scans = 0;
    bench.advance(60.5);
    EXPECT_EQ(bench.scans, 20);
}

TEST(ResourceRecorder, scansAgainSoonAfterTheClockWasPutBack) {
    RecorderBench bench;
    bench.recorder->start();
    bench.advance(20);
    bench.machine.time.jumpWallClock(Seconds(-7'200));
    bench.scans = 0;
    bench.advance(20);
    EXPECT_GE(bench.scans, 2);
}

/// Keeps its work back until it is told.
class HeldQueue final : public Queue {
public:
    const std::string& label() const override { return label_; }
    bool isCurrent() const override { return false; }
    void async(Work work) override { work_.push_back(std::move(work)); }
    Subscription after(Seconds, Work) override { return {}; }
    Subscription every(Pace, Work) override { return {}; }
    std::size_t waiting() const { return work_.size(); }
    void release() {
        for (; !work_.empty(); work_.pop_front())
            work_.front()();
    }

protected:
    void runAndWait(const Work& work) override {
        release();
        work();
    }

private:
    const std::string label_ = "held";
    std::deque<Work> work_;
};

TEST(ResourceRecorder, dropsTicksWhileASampleIsBeingTaken) {
    HeldQueue slow;
    RecorderBench bench;
    bench.recorder = bench.make(slow);
    bench.recorder->start();
    bench.advance(5.5);
    EXPECT_EQ(slow.waiting(), 1u);
    EXPECT_TRUE(bench.recorder->history().empty());
    slow.release();
    bench.machine.time.runPending();
    EXPECT_EQ(bench.recorder->history().size(), 1u);
    bench.advance(1);
    EXPECT_EQ(slow.waiting(), 1u);
}

TEST(ResourceRecorder, endsInTheMiddleOfASample) {
    HeldQueue slow;
    RecorderBench bench;
    bench.recorder = bench.make(slow);
    bench.recorder->start();
    bench.advance(1.5);
    bench.recorder.reset();
    EXPECT_EQ(slow.waiting(), 0u) << "it waited";
    bench.machine.time.runPending();
    EXPECT_EQ(bench.store->secondsCount(bench.always), 0);
}

TEST(ResourceRecorder, logsNothingOfASampleThatComesAfterTheEnd) {
    HeldQueue slow;
    RecorderBench bench;
    bench.recorder = bench.make(slow);
    bench.machine.kernel.pressure = MemoryPressure::critical;
    bench.recorder->start();
    bench.advance(1.5);
    bench.recorder->stop();
    slow.release();
    bench.machine.time.runPending();
    EXPECT_EQ(bench.recorder->history().size(), 1u);
    EXPECT_TRUE(bench.events(Kind::pressure).empty());
}

// --- Live figures ----------------------------------------------------------------------------------------------------

TEST(ResourceRecorder, publishesTheLatestAndTheLastThreeHundredReadings) {
    RecorderBench bench;
    EXPECT_FALSE(bench.recorder->live());
    bench.recorder->start();
    bench.advance(400);
    const auto& history = bench.recorder->history();
    EXPECT_EQ(history.size(), 300u);
    EXPECT_EQ(history.back().at, bench.recorder->live()->at);
    EXPECT_NEAR((history.back().at - history.front().at).count(), 299, 0.001);
}

TEST(ResourceRecorder, publishesWithoutAStoreAndWithLoggingOff) {
    for (const auto log : {RecorderBench::Log::kept, RecorderBench::Log::unavailable}) {
        RecorderBench bench({{"resourceLogEnabled", false}}, log);
        bench.machine.kernel.pressure = MemoryPressure::critical;
        bench.recorder->start();
        bench.recorder->setPageVisible(true);
        bench.activity = TrackingState::away;
        bench.advance(130);
        EXPECT_EQ(bench.recorder->live()->pressure, MemoryPressure::critical);
        bench.session.happen(SessionEvent::willSleep);
        bench.session.happen(SessionEvent::didWake);
        if (!bench.store)
            continue;
        EXPECT_EQ(bench.minutes(), 0u);
        EXPECT_EQ(bench.seconds(), 0);
        EXPECT_TRUE(bench.store->events(bench.always, 10).empty());
    }
}

TEST(ResourceRecorder, handsTheSamplerWhatItCannotRead) {
    RecorderBench bench;
    bench.workspace.front = RecorderBench::application("Front", 10);
    bench.workspace.running = {RecorderBench::application("Front", 10), RecorderBench::application("Other", 11)};
    bench.machine.run(10, "/front", 200'000'000, "org.example.Front");
    bench.idle = Seconds(61.7);
    bench.activity = TrackingState::idle;
    bench.power = {.battery = 55, .onAC = false, .lowPower = true, .thermal = 2};
    bench.optimizer = {.config = optimizerOn(),
                       .states = {{"org.example.Front", 2}},
                       .frozenApps = 1,
                       .efficientApps = 3,
                       .frozenMemory = 3 * gibibyte};
    bench.recorder->start();
    bench.advance(0.95); // a beat of the probe lies between two ticks
    bench.clock.late += Seconds(0.25);
    bench.advance(71);
    const auto minute = bench.store->systemMinutes(bench.always).at(0);
    EXPECT_EQ(minute.frontApp, "org.example.Front");
    EXPECT_EQ(minute.appsOpen, 2);
    EXPECT_EQ(minute.idleSeconds, 58);
    EXPECT_EQ(minute.battery, 55);
    EXPECT_EQ(minute.onAC, false);
    EXPECT_TRUE(minute.lowPower);
    EXPECT_EQ(minute.thermal, 2);
    EXPECT_EQ(minute.lagMilliseconds, 250);
    EXPECT_EQ(minute.configLabel, optimizerOn().label());
    EXPECT_DOUBLE_EQ(minute.frozenApps, 1);
    EXPECT_DOUBLE_EQ(minute.efficientApps, 3);
    EXPECT_EQ(minute.frozenMemory, 3 * gibibyte);
    EXPECT_EQ(bench.store->appMinutes(bench.always).at(0).state, 2);
    const auto second = bench.store->seconds(bench.always, std::nullopt, 1).at(0);
    EXPECT_EQ(second.idleSeconds, 61);
    EXPECT_EQ(second.state, 1);
}

TEST(ResourceRecorder, codesEveryActivity) {
    const std::pair<TrackingState, std::int64_t> rows[] = {
        {TrackingState::tracking, 0}, {TrackingState::idle, 1}, {TrackingState::away, 2}, {TrackingState::paused, 3}};
    for (const auto& [state, code] : rows) {
        RecorderBench bench;
        bench.activity = state;
        bench.recorder->start();
        bench.advance(3);
        EXPECT_EQ(bench.store->seconds(bench.always, std::nullopt, 1).at(0).state, code);
    }
}

// --- Seconds and minutes ---------------------------------------------------------------------------------------------

TEST(ResourceRecorder, storesSecondsAtThePaceOfTheSetting) {
    const struct {
        std::int64_t detail;
        bool visible;
        std::int64_t rows; // in ten minutes
    } rows[] = {{1, false, 599}, {5, false, 119}, {10, false, 59}, {0, false, 0}, {7, false, 599},
                {1, true, 599},  {5, true, 99},   {10, true, 60},  {0, true, 0}};
    for (const auto& row : rows) {
        RecorderBench bench(detail(row.detail));
        bench.recorder->setPageVisible(row.visible);
        bench.recorder->start();
        bench.advance(601.5);
        bench.recorder->stop();
        EXPECT_NEAR(static_cast<double>(bench.seconds()), static_cast<double>(row.rows), 1)
            << row.detail << (row.visible ? " with a page" : "");
        EXPECT_GE(bench.minutes(), 9u) << "minutes go on at any pace";
    }
}

TEST(ResourceRecorder, storesNoSecondOfTheFirstReading) {
    RecorderBench bench;
    bench.recorder->start();
    bench.advance(1.5);
    bench.recorder->stop();
    EXPECT_EQ(bench.recorder->history().size(), 1u);
    EXPECT_EQ(bench.seconds(), 0);
}

TEST(ResourceRecorder, handsSecondsOverEveryTwentySecondsOrThirtyRows) {
    RecorderBench bench;
    bench.recorder->start();
    std::int64_t waitedMost = 0;
    std::int64_t rows = 0;
    int batches = 0;
    for (int tick = 1; tick <= 300; ++tick) {
        bench.tick();
        const auto now = bench.seconds();
        batches += now > rows ? 1 : 0;
        rows = now;
        waitedMost = std::max(waitedMost, static_cast<std::int64_t>(bench.recorder->history().size()) - 1 - rows);
    }
    EXPECT_LE(waitedMost, 30);
    EXPECT_NEAR(batches, 15, 1);
}

TEST(ResourceRecorder, keepsNoSecondBackWhenItStopsSleepsOrIsSwitchedOff) {
    const std::pair<const char*, std::function<void(RecorderBench&)>> rows[] = {
        {"stopped", [](RecorderBench& bench) { bench.recorder->stop(); }},
        {"asleep", [](RecorderBench& bench) { bench.session.happen(SessionEvent::willSleep); }},
        {"switched off", [](RecorderBench& bench) { bench.settings.set("resourceLogEnabled", false); }},
        {"minutes alone", [](RecorderBench& bench) { bench.settings.set("resourceDetail", number(0)); }},
        {"gone", [](RecorderBench& bench) { bench.recorder.reset(); }},
    };
    for (const auto& [about, happen] : rows) {
        RecorderBench bench;
        bench.recorder->start();
        bench.advance(18.5); // some wait
        ASSERT_LT(bench.seconds(), 17) << about;
        happen(bench);
        bench.machine.time.runPending();
        EXPECT_EQ(bench.seconds(), 17) << about;
    }
}

TEST(ResourceRecorder, storesEachMinuteOnceItIsOver) {
    RecorderBench bench;
    bench.recorder->start();
    bench.advance(59);
    EXPECT_EQ(bench.minutes(), 0u);
    bench.advance(2);
    EXPECT_EQ(bench.minutes(), 1u);
    bench.advance(600);
    EXPECT_EQ(bench.minutes(), 11u);
    bench.recorder->stop();
    EXPECT_EQ(bench.minutes(), 11u) << "the open minute is lost";
}

TEST(ResourceRecorder, goesOnWhileTheStoreIsLocked) {
    RecorderBench bench;
    bench.recorder->start();
    bench.advance(130);
    const auto minutes = bench.minutes();
    const auto history = bench.recorder->history().size();
    {
        sqlite3* raw = nullptr;
        sqlite3_open((bench.folder.path() / ResourceStore::fileName).c_str(), &raw);
        const sqlite::Connection other(raw);
        ASSERT_EQ(sqlite::execute(raw, "BEGIN IMMEDIATE"), std::nullopt);
        const ExpectedLog log;
        bench.tick();
        bench.recorder->stop(); // hands over what waits
        bench.machine.time.runPending();
        EXPECT_EQ(log.lines(), (Texts{"Kestrio resource log SQL error: database is locked"}));
    }
    EXPECT_GT(bench.recorder->history().size(), history);
    bench.recorder->start();
    bench.advance(130);
    EXPECT_GT(bench.minutes(), minutes);
}

/// While it lives no file grows beyond so many bytes, as on a full disk.
class FullDisk {
public:
    explicit FullDisk(std::uintmax_t bytes) {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit full{static_cast<rlim_t>(bytes), before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &full);
    }
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &before_); }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    rlimit before_{};
};

TEST(ResourceRecorder, goesOnWithAFullDisk) {
    RecorderBench bench;
    bench.recorder->start();
    bench.advance(100);
    const auto history = bench.recorder->history().size();
    {
        const ExpectedLog log;
        const FullDisk full(std::filesystem::file_size(bench.folder.path() / ResourceStore::fileName) / 2);
        bench.advance(130);
        EXPECT_FALSE(log.lines().empty());
        for (const auto& line : log.lines())
            EXPECT_EQ(line.find("Kestrio resource log SQL error: "), 0u) << line;
    }
    EXPECT_EQ(bench.recorder->history().size(), history + 130);
    const auto minutes = bench.minutes();
    bench.advance(130);
    EXPECT_GT(bench.minutes(), minutes) << "there is room again";
}

// --- Pruning ---------------------------------------------------------------------------------------------------------

TEST(ResourceRecorder, prunesSoonAfterItsStartAndEverySixHours) {
    const struct {
        std::int64_t days, detailDays;
        int keptMinutes, keptSeconds; // of those written 0, 1, ... 9 days ago
    } rows[] = {{5, 2, 5, 2}, {2, 5, 2, 2}, {0, 0, 1, 1}, {-3, -3, 1, 1}, {90, 7, 10, 7}};
    for (const auto& row : rows) {
        RecorderBench bench({{"resourceLogDays", number(row.days)},
                             {"resourceDetailDays", number(row.detailDays)},
                             {"resourceDetail", number(0)}});
        const auto now = bench.machine.time.now();
        for (int day = 0; day < 10; ++day) {
            const auto at = now - Seconds(86'400.0 * day + 600);
            bench.store->write({.minute = at + Seconds(300)}, {});
            bench.store->write({SystemSecond{.at = at + Seconds(300)}});
        }
        bench.recorder->start();
        bench.advance(11.5);
        EXPECT_EQ(bench.minutes(), static_cast<std::size_t>(row.keptMinutes)) << row.days;
        EXPECT_EQ(bench.seconds(), row.keptSeconds) << row.days << " and " << row.detailDays;
    }
}

TEST(ResourceRecorder, prunesAgainOnlyAfterSixHours) {
    RecorderBench bench({{"resourceLogDays", number(1)}, {"resourceDetail", number(0)}});
    bench.recorder->start();
    bench.advance(12);
    const auto old = bench.machine.time.now() - Seconds(3 * 86'400);
    bench.store->write({.minute = old}, {});
    const auto hasOld = [&] { return bench.store->earliestMinute() == old; };
    bench.advance(21'570);
    EXPECT_TRUE(hasOld());
    bench.advance(40);
    EXPECT_FALSE(hasOld());
}

// --- Events ----------------------------------------------------------------------------------------------------------

TEST(ResourceRecorder, notesNothingOfItsFirstReadingsButPressure) {
    RecorderBench bench;
    bench.power = {.battery = 9, .onAC = false, .lowPower = true, .thermal = 3};
    bench.activity = TrackingState::away;
    bench.optimizer.config = optimizerOn();
    bench.machine.kernel.pressure = MemoryPressure::warning;
    bench.recorder->start();
    bench.advance(10);
    const auto events = bench.store->events(bench.always, 10);
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].kind, Kind::pressure);
}

TEST(ResourceRecorder, notesARiseOfPressureAlone) {
    using enum MemoryPressure;
    const struct {
        const char* about;
        std::vector<MemoryPressure> levels;
        std::size_t events;
    } rows[] = {
        {"up, down, up, down", {normal, warning, normal, warning}, 2},
        {"further up", {warning, critical}, 2},
        {"down from critical", {critical, warning}, 1},
        {"down and up again", {critical, warning, critical}, 2},
        {"it stays", {warning, warning, warning}, 1},
        {"normal at first", {normal, normal}, 0},
        {"critical at first", {critical, critical}, 1},
    };
    for (const auto& row : rows) {
        RecorderBench bench;
        bench.recorder->start();
        for (const auto level : row.levels) {
            bench.machine.kernel.pressure = level;
            bench.tick();
        }
        EXPECT_EQ(bench.events(Kind::pressure).size(), row.events) << row.about;
    }
}

TEST(ResourceRecorder, tellsOfPressureWithTheLargestApplicationsAndTheSwap) {
    RecorderBench bench;
    bench.machine.run(10, "/Small", gibibyte / 4);
    bench.machine.run(11, "/Large", 3 * gibibyte);
    bench.machine.run(12, "/Medium", gibibyte);
    bench.machine.kernel.swapUse = SwapUse{2 * gibibyte, 4 * gibibyte};
    bench.machine.kernel.pressure = MemoryPressure::critical;
    bench.recorder->start();
    bench.tick();
    const auto event = bench.store->events(bench.always, 1).at(0);
    EXPECT_EQ(event.detail, "Memory pressure critical, 2 GB of swap in use. Most memory: Large 3 GB, Medium 1 GB.");
    EXPECT_EQ(event.bytes, 2 * gibibyte);
    EXPECT_EQ(event.appID, std::nullopt);
}

TEST(ResourceRecorder, notesChangesOfActivityHeatPowerAndSetup) {
    RecorderBench bench;
    bench.power = {.battery = 81, .onAC = true};
    bench.recorder->start();
    bench.tick();
    const std::pair<std::function<void()>, std::pair<Kind, Texts>> steps[] = {
        {[&] { bench.activity = TrackingState::idle; },
         {Kind::activity, {"Active → Idle. No keyboard or mouse for 3 minutes."}}},
        {[&] { bench.activity = TrackingState::paused; },
         {Kind::activity, {"Active → Idle. No keyboard or mouse for 3 minutes.", "Idle → Paused."}}},
        {[&] { bench.power.thermal = 2; }, {Kind::thermal, {"Heat rose to Serious."}}},
        {[&] { bench.power.thermal = 1; }, {Kind::thermal, {"Heat rose to Serious.", "Heat eased to Fair."}}},
        {[&] { bench.power.onAC = false; }, {Kind::power, {"Running on battery (81%)."}}},
        {[&] { bench.power.lowPower = true; }, {Kind::power, {"Running on battery (81%).", "Low Power Mode on."}}},
        {[&] { bench.optimizer.config = optimizerOn(); },
         {Kind::configChanged, {"Now: " + optimizerOn().label() + "."}}},
    };
    for (const auto& [change, expected] : steps) {
        change();
        bench.tick();
        bench.tick();
        EXPECT_EQ(bench.events(expected.first), expected.second);
    }
    bench.power = {.onAC = true, .lowPower = false, .thermal = 1};
    bench.tick();
    bench.power.onAC = false; // the percentage is unknown by now
    bench.tick();
    EXPECT_EQ(bench.events(Kind::power), (Texts{"Running on battery (81%).", "Low Power Mode on.", "Plugged in.",
                                                "Low Power Mode off.", "Running on battery"}));
}

TEST(ResourceRecorder, notesNoChangeOfMainsThatItDoesNotKnowOnBothSides) {
    RecorderBench bench;
    bench.recorder->start();
    for (const auto known : {std::optional<bool>(), std::optional(true), std::optional<bool>(), std::optional(false)}) {
        bench.power.onAC = known;
        bench.tick();
    }
    EXPECT_TRUE(bench.events(Kind::power).empty());
}

TEST(ResourceRecorder, countsTheSetIdleMinutesInItsWords) {
    RecorderBench bench({{"idleMinutes", number(0)}});
    bench.recorder->start();
    bench.tick();
    bench.activity = TrackingState::idle;
    bench.tick();
    EXPECT_EQ(bench.events(Kind::activity), (Texts{"Active → Idle. No keyboard or mouse for 1 minutes."}));
}

TEST(ResourceRecorder, notesOneSlowdownInThreeMinutes) {
    RecorderBench bench;
    bench.machine.run(10, "/Large", 3 * gibibyte);
    bench.recorder->start();
    const auto minute = [&](bool slow) {
        bench.machine.kernel.pressure = slow ? MemoryPressure::critical : MemoryPressure::normal;
        bench.advance(60);
    };
    bench.advance(0.5);
    minute(true);
    bench.advance(1);
    EXPECT_EQ(bench.events(Kind::slowdown), (Texts{"Memory was critical. Most memory: Large 3 GB."}));
    minute(false);
    minute(true); // 120 seconds after the first
    EXPECT_EQ(bench.events(Kind::slowdown).size(), 1u);
    minute(true); // 180
    minute(false);
    EXPECT_EQ(bench.events(Kind::slowdown).size(), 2u);
    EXPECT_EQ(bench.store->events(bench.always, 1).at(0).appID, std::nullopt);
}

TEST(ResourceRecorder, namesAStallInASlowdown) {
    RecorderBench bench;
    bench.recorder->start();
    bench.advance(10);
    bench.clock.late += Seconds(1.26);
    bench.advance(60);
    EXPECT_EQ(bench.events(Kind::slowdown), (Texts{"The Mac stalled for 1.3 s."}));
}

TEST(ResourceRecorder, notesApplicationsThatAreOpenedAndClosed) {
    RecorderBench bench;
    bench.workspace.running = {RecorderBench::application("There", 1)};
    bench.recorder->start();
    bench.workspace.running.push_back(RecorderBench::application("New", 2));
    bench.workspace.announce(WorkspaceNotice::launched);
    bench.workspace.announce(WorkspaceNotice::launched); // told twice
    bench.workspace.running.push_back({.bundleIdentifier = {}, .localizedName = "Plain", .processIdentifier = 3});
    bench.workspace.running.push_back({{}, {}, 4}); // nobody can be told what this is
    bench.workspace.announce(WorkspaceNotice::launched);
    bench.workspace.running[1].localizedName = "Renamed";
    bench.workspace.announce(WorkspaceNotice::launched);
    bench.workspace.running.erase(bench.workspace.running.begin());
    bench.workspace.announce(WorkspaceNotice::terminated);
    EXPECT_EQ(bench.events(Kind::appOpened), (Texts{"New was opened.", "Plain was opened."}));
    EXPECT_EQ(bench.events(Kind::appClosed), (Texts{"There was closed."}));
    const auto events = bench.store->events(bench.always, 10);
    EXPECT_EQ(events[0].appID, "org.example.There");
    EXPECT_EQ(events[0].appName, "There");
    EXPECT_EQ(events[1].appID, "Plain");
}

TEST(ResourceRecorder, notesNoApplicationsWhileLoggingIsOff) {
    RecorderBench bench({{"resourceLogEnabled", false}});
    bench.recorder->start();
    bench.workspace.running.push_back(RecorderBench::application("New", 2));
    bench.workspace.announce(WorkspaceNotice::launched);
    bench.settings.set("resourceLogEnabled", true);
    bench.workspace.running.clear();
    bench.workspace.announce(WorkspaceNotice::terminated);
    EXPECT_TRUE(bench.events(Kind::appOpened).empty());
    EXPECT_EQ(bench.events(Kind::appClosed), (Texts{"New was closed."})) << "it is known all the same";
}

TEST(ResourceRecorder, notesSleepAndHowLongItWas) {
    RecorderBench bench;
    bench.recorder->start();
    bench.advance(10);
    bench.session.happen(SessionEvent::willSleep);
    EXPECT_FALSE(bench.session.isHeldBack());
    bench.machine.time.sleepMachine(Seconds(8 * 3'600 + 305));
    bench.session.happen(SessionEvent::didWake);
    bench.session.happen(SessionEvent::didWake); // told twice, or its sleep was not
    for (const auto other : {SessionEvent::screenIsLocked, SessionEvent::displaysDidSleep})
        bench.session.happen(other);
    EXPECT_EQ(bench.events(Kind::macSlept), (Texts{"The Mac went to sleep."}));
    EXPECT_EQ(bench.events(Kind::macWoke), (Texts{"Woke after 8h 5m asleep.", "The Mac woke up."}));
    bench.advance(2);
    EXPECT_EQ(bench.minutes(), 1u) << "that before the sleep, and none in between";
}

// --- Own cost --------------------------------------------------------------------------------------------------------

struct CostlyBench : RecorderBench {
    explicit CostlyBench(std::map<std::string, SettingValue> changed = {}) : RecorderBench(std::move(changed)) {
        ownUse.emplace();
        recorder->start();
    }
    /// Each minute the program takes so much CPU time.
    void pass(int minutes, double cpuPerMinute) {
        for (int minute = 0; minute < minutes; ++minute) {
            ownUse->cpu += Seconds(cpuPerMinute);
            advance(60);
        }
    }
};

TEST(ResourceRecorder, recordsMinutesAloneWhenItTakesTooMuchItself) {
    CostlyBench bench;
    {
        const ExpectedLog log;
        bench.pass(12, 0.48);
        EXPECT_EQ(log.lines(), (Texts{"Kestrio resource log: the program took 0.8 % of a core for 10 minutes; "
                                      "recording minutes alone for an hour"}));
    }
    ASSERT_TRUE(bench.recorder->loweredPace());
    EXPECT_NEAR(bench.recorder->loweredPace()->cost.cores, 0.008, 0.0005);
    EXPECT_EQ(bench.recorder->detailSeconds(), 1) << "what the person set";
    const auto seconds = bench.seconds();
    const auto minutes = bench.minutes();
    bench.pass(30, 0.48);
    EXPECT_EQ(bench.seconds(), seconds);
    EXPECT_EQ(bench.minutes(), minutes + 30);
    EXPECT_TRUE(bench.recorder->ownCost());
}

TEST(ResourceRecorder, goesBackToItsPaceAfterAnHour) {
    CostlyBench bench;
    const ExpectedLog log;
    bench.pass(12, 1);
    bench.pass(58, 0.1);
    EXPECT_TRUE(bench.recorder->loweredPace());
    bench.pass(3, 0.1);
    EXPECT_FALSE(bench.recorder->loweredPace());
    const auto seconds = bench.seconds();
    bench.pass(10, 0.1);
    EXPECT_GE(bench.seconds(), seconds + 550);
    bench.pass(12, 1);
    EXPECT_TRUE(bench.recorder->loweredPace()) << "and down again where it is still too much";
    EXPECT_EQ(log.lines().size(), 2u);
}

TEST(ResourceRecorder, goesBackToThePaceThatThePersonSets) {
    for (const auto& [key, value] :
         {std::pair("resourceDetail", number(5)), std::pair("resourceLogEnabled", SettingValue(false))}) {
        CostlyBench bench;
        const ExpectedLog log;
        bench.pass(12, 1);
        ASSERT_TRUE(bench.recorder->loweredPace());
        bench.settings.set("idleMinutes", number(4));
        bench.machine.time.runPending();
        ASSERT_TRUE(bench.recorder->loweredPace()) << "another setting";
        bench.settings.set(key, value);
        bench.machine.time.runPending();
        EXPECT_FALSE(bench.recorder->loweredPace()) << key;
        EXPECT_FALSE(bench.recorder->ownCost()) << "measured anew";
    }
}

TEST(ResourceRecorder, keepsItsPaceWithinItsBudget) {
    CostlyBench bench;
    bench.pass(60, 0.29);
    EXPECT_FALSE(bench.recorder->loweredPace());
    ASSERT_TRUE(bench.recorder->ownCost());
    EXPECT_NEAR(bench.recorder->ownCost()->cores, 0.29 / 60, 0.0005);
}

TEST(ResourceRecorder, hasNothingToLowerWhereItRecordsMinutesAlone) {
    CostlyBench bench(detail(0));
    bench.pass(30, 5);
    EXPECT_FALSE(bench.recorder->loweredPace());
}

TEST(ResourceRecorder, keepsItsPaceWhereItsCostCannotBeRead) {
    RecorderBench bench;
    bench.recorder->start();
    bench.advance(1'000);
    EXPECT_FALSE(bench.recorder->loweredPace());
    EXPECT_FALSE(bench.recorder->ownCost());
}

} // namespace
} // namespace kestrio
