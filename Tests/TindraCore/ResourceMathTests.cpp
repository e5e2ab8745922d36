#include "TindraCore/ResourceMath.h"

#include <gtest/gtest.h>
#include <limits>
#include <numeric>
#include <rapidcheck/gtest.h>
#include <unordered_set>
#include <vector>

namespace tindra {
namespace {

constexpr std::uint64_t mebibyte = 1'048'576;
constexpr auto nan = std::numeric_limits<double>::quiet_NaN();
constexpr auto infinity = std::numeric_limits<double>::infinity();

TEST(CoreLoad, poolsTheTicksOfEachClass) {
    const std::vector<CoreTicks> before{{10, 100}, {20, 100}, {0, 0}, {1000, 5000}};
    // 30 of 100 and 0 of 300: 30 of 400, not the mean of 30 % and 0 %.
    const std::vector<CoreTicks> after{{40, 200}, {20, 400}, {50, 100}, {1050, 5100}};
    EXPECT_EQ(coreLoad(before, after, 2), (CoreLoad{0.075, 0.5}));
    EXPECT_EQ(coreLoad(before, after, 1), (CoreLoad{0.3, 0.2}));
}

TEST(CoreLoad, ofReadingsThatCannotBeComparedIsNothing) {
    const std::vector<CoreTicks> none;
    const std::vector<CoreTicks> one{{1, 2}};
    const std::vector<CoreTicks> two{{5, 9}, {5, 9}};
    for (const std::int64_t cores : {-1, 0, 1, 2, 3}) {
        EXPECT_EQ(coreLoad(none, two, cores), CoreLoad{}) << cores;
        EXPECT_EQ(coreLoad(one, two, cores), CoreLoad{}) << cores;
        EXPECT_EQ(coreLoad(two, one, cores), CoreLoad{}) << cores;
        EXPECT_EQ(coreLoad(two, none, cores), CoreLoad{}) << cores;
        EXPECT_EQ(coreLoad(none, none, cores), CoreLoad{}) << cores;
    }
}

TEST(CoreLoad, countsTheCoresOfEachClassWithinTheMachine) {
    const std::vector<CoreTicks> before(2);
    const std::vector<CoreTicks> after{{1, 4}, {3, 4}};
    struct Row {
        std::int64_t efficiencyCores;
        CoreLoad load;
    };
    const Row rows[] = {{INT64_MIN, {0, 0.5}}, {-1, {0, 0.5}}, {0, {0, 0.5}},        {1, {0.25, 0.75}},
                        {2, {0.5, 0}},         {3, {0.5, 0}},  {INT64_MAX, {0.5, 0}}};
    for (const auto& row : rows)
        EXPECT_EQ(coreLoad(before, after, row.efficiencyCores), row.load) << row.efficiencyCores;
}

TEST(CoreLoad, ofTwoEqualReadingsIsNothing) {
    const std::vector<CoreTicks> ticks{{5, 10}, {7, 20}};
    EXPECT_EQ(coreLoad(ticks, ticks, 1), CoreLoad{});
}

TEST(CoreLoad, aCounterThatFellLooksLikeFullLoad) {
    const std::vector<CoreTicks> before{{100, 1000}};
    EXPECT_EQ(coreLoad(before, std::vector<CoreTicks>{{99, 1100}}, 1), (CoreLoad{1, 0}));
    EXPECT_EQ(coreLoad(before, std::vector<CoreTicks>{{99, 1100}}, 0), (CoreLoad{0, 1}));
}

TEST(CoreLoad, aCounterThatWrappedIsCountedAcrossTheEnd) {
    const std::vector<CoreTicks> before{{UINT64_MAX - 4, UINT64_MAX - 9}};
    EXPECT_EQ(coreLoad(before, std::vector<CoreTicks>{{0, 0}}, 1), (CoreLoad{0.5, 0}));
}

TEST(CoreLoad, moreBusyTicksThanTicksIsFullLoad) {
    EXPECT_EQ(coreLoad(std::vector<CoreTicks>(1), std::vector<CoreTicks>{{7, 5}}, 1), (CoreLoad{1, 0}));
    EXPECT_EQ(coreLoad(std::vector<CoreTicks>(1), std::vector<CoreTicks>{{5, 5}}, 1), (CoreLoad{1, 0}));
    EXPECT_EQ(coreLoad(std::vector<CoreTicks>(1), std::vector<CoreTicks>{{5, 0}}, 1), CoreLoad{});
}

Running runningOf(const std::vector<double>& values) {
    Running running;
    for (const double value : values)
        running.add(value);
    return running;
}

TEST(Running, foldsItsValues) {
    struct Row {
        const char* name;
        std::vector<double> values;
        Running running;
        double average;
    };
    const Row rows[] = {
        {"nothing", {}, {0, 0, 0}, 0},
        {"one below zero", {-3}, {-3, -3, 1}, -3},
        {"all below zero", {-3, -1, -2}, {-6, -1, 3}, -2},
        {"rising", {1, 2, 6}, {9, 6, 3}, 3},
        {"falling", {6, 2, 1}, {9, 6, 3}, 3},
        {"zeros", {0, 0}, {0, 0, 2}, 0},
        {"equal", {2, 2}, {4, 2, 2}, 2},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(runningOf(row.values), row.running) << row.name;
        EXPECT_EQ(runningOf(row.values).average(), row.average) << row.name;
    }
}

TEST(Running, aCountThatIsNotPositiveHasNoAverage) {
    EXPECT_EQ((Running{5, 5, 0}).average(), 0);
    EXPECT_EQ((Running{5, 5, -1}).average(), 0);
}

TEST(Running, whatIsNotANumberIsNoPeak) {
    EXPECT_EQ(runningOf({2, nan}).peak, 2);
    EXPECT_EQ(runningOf({2, nan, 3}).peak, 3);
}

const AppReading reading{.cpu = 0.5,
                         .memory = 1000,
                         .resident = 600,
                         .pcoreShare = 0.25,
                         .pageins = 3,
                         .frontSeconds = 1.5,
                         .state = 1,
                         .processes = 4,
                         .diskRead = 10,
                         .diskWritten = 20,
                         .energy = 30,
                         .wakeups = 40};

TEST(AppMinuteAccumulator, beginsWithItsNameAlone) {
    const AppMinuteAccumulator minute("App");
    EXPECT_EQ(minute.name, "App");
    for (const auto& running : {minute.cpu, minute.memory, minute.resident, minute.pcoreShare})
        EXPECT_EQ(running, Running{});
    for (const auto count : {minute.pageins, minute.diskRead, minute.diskWritten, minute.energy, minute.wakeups})
        EXPECT_EQ(count, 0u);
    EXPECT_EQ(minute.frontSeconds, 0);
    EXPECT_EQ(minute.state, 0);
    EXPECT_EQ(minute.processes, 0);
}

TEST(AppMinuteAccumulator, foldsItsReadings) {
    AppMinuteAccumulator minute("App");
    minute.add(reading);
    auto second = reading;
    second.cpu = 1.5;
    second.memory = 500;
    second.resident = 800;
    second.pcoreShare = 0.75;
    second.state = 2;
    second.processes = 3;
    minute.add(second);
    EXPECT_EQ(minute.cpu, (Running{2, 1.5, 2}));
    EXPECT_EQ(minute.memory, (Running{1500, 1000, 2}));
    EXPECT_EQ(minute.resident, (Running{1400, 800, 2}));
    EXPECT_EQ(minute.pcoreShare, (Running{1, 0.75, 2}));
    EXPECT_EQ(minute.pageins, 6u);
    EXPECT_EQ(minute.frontSeconds, 3);
    EXPECT_EQ(minute.state, 2);
    EXPECT_EQ(minute.processes, 4);
    EXPECT_EQ(minute.diskRead, 20u);
    EXPECT_EQ(minute.diskWritten, 40u);
    EXPECT_EQ(minute.energy, 60u);
    EXPECT_EQ(minute.wakeups, 80u);
}

TEST(AppMinuteAccumulator, aShareThatNobodyCouldTellChangesNothing) {
    AppMinuteAccumulator minute("App");
    minute.add(reading);
    auto untold = reading;
    untold.pcoreShare.reset();
    minute.add(untold);
    EXPECT_EQ(minute.pcoreShare, (Running{0.25, 0.25, 1}));
    EXPECT_EQ(minute.cpu.count, 2);
}

TEST(AppMinuteAccumulator, stateAndProcessesNeverFall) {
    AppMinuteAccumulator minute("App");
    auto lower = reading;
    lower.state = -1;
    lower.processes = -1;
    minute.add(lower);
    EXPECT_EQ(minute.state, 0);
    EXPECT_EQ(minute.processes, 0);
}

TEST(AppMinuteAccumulator, itsCountsWrapAround) {
    AppMinuteAccumulator minute("App");
    AppReading end;
    end.pageins = end.diskRead = end.diskWritten = end.energy = end.wakeups = UINT64_MAX;
    minute.add(end);
    minute.add(reading);
    EXPECT_EQ(minute.pageins, 2u);
    EXPECT_EQ(minute.diskRead, 9u);
    EXPECT_EQ(minute.diskWritten, 19u);
    EXPECT_EQ(minute.energy, 29u);
    EXPECT_EQ(minute.wakeups, 39u);
}

TEST(AppMinuteAccumulator, itsWattsAreOverSixtySeconds) {
    AppMinuteAccumulator minute("App");
    EXPECT_EQ(minute.watts(), 0);
    minute.energy = 60'000'000'000;
    EXPECT_EQ(minute.watts(), 1);
    minute.energy = 18'000'000'000;
    EXPECT_EQ(minute.watts(), 0.3);
}

TEST(AppMinuteAccumulator, isWorthKeepingFromEachBoundOn) {
    struct Row {
        const char* name;
        AppReading reading;
        bool isWorthKeeping;
    };
    const Row rows[] = {
        {"nothing", {}, false},
        {"100 MiB", {.memory = 104'857'600}, true},
        {"a byte less", {.memory = 104'857'599}, false},
        {"resident memory alone", {.resident = 1'000'000'000}, false},
        {"a twentieth of a core", {.cpu = 0.05}, true},
        {"just less", {.cpu = 0.049999999999999996}, false},
        {"a moment in front", {.frontSeconds = 0.001}, true},
        {"less than no time in front", {.frontSeconds = -1}, false},
        {"slowed", {.state = 1}, true},
        {"a state below all", {.state = -1}, false},
        {"50 MiB read", {.diskRead = 52'428'800}, true},
        {"50 MiB written", {.diskWritten = 52'428'800}, true},
        {"50 MiB together", {.diskRead = 50 * mebibyte - 7, .diskWritten = 7}, true},
        {"a byte less", {.diskRead = 50 * mebibyte - 7, .diskWritten = 6}, false},
        {"a byte less read", {.diskRead = 52'428'799}, false},
        {"a byte less written", {.diskWritten = 52'428'799}, false},
        {"counters near their end", {.diskRead = UINT64_MAX, .diskWritten = 2}, true},
        {"counters near their end", {.diskRead = 2, .diskWritten = UINT64_MAX}, true},
        {"0.3 W", {.energy = 18'000'000'000}, true},
        {"a nanojoule less", {.energy = 17'999'999'999}, false},
        {"what is not counted",
         {.pcoreShare = 1, .pageins = 1'000'000, .processes = 1000, .wakeups = 1'000'000},
         false},
        {"no number", {.cpu = nan, .frontSeconds = nan}, false},
    };
    for (const auto& row : rows) {
        AppMinuteAccumulator minute("App");
        minute.add(row.reading);
        EXPECT_EQ(minute.isWorthKeeping(), row.isWorthKeeping) << row.name;
    }
    EXPECT_FALSE(AppMinuteAccumulator("App").isWorthKeeping());
    AppMinuteAccumulator below("App");
    below.state = -1;
    EXPECT_FALSE(below.isWorthKeeping());
}

TEST(AppMinuteAccumulator, itsMemoryCountsByThePeakAndItsCpuByTheAverage) {
    AppMinuteAccumulator minute("App");
    minute.add({.memory = 104'857'600});
    minute.add({.memory = 0});
    EXPECT_TRUE(minute.isWorthKeeping());
    AppMinuteAccumulator brief("App");
    brief.add({.cpu = 0.09});
    EXPECT_TRUE(brief.isWorthKeeping());
    brief.add({.cpu = 0});
    EXPECT_FALSE(brief.isWorthKeeping());
}

TEST(OutOfRAM, isWhatTheFootprintHasBeyondPhysicalMemory) {
    EXPECT_EQ(outOfRAM(10, 4), 6u);
    EXPECT_EQ(outOfRAM(4, 4), 0u);
    EXPECT_EQ(outOfRAM(3, 4), 0u);
    EXPECT_EQ(outOfRAM(0, UINT64_MAX), 0u);
    EXPECT_EQ(outOfRAM(UINT64_MAX, 0), UINT64_MAX);
}

TEST(MinuteHealth, isASlowdownFromEachBoundOn) {
    struct Row {
        const char* name;
        MinuteHealth health;
        bool isSlowdown;
    };
    const Row rows[] = {
        {"nothing", {}, false},
        {"500 ms", {.lagMilliseconds = 500}, true},
        {"499 ms", {.lagMilliseconds = 499}, false},
        {"critical pressure", {.pressure = 4}, true},
        {"above critical", {.pressure = 5}, true},
        {"pressure below critical", {.pressure = 3}, false},
        {"256 MiB swapped in", {.swapInBytes = 268'435'456}, true},
        {"a byte less", {.swapInBytes = 268'435'455}, false},
        {"4 GiB swapped out", {.swapOutBytes = 4096 * mebibyte}, false},
        {"each just below",
         {.pressure = 3, .swapInBytes = 268'435'455, .swapOutBytes = UINT64_MAX, .lagMilliseconds = 499},
         false},
    };
    for (const auto& row : rows)
        EXPECT_EQ(row.health.isSlowdown(), row.isSlowdown) << row.name;
}

TEST(BehaviourAccumulator, hasTheCodesOfTheLog) {
    EXPECT_EQ(BehaviourAccumulator::active, 0);
    EXPECT_EQ(BehaviourAccumulator::idle, 1);
    EXPECT_EQ(BehaviourAccumulator::away, 2);
    EXPECT_EQ(BehaviourAccumulator::paused, 3);
}

TEST(BehaviourAccumulator, addsToTheSecondsOfTheState) {
    struct Row {
        std::int64_t state;
        BehaviourAccumulator expected;
    };
    const Row rows[] = {
        {0, {.activeSeconds = 2}},         {1, {.idleSeconds = 2}},   {2, {.awaySeconds = 2}},
        {3, {.pausedSeconds = 2}},         {7, {.pausedSeconds = 2}}, {-1, {.pausedSeconds = 2}},
        {INT64_MAX, {.pausedSeconds = 2}},
    };
    for (const auto& row : rows) {
        BehaviourAccumulator behaviour;
        behaviour.add(row.state, 2, std::nullopt);
        EXPECT_EQ(behaviour, row.expected) << row.state;
    }
}

TEST(BehaviourAccumulator, countsAtMostThirtySecondsOfATickAndNeverLessThanNone) {
    struct Row {
        double seconds;
        double counted;
    };
    const Row rows[] = {{45, 30}, {30, 30}, {30.001, 30},   {29.999, 29.999}, {0, 0},
                        {-1, 0},  {nan, 0}, {infinity, 30}, {-infinity, 0}};
    for (const auto& row : rows)
        for (const std::int64_t state : {0, 1, 2, 3, 7}) {
            BehaviourAccumulator behaviour;
            behaviour.add(state, row.seconds, "a");
            EXPECT_EQ(behaviour.activeSeconds + behaviour.idleSeconds + behaviour.awaySeconds + behaviour.pausedSeconds,
                      row.counted)
                << row.seconds << " in " << state;
        }
}

TEST(BehaviourAccumulator, countsSwitchesBetweenActiveTicks) {
    using Behaviour = BehaviourAccumulator;
    struct Tick {
        std::int64_t state;
        std::optional<std::string> front;
    };
    struct Row {
        const char* name;
        std::vector<Tick> ticks;
        std::int64_t switches;
        std::optional<std::string> lastFront;
    };
    const Row rows[] = {
        {"nothing", {}, 0, std::nullopt},
        {"the first ever", {{Behaviour::active, "a"}}, 0, "a"},
        {"the same", {{Behaviour::active, "a"}, {Behaviour::active, "a"}}, 0, "a"},
        {"another", {{Behaviour::active, "a"}, {Behaviour::active, "b"}}, 1, "b"},
        {"there and back", {{Behaviour::active, "a"}, {Behaviour::active, "b"}, {Behaviour::active, "a"}}, 2, "a"},
        {"idle between", {{Behaviour::active, "a"}, {Behaviour::idle, "b"}, {Behaviour::active, "b"}}, 1, "b"},
        {"away between", {{Behaviour::active, "a"}, {Behaviour::away, "b"}, {Behaviour::active, "a"}}, 0, "a"},
        {"paused only", {{Behaviour::paused, "a"}, {Behaviour::paused, "b"}}, 0, std::nullopt},
        {"no code", {{Behaviour::active, "a"}, {7, "b"}}, 0, "a"},
        {"no front", {{Behaviour::active, "a"}, {Behaviour::active, {}}, {Behaviour::active, "a"}}, 0, "a"},
        {"no front, then another",
         {{Behaviour::active, "a"}, {Behaviour::active, {}}, {Behaviour::active, "b"}},
         1,
         "b"},
        {"an empty name is a name", {{Behaviour::active, "a"}, {Behaviour::active, ""}}, 1, ""},
    };
    for (const auto& row : rows) {
        Behaviour behaviour;
        for (const auto& tick : row.ticks)
            behaviour.add(tick.state, 1, tick.front);
        EXPECT_EQ(behaviour.switches, row.switches) << row.name;
        EXPECT_EQ(behaviour.lastFront, row.lastFront) << row.name;
    }
}

TEST(BehaviourAccumulator, aTickOfNoTimeCanBeASwitch) {
    BehaviourAccumulator behaviour;
    behaviour.add(BehaviourAccumulator::active, 0, "a");
    behaviour.add(BehaviourAccumulator::active, -1, "b");
    EXPECT_EQ(behaviour, (BehaviourAccumulator{.switches = 1, .lastFront = "b"}));
}

TEST(BehaviourAccumulator, aSwitchAcrossTheMinuteCountsInTheNewOne) {
    BehaviourAccumulator behaviour;
    behaviour.add(BehaviourAccumulator::active, 1, "c");
    behaviour.add(BehaviourAccumulator::active, 1, "a");
    behaviour.add(BehaviourAccumulator::idle, 1, "a");
    behaviour.add(BehaviourAccumulator::away, 1, "a");
    behaviour.add(BehaviourAccumulator::paused, 1, "a");
    behaviour.startNewMinute();
    EXPECT_EQ(behaviour, (BehaviourAccumulator{.lastFront = "a"}));
    behaviour.add(BehaviourAccumulator::active, 1, "b");
    EXPECT_EQ(behaviour, (BehaviourAccumulator{.activeSeconds = 1, .switches = 1, .lastFront = "b"}));
}

/// Whether changing any single field changes both the equality and the hash.
template <class Record>
void expectEachFieldCounts(const Record& record, const std::vector<Record>& others) {
    std::unordered_set<Record> all{record, Record(record)};
    std::unordered_set<std::size_t> hashes{std::hash<Record>()(record)};
    for (std::size_t i = 0; i < others.size(); ++i) {
        EXPECT_NE(record, others[i]) << "field " << i;
        all.insert(others[i]);
        hashes.insert(std::hash<Record>()(others[i]));
    }
    EXPECT_EQ(all.size(), others.size() + 1);
    EXPECT_EQ(hashes.size(), others.size() + 1);
}

TEST(Records, areEqualAndHashedByEveryField) {
    expectEachFieldCounts<CoreTicks>({1, 2}, {{2, 2}, {1, 3}, {2, 1}});
    expectEachFieldCounts<Running>({1, 2, 3}, {{0, 2, 3}, {1, 0, 3}, {1, 2, 0}});
    expectEachFieldCounts<MinuteHealth>({1, 2, 3, 4}, {{0, 2, 3, 4}, {1, 0, 3, 4}, {1, 2, 0, 4}, {1, 2, 3, 0}});
    expectEachFieldCounts<BehaviourAccumulator>({1, 2, 3, 4, 5, "a"}, {{0, 2, 3, 4, 5, "a"},
                                                                       {1, 0, 3, 4, 5, "a"},
                                                                       {1, 2, 0, 4, 5, "a"},
                                                                       {1, 2, 3, 0, 5, "a"},
                                                                       {1, 2, 3, 4, 0, "a"},
                                                                       {1, 2, 3, 4, 5, "b"},
                                                                       {1, 2, 3, 4, 5, std::nullopt}});
    AppMinuteAccumulator minute("App");
    minute.add(reading);
    std::vector<AppMinuteAccumulator> others(13, minute);
    others[0].name = "Other";
    others[1].cpu.add(1);
    others[2].memory.add(1);
    others[3].resident.add(1);
    others[4].pcoreShare.add(1);
    others[5].pageins += 1;
    others[6].frontSeconds += 1;
    others[7].state += 1;
    others[8].processes += 1;
    others[9].diskRead += 1;
    others[10].diskWritten += 1;
    others[11].energy += 1;
    others[12].wakeups += 1;
    expectEachFieldCounts(minute, others);
}

// --- Properties ---------------------------------------------------------------------------------------------------

RC_GTEST_PROP(ResourceMathProperties, aLoadIsAShareWhateverTheCounters, ()) {
    const auto ticks = [] {
        return CoreTicks{*rc::gen::arbitrary<std::uint64_t>(), *rc::gen::arbitrary<std::uint64_t>()};
    };
    std::vector<CoreTicks> before;
    std::vector<CoreTicks> after;
    for (int count = *rc::gen::inRange(0, 9); count > 0; --count) {
        before.push_back(ticks());
        after.push_back(ticks());
    }
    const auto load = coreLoad(before, after, *rc::gen::inRange(-2, 12));
    RC_ASSERT(load.efficiency >= 0 && load.efficiency <= 1);
    RC_ASSERT(load.performance >= 0 && load.performance <= 1);
}

RC_GTEST_PROP(ResourceMathProperties, theLoadOfAllCoresIsTheTicksOfBothClassesTogether, ()) {
    std::vector<CoreTicks> before(8);
    std::vector<CoreTicks> after(8);
    for (auto& core : after) {
        core.total = *rc::gen::inRange<std::uint64_t>(1, 1000);
        core.busy = *rc::gen::inRange<std::uint64_t>(0, core.total + 1);
    }
    const auto split = *rc::gen::inRange<std::size_t>(1, 8);
    const auto totalOf = [&](std::size_t from, std::size_t to) {
        double total = 0;
        for (auto core = from; core < to; ++core)
            total += static_cast<double>(after[core].total);
        return total;
    };
    const auto classes = coreLoad(before, after, static_cast<std::int64_t>(split));
    const auto all = coreLoad(before, after, 8).efficiency;
    const double busy = classes.efficiency * totalOf(0, split) + classes.performance * totalOf(split, 8);
    RC_ASSERT(std::abs(all * totalOf(0, 8) - busy) < 1e-6);
}

RC_GTEST_PROP(ResourceMathProperties, aRunningHoldsSumPeakAndCountOfItsValues,
              (const std::vector<std::int16_t>& values)) {
    const auto running = runningOf({values.begin(), values.end()});
    RC_ASSERT(running.count == static_cast<std::int64_t>(values.size()));
    RC_ASSERT(running.sum == std::accumulate(values.begin(), values.end(), 0.0));
    if (values.empty())
        return;
    RC_ASSERT(running.peak == *std::max_element(values.begin(), values.end()));
    RC_ASSERT(running.average() <= running.peak);
}

RC_GTEST_PROP(ResourceMathProperties, theSecondsOfAMinuteAreThoseOfItsTicks, ()) {
    BehaviourAccumulator behaviour;
    double told = 0;
    std::int64_t activeTicks = 0;
    for (int ticks = *rc::gen::inRange(0, 50); ticks > 0; --ticks) {
        const std::int64_t state = *rc::gen::inRange(-1, 6);
        const double seconds = *rc::gen::inRange(-10, 60) / 2.0;
        told += std::min(std::max(seconds, 0.0), 30.0);
        activeTicks += state == BehaviourAccumulator::active;
        behaviour.add(state, seconds, std::string(1, *rc::gen::inRange('a', 'd')));
    }
    RC_ASSERT(behaviour.activeSeconds + behaviour.idleSeconds + behaviour.awaySeconds + behaviour.pausedSeconds ==
              told);
    RC_ASSERT(behaviour.switches <= std::max<std::int64_t>(activeTicks - 1, 0));
}

RC_GTEST_PROP(ResourceMathProperties, aMinuteThatIsWorthKeepingStaysSoWithMemoryFrontAndState, ()) {
    AppMinuteAccumulator minute("App");
    bool wasKept = false;
    for (int scans = *rc::gen::inRange(0, 20); scans > 0; --scans) {
        minute.add({.memory = *rc::gen::inRange<std::uint64_t>(0, 110 * mebibyte),
                    .frontSeconds = *rc::gen::element(0.0, 0.0, 0.0, 1.0),
                    .state = *rc::gen::element(0, 0, 0, 2)});
        RC_ASSERT(!wasKept || minute.isWorthKeeping());
        wasKept = minute.isWorthKeeping();
    }
}

} // namespace
} // namespace tindra
