#include "Kestrio/Base/VirtualQueue.h"
#include "Kestrio/Resources/ResourceStore.h"
#include "Tests/Resources/PlainSeries.h"
#include "Tests/Support/TemporaryFolder.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <rapidcheck.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

constexpr Date begin{1'699'999'200}; // the start of an hour
constexpr int minutesOfTheLog = 10 * 24 * 60;

Date minuteAfter(int minutes) {
    return begin + Seconds(60.0 * minutes);
}

/// A minute whose figures are unlike those of any other.
SystemMinute minuteWith(Date at, int seed) {
    const auto real = static_cast<double>(seed % 997) / 997;
    const auto count = static_cast<std::uint64_t>(seed % 100'003);
    return {.minute = at,
            .cpu = real,
            .cpuPeak = real / 3 + 0.5,
            .cpuPerformance = real / 7,
            .cpuEfficiency = 1 - real,
            .memoryUsed = count << 20,
            .memoryTotal = 16ULL << 30,
            .swapUsed = count * 3,
            .swapIn = count * 5,
            .swapOut = count * 7,
            .pressure = std::int64_t{1} << (seed % 3),
            .lagMilliseconds = seed % 601,
            .ramRead = static_cast<double>(count * 11),
            .ramWrite = static_cast<double>(count * 13),
            .ramPeak = static_cast<double>(count * 29),
            .ssdRead = static_cast<double>(count * 17),
            .ssdWrite = static_cast<double>(count * 19),
            .ssdPeak = static_cast<double>(count * 41),
            .activeSeconds = seed % 61,
            .idleSeconds = seed % 59,
            .awaySeconds = seed % 53,
            .switches = seed % 17};
}

class SystemHours : public testing::Test {
protected:
    std::unique_ptr<ResourceStore> open(DatabaseAccess access = DatabaseAccess::readWrite) {
        return std::make_unique<ResourceStore>(file, queue, time, access);
    }

    /// Minutes one after the other, as a recorder writes them.
    void record(ResourceStore& store, int first, int count, int seed = 0) {
        for (int i = first; i < first + count; ++i)
            store.write(minuteWith(minuteAfter(i), i * 31 + seed), {});
        store.earliestMinute(); // everything is written
    }

    sqlite::Connection connect() const {
        sqlite3* raw = nullptr;
        sqlite3_open(file.c_str(), &raw);
        return sqlite::Connection(raw);
    }

    /// The hours after the begin that have sums, as "0 1 5".
    std::string hours() {
        const auto connection = connect();
        sqlite::Statement select(connection.get(), "SELECT (hour - ?) / 3600 FROM system_hours ORDER BY hour");
        select.bindAll(begin);
        std::string list;
        while (select.step() == sqlite::Step::row)
            list += fmt::format("{}{}", list.empty() ? "" : " ", select.integer(0));
        return list;
    }

    /// What the minutes alone come to.
    std::vector<SystemBucket> plainSeries(DateInterval range, std::int64_t bucket) const {
        return kestrio::plainSeries(connect().get(), range, bucket);
    }

    TemporaryFolder folder;
    const fs::path file = folder.path() / ResourceStore::fileName;
    VirtualTime time{minuteAfter(minutesOfTheLog)};
    VirtualQueue queue{time, ResourceStore::queueLabel};
    const DateInterval everything{begin - Seconds(86'400), minuteAfter(2 * minutesOfTheLog)};
};

TEST_F(SystemHours, areSummedUpAsTheyEnd) {
    const auto store = open();
    record(*store, 30, 89);
    EXPECT_EQ(hours(), "0");
    record(*store, 119, 1);
    EXPECT_EQ(hours(), "0") << "its last minute may still be written anew";
    record(*store, 120, 1);
    EXPECT_EQ(hours(), "0 1");
    record(*store, 60 * 7 + 5, 60);
    EXPECT_EQ(hours(), "0 1 2 7") << "none of those that were slept through";
    expectSame(store->systemSeries(everything, 86'400), plainSeries(everything, 86'400));
}

TEST_F(SystemHours, thatEndedWhileNobodyWroteAreSummedUpAtTheNextStart) {
    record(*open(), 0, 100);
    EXPECT_EQ(hours(), "0");
    const auto store = open();
    EXPECT_EQ(hours(), "0 1");
}

TEST_F(SystemHours, ofAFileOfAnEarlierVersionAreSummedUpAtItsOpening) {
    record(*open(), 0, 60 * 26);
    ASSERT_EQ(sqlite::execute(connect().get(), "DROP TABLE system_hours; DROP TRIGGER system_minutes_written;"
                                               "DROP TRIGGER system_minutes_deleted"),
              std::nullopt);
    {
        const auto reader = open(DatabaseAccess::readOnly);
        expectSame(reader->systemSeries(everything, 86'400), plainSeries(everything, 86'400));
    }
    const auto store = open();
    EXPECT_EQ(hours().size(),
              std::string("0 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 21 22 23 24 25").size());
    expectSame(store->systemSeries(everything, 86'400), plainSeries(everything, 86'400));
}

TEST_F(SystemHours, goWithAChangeOfTheirMinutes) {
    const auto store = open();
    record(*store, 0, 60 * 5 + 1);
    EXPECT_EQ(hours(), "0 1 2 3 4");
    store->write(minuteWith(minuteAfter(70), 5), {}); // the clock was set back
    store->earliestMinute();
    EXPECT_EQ(hours(), "0 2 3 4 5") << "the last one counts as ended while the clock is behind it";
    record(*store, 60 * 5 + 1, 1);
    EXPECT_EQ(hours(), "0 1 2 3 4") << "and as open again";
    store->prune(minuteAfter(130), std::nullopt);
    store->earliestMinute();
    EXPECT_EQ(hours(), "3 4") << "of the second a part is left";
    expectSame(store->systemSeries(everything, 86'400), plainSeries(everything, 86'400));
    store->deleteAll();
    EXPECT_TRUE(store->systemSeries(everything, 86'400).empty());
    EXPECT_EQ(hours(), "");
}

TEST_F(SystemHours, aheadOfTheClockKeepNoneOfThePresentFromBeingSummedUp) {
    record(*open(), minutesOfTheLog + 6000, 61);
    record(*open(), 0, 100);
    open();
    EXPECT_TRUE(hours().starts_with("0 1 ")) << hours();
}

TEST_F(SystemHours, changeNothingAboutAnyChart) {
    EXPECT_TRUE(rc::check([this] {
        fs::remove_all(folder.path());
        fs::create_directory(folder.path());
        auto store = open();
        const auto stretches = *rc::gen::inRange(1, 6);
        for (int i = 0; i < stretches; ++i) {
            record(*store, *rc::gen::inRange(0, minutesOfTheLog), *rc::gen::inRange(1, 300),
                   *rc::gen::inRange(0, 100'000));
            if (*rc::gen::inRange(0, 4) == 0) {
                store->prune(minuteAfter(*rc::gen::inRange(0, minutesOfTheLog / 2)), std::nullopt);
                store->earliestMinute(); // it is done
            }
            if (*rc::gen::inRange(0, 3) == 0)
                store = open();
        }
        for (int i = 0; i < 10; ++i) {
            const auto first = *rc::gen::inRange(-100, minutesOfTheLog);
            const DateInterval range{minuteAfter(first) + Seconds(*rc::gen::elementOf(std::vector{0, 0, 1, 59})),
                                     minuteAfter(first + *rc::gen::inRange(-1, minutesOfTheLog))};
            const auto bucket = *rc::gen::oneOf(rc::gen::inRange<std::int64_t>(1, 200'000),
                                                rc::gen::elementOf(std::vector<std::int64_t>{3600, 7200, 86'400}));
            expectSame(store->systemSeries(range, bucket), plainSeries(range, bucket));
            RC_ASSERT(!testing::Test::HasFatalFailure());
        }
    }));
}

} // namespace
} // namespace kestrio
