#include "Kestrio/Base/VirtualQueue.h"
#include "Kestrio/Platform/Testing/MemoryKeyValueStore.h"
#include "Kestrio/Platform/Testing/ScriptedMachine.h"
#include "Kestrio/Resources/DataSpeeds.h"
#include "Kestrio/Resources/KernelStats.h"
#include "Kestrio/Resources/SSDSpeedTest.h"

#include <cstring>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <set>

namespace kestrio {
namespace {

// --- Cores and memory ------------------------------------------------------------------------------------------------

TEST(KernelStats, hasPerformanceCoresAloneOnAMachineWithOneClass) {
    const struct {
        CoreCounts counts;
        std::int64_t efficiency;
        std::int64_t performance;
    } rows[] = {{{0, 8}, 0, 8}, {{4, 6}, 4, 6}, {{4, 0}, 4, 1}, {{0, 0}, 0, 1}};
    for (const auto& row : rows) {
        ScriptedKernelCounters counters;
        counters.counts = row.counts;
        KernelStats stats(counters);
        EXPECT_EQ(stats.efficiencyCores(), row.efficiency);
        EXPECT_EQ(stats.performanceCores(), row.performance);
    }
}

TEST(KernelStats, readsWhatNeverChangesOnceAndOnlyWhenAsked) {
    ScriptedKernelCounters counters;
    counters.chip = "Chip";
    KernelStats stats(counters);
    EXPECT_EQ(counters.constantReads, 0);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(stats.chipName(), "Chip");
        EXPECT_EQ(stats.performanceCores(), 4);
        EXPECT_EQ(stats.efficiencyCores(), 0);
    }
    EXPECT_EQ(counters.constantReads, 2);
}

TEST(KernelStats, breaksMemoryDownIntoFivePartsThatAddUp) {
    const struct {
        const char* about;
        MemoryStatistics statistics;
        std::uint64_t total;
        KernelStats::MemoryBreakdown memory;
    } rows[] = {
        {"usual",
         {.internal = 40, .purgeable = 10, .wired = 20, .compressor = 5, .external = 15},
         100,
         {.apps = 30, .wired = 20, .compressed = 5, .cached = 25, .free = 20}},
        {"more purgeable than internal",
         {.internal = 10, .purgeable = 11, .wired = 0, .compressor = 0, .external = 0},
         100,
         {.apps = 0, .wired = 0, .compressed = 0, .cached = 11, .free = 89}},
        {"nothing left",
         {.internal = 50, .purgeable = 0, .wired = 30, .compressor = 10, .external = 10},
         100,
         {.apps = 50, .wired = 30, .compressed = 10, .cached = 10, .free = 0}},
        {"more than there is",
         {.internal = 50, .purgeable = 0, .wired = 30, .compressor = 10, .external = 11},
         100,
         {.apps = 50, .wired = 30, .compressed = 10, .cached = 11, .free = 0}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(KernelStats::breakdown(row.statistics, row.total), row.memory) << row.about;
}

TEST(KernelStats, handsOnTicksAndPressure) {
    ScriptedKernelCounters counters;
    KernelStats stats(counters);
    EXPECT_TRUE(stats.coreTicks().empty());
    counters.times = {{1, 2}, {3, 4}};
    EXPECT_EQ(stats.coreTicks(), (std::vector<tindra::CoreTicks>{{1, 2}, {3, 4}}));
    EXPECT_EQ(stats.pressure(), MemoryPressure::normal);
    counters.pressure = MemoryPressure::critical;
    EXPECT_EQ(stats.pressure(), MemoryPressure::critical);
}

TEST(KernelStats, codesPressureAsTheLogStoresIt) {
    EXPECT_EQ(pressureCode(MemoryPressure::normal), 1);
    EXPECT_EQ(pressureCode(MemoryPressure::warning), 2);
    EXPECT_EQ(pressureCode(MemoryPressure::critical), 4);
}

// --- Memory traffic --------------------------------------------------------------------------------------------------

TEST(RAMSpeed, isKnownForTheseChipsExactly) {
    const std::pair<const char*, double> rows[] = {
        {"Apple M1", 68'250'000'000},        {"Apple M1 Pro", 200'000'000'000}, {"Apple M2 Pro", 200'000'000'000},
        {"Apple M1 Max", 400'000'000'000},   {"Apple M2 Max", 400'000'000'000}, {"Apple M1 Ultra", 800'000'000'000},
        {"Apple M2 Ultra", 800'000'000'000}, {"Apple M2", 100'000'000'000},     {"Apple M3", 100'000'000'000},
        {"Apple M3 Pro", 150'000'000'000},   {"Apple M4", 120'000'000'000},     {"Apple M4 Pro", 273'000'000'000}};
    for (const auto& [chip, speed] : rows)
        EXPECT_EQ(RAMSpeed::topSpeed(chip), speed) << chip;
    for (const auto* chip : {"", "Apple M9", "apple m1", "Apple M1 ", "Apple", "AMD EPYC"})
        EXPECT_EQ(RAMSpeed::topSpeed(chip), std::nullopt) << chip;
}

TEST(RAMTrafficMeter, groupsTheUnitsOfChips) {
    using Group = RAMTrafficMeter::Group;
    const std::pair<Group, std::vector<const char*>> rows[] = {
        {{"fast", "Fast cores"}, {"PCPU"}},
        {{"efficient", "Efficiency cores"}, {"ECPU"}},
        {{"graphics", "Graphics & AI"}, {"GFX", "ANE"}},
        {{"media", "Screen, video & camera"}, {"DISP", "DISPEXT", "DFR", "ISP", "JPG", "VDEC", "VENC", "MSR"}},
        {{"storage", "SSD & ports"}, {"ANS2", "PCIE", "ATC0", "ATC1", "SBR"}},
        {{"other", "Other"}, {"", "pcpu", "PCPU0", "ATC2", "anything"}},
    };
    for (const auto& [group, units] : rows)
        for (const auto* unit : units)
            EXPECT_EQ(RAMTrafficMeter::group(unit), group) << unit;
}

struct TrafficBench {
    std::optional<RAMTraffic> sample(std::optional<std::vector<MemoryChannel>> channels, double at) {
        traffic.moved = std::move(channels);
        return meter.sample(Uptime(at));
    }
    ScriptedMemoryTraffic traffic;
    RAMTrafficMeter meter{traffic};
};

TEST(RAMTrafficMeter, needsTwoReadingsWithTimeBetween) {
    TrafficBench bench;
    EXPECT_EQ(bench.sample({{{"", 100, 100}}}, 10), std::nullopt) << "the first";
    EXPECT_EQ(bench.sample({{{"", 200, 200}}}, 10), std::nullopt) << "in the same moment";
    EXPECT_EQ(bench.sample({{{"", 300, 300}}}, 9), std::nullopt) << "back in time";
    const auto traffic = bench.sample({{{"", 500, 400}}}, 11);
    ASSERT_TRUE(traffic);
    EXPECT_DOUBLE_EQ(traffic->read, 100);
    EXPECT_DOUBLE_EQ(traffic->write, 50);
}

TEST(RAMTrafficMeter, keepsItsBaselineOverAReadingThatFails) {
    TrafficBench bench;
    bench.sample({{{"", 0, 0}}}, 10);
    EXPECT_EQ(bench.sample(std::nullopt, 11), std::nullopt);
    EXPECT_DOUBLE_EQ(bench.sample({{{"", 400, 0}}}, 12).value().read, 200);
}

TEST(RAMTrafficMeter, givesNoReadingWhereNothingMoved) {
    TrafficBench bench;
    bench.sample({{{"", 5, 5}}}, 10);
    EXPECT_EQ(bench.sample({{{"", 5, 5}}}, 11), std::nullopt);
    EXPECT_EQ(bench.sample({{{"", 4, 5}}}, 12), std::nullopt) << "what fell has moved nothing";
    EXPECT_EQ(bench.sample(std::vector<MemoryChannel>(), 13), std::nullopt);
}

TEST(RAMTrafficMeter, namesWhoMovedIt) {
    TrafficBench bench;
    bench.sample({{{"", 0, 0}, {"PCPU", 0, 0}, {"ECPU", 0, 0}, {"GFX", 0, 0}, {"ANE", 0, 0}}}, 0);
    const auto traffic =
        bench.sample({{{"", 1'000, 600}, {"PCPU", 100, 100}, {"ECPU", 20, 0}, {"GFX", 400, 300}, {"ANE", 40, 40}}}, 2);
    ASSERT_TRUE(traffic);
    EXPECT_EQ(*traffic, (RAMTraffic{500,
                                    300,
                                    {{"graphics", "Graphics & AI", 390},
                                     {"other", "Other", 300},
                                     {"fast", "Fast cores", 100},
                                     {"efficient", "Efficiency cores", 10}}}));
}

TEST(RAMTrafficMeter, hasNoRemainderWithinOneBytePerSecond) {
    for (const std::uint64_t total : {101u, 102u}) {
        TrafficBench bench;
        bench.sample({{{"", 0, 0}, {"PCPU", 0, 0}}}, 0);
        const auto traffic = bench.sample({{{"", total, 0}, {"PCPU", 100, 0}}}, 1);
        EXPECT_EQ(traffic.value().clients.size(), total > 101 ? 2u : 1u) << total;
    }
}

TEST(RAMTrafficMeter, hasUnknownUnitsAndTheRemainderAsTwoEntries) {
    TrafficBench bench;
    bench.sample({{{"", 0, 0}, {"XYZ", 0, 0}, {"ABC", 0, 0}}}, 0);
    const auto traffic = bench.sample({{{"", 100, 0}, {"XYZ", 20, 0}, {"ABC", 10, 0}}}, 1);
    EXPECT_EQ(traffic.value().clients,
              (std::vector<RAMTraffic::Client>{{"other", "Other", 70}, {"other", "Other", 30}}));
}

// --- Drives ----------------------------------------------------------------------------------------------------------

TEST(DiskRates, areIncreasesPerSecond) {
    EXPECT_EQ(rates({1'000, 3'000, 30, 4'000'000'000}, {0, 1'000, 10, 0}, 2),
              (SSDTraffic{.read = 500, .write = 1'000, .requestsPerSecond = 10, .wait = 0.2}));
    EXPECT_EQ(rates({1, 2, 3, 4}, {1, 2, 3, 4}, 1), SSDTraffic{}) << "nothing moved: no wait";
}

TEST(DiskRates, areAbsentWithoutTimeAndAfterAnyCounterFell) {
    const DiskCounters older{10, 10, 10, 10};
    for (const double seconds : {0.0, -1.0})
        EXPECT_EQ(rates({20, 20, 20, 20}, older, seconds), std::nullopt) << seconds;
    for (const auto& newer : {DiskCounters{9, 20, 20, 20}, DiskCounters{20, 9, 20, 20}, DiskCounters{20, 20, 9, 20},
                              DiskCounters{20, 20, 20, 9}})
        EXPECT_EQ(rates(newer, older, 1), std::nullopt);
}

// --- The speed test --------------------------------------------------------------------------------------------------

struct TestBench {
    /// A block takes one second to write and a quarter of one to read; flushing takes two.
    TestBench() {
        disks.before = [this](const std::string& operation) {
            const double seconds = operation.starts_with("write") ? 1 : operation == "flush" ? 2 : 0.25;
            time.advance(Seconds(operation == "rewind" ? 100 : seconds));
        };
    }
    std::optional<SSDSpeedTest::Result> run(std::size_t megabytes) { return SSDSpeedTest::run(disks, time, megabytes); }

    VirtualTime time{Date(1'700'000'000)};
    ScriptedDisks disks;
};

constexpr double block = 4'194'304;

TEST(SSDSpeedTest, writesFlushesAndReadsBack) {
    TestBench bench;
    const auto result = bench.run(8);
    ASSERT_TRUE(result);
    EXPECT_EQ(bench.disks.done,
              (std::vector<std::string>{"write 1", "write 2", "flush", "rewind", "read 1", "read 2", "gone"}));
    EXPECT_DOUBLE_EQ(result->writeBytesPerSecond, 2 * block / 4) << "flushing counts";
    EXPECT_DOUBLE_EQ(result->readBytesPerSecond, 2 * block / 0.5) << "going back does not";
    EXPECT_EQ(result->date, bench.time.now());
}

TEST(SSDSpeedTest, worksInWholeBlocks) {
    const std::pair<std::size_t, std::size_t> rows[] = {{0, 1}, {1, 1}, {4, 1}, {6, 1}, {8, 2}, {11, 2}, {256, 64}};
    for (const auto& [megabytes, blocks] : rows) {
        TestBench bench;
        EXPECT_TRUE(bench.run(megabytes));
        EXPECT_EQ(bench.disks.contents.size(), blocks * 4'194'304) << megabytes;
    }
}

TEST(SSDSpeedTest, writesWhatNothingCanCompress) {
    TestBench bench;
    bench.run(4);
    std::set<std::uint64_t> words;
    for (std::size_t at = 0; at < 65'536; at += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, &bench.disks.contents[at], sizeof word);
        words.insert(word);
    }
    EXPECT_EQ(words.size(), 8'192u);
}

TEST(SSDSpeedTest, givesNoResultAndNoFileWhereAnyStepFails) {
    for (const auto* step : {"write 1", "write 2", "flush", "rewind", "read 1", "read 2"}) {
        TestBench bench;
        bench.disks.failing = step;
        EXPECT_EQ(bench.run(8), std::nullopt) << step;
        EXPECT_EQ(bench.disks.done.back(), "gone") << step;
        EXPECT_EQ(bench.disks.done[bench.disks.done.size() - 2], step) << "and nothing after it";
    }
    TestBench bench;
    bench.disks.givesFile = false;
    EXPECT_EQ(bench.run(8), std::nullopt);
    EXPECT_TRUE(bench.disks.done.empty());
}

TEST(SSDSpeedTest, givesNoResultWhereNoTimePassed) {
    for (const auto* timed : {"read", "write"}) {
        TestBench bench;
        bench.disks.before = [&](const std::string& operation) {
            if (operation.starts_with(timed))
                bench.time.advance(Seconds(1));
        };
        EXPECT_EQ(bench.run(4), std::nullopt) << "only this takes time: " << timed;
    }
}

TEST(SSDSpeedTest, isKeptAsJSONWithItsDateSince2001) {
    const SSDSpeedTest::Result result{2.5e9, 1.5e9, Date(978'307'260.5)};
    EXPECT_EQ(SSDSpeedTest::encoded(result),
              R"({"readBytesPerSecond":2500000000.0,"writeBytesPerSecond":1500000000.0,"date":60.5})");
    EXPECT_EQ(SSDSpeedTest::decoded(SSDSpeedTest::encoded(result)), result);
    EXPECT_EQ(SSDSpeedTest::decoded(R"({"date":0,"writeBytesPerSecond":1,"readBytesPerSecond":2,"more":[]})"),
              (SSDSpeedTest::Result{2, 1, Date(978'307'200)}));
}

TEST(SSDSpeedTest, isAbsentWhereItCannotBeRead) {
    const auto whole = nlohmann::json::parse(SSDSpeedTest::encoded({1, 2, Date(3)}));
    for (const auto* key : {"readBytesPerSecond", "writeBytesPerSecond", "date"}) {
        auto json = whole;
        json.erase(key);
        EXPECT_EQ(SSDSpeedTest::decoded(json.dump()), std::nullopt) << key;
        for (const auto& wrong : std::vector<nlohmann::json>{"1", true, nullptr}) {
            json[key] = wrong;
            EXPECT_EQ(SSDSpeedTest::decoded(json.dump()), std::nullopt) << key << wrong;
        }
    }
    for (const auto* text : {"", "{", "[]", "null", "1", "{}", R"({"readBytesPerSecond":1e999})"})
        EXPECT_EQ(SSDSpeedTest::decoded(text), std::nullopt) << text;
}

TEST(SSDSpeedTest, isSavedInTheSettings) {
    MemoryKeyValueStore store;
    EXPECT_EQ(SSDSpeedTest::saved(store), std::nullopt);
    const SSDSpeedTest::Result result{1, 2, Date(1'700'000'000)};
    SSDSpeedTest::save(store, result);
    EXPECT_EQ(store.storedKeys(), std::vector<std::string>{"ssdSpeedTest"});
    EXPECT_EQ(SSDSpeedTest::saved(store), result);
    store.set("ssdSpeedTest", SettingBytes{"rubbish"});
    EXPECT_EQ(SSDSpeedTest::saved(store), std::nullopt);
    store.set("ssdSpeedTest", std::string("text"));
    EXPECT_EQ(SSDSpeedTest::saved(store), std::nullopt);
    SSDSpeedTest::save(store, std::nullopt);
    EXPECT_TRUE(store.storedKeys().empty());
}

} // namespace
} // namespace kestrio
