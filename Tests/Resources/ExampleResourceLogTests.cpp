#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Base/Sqlite.h"
#include "Kestrio/Resources/ResourceStore.h"
#include "Tests/Examples/ExampleResourceLog.h"
#include "Tests/Resources/PlainSeries.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

constexpr Date end{1'700'049'600}; // 2023-11-15, 12:00 UTC
constexpr DateInterval everything{Date(0), Date(4e9)};

class ExampleLog : public testing::Test {
protected:
    std::filesystem::path written(const char* name, const ExampleResourceLogOptions& options) {
        const auto file = folder_.path() / name;
        writeResourceLog(file, end, Calendar("en_GB", "Europe/Berlin"), options);
        return file;
    }

    std::unique_ptr<ResourceStore> opened(const std::filesystem::path& file) {
        return std::make_unique<ResourceStore>(file, queue_, clock_, DatabaseAccess::readOnly);
    }

private:
    TemporaryFolder folder_;
    SystemClock clock_;
    WorkerQueue queue_{ResourceStore::queueLabel};
};

sqlite::Connection connected(const std::filesystem::path& file) {
    sqlite3* raw = nullptr;
    sqlite3_open_v2(file.c_str(), &raw, SQLITE_OPEN_READONLY, nullptr);
    return sqlite::Connection(raw);
}

TEST_F(ExampleLog, isTheSameForTheSameSeed) {
    const auto first = opened(written("a", {.days = 1, .detailDays = 1}));
    const auto same = opened(written("b", {.days = 1, .detailDays = 1}));
    const auto other = opened(written("c", {.seed = 2, .days = 1, .detailDays = 1}));
    EXPECT_EQ(first->systemMinutes(everything), same->systemMinutes(everything));
    EXPECT_EQ(first->appMinutes(everything), same->appMinutes(everything));
    EXPECT_EQ(first->seconds(everything, std::nullopt, 100'000), same->seconds(everything, std::nullopt, 100'000));
    EXPECT_NE(first->systemMinutes(everything), other->systemMinutes(everything));
}

TEST_F(ExampleLog, holdsWhatItWasAskedFor) {
    const auto contents = opened(written("a", {.days = 2, .detailDays = 1, .pace = 5, .sleeps = false}))->contents();
    EXPECT_EQ(contents.minutes, 2 * 1440);
    EXPECT_EQ(contents.seconds, 86'400 / 5);
    EXPECT_EQ(contents.firstMinute, end - Seconds(2 * 86'400));
    EXPECT_EQ(contents.lastMinute, end - Seconds(60));
    EXPECT_EQ(contents.firstSecond, end - Seconds(86'400));
    EXPECT_EQ(contents.appMinutes, contents.minutes * contents.apps);
    EXPECT_GT(contents.events, 0);
}

TEST_F(ExampleLog, isEmptyOfNoDays) {
    const auto contents = opened(written("a", {.days = 0, .detailDays = 0}))->contents();
    EXPECT_EQ(contents.minutes + contents.seconds + contents.appMinutes + contents.events + contents.apps, 0);
    EXPECT_EQ(contents.firstMinute, std::nullopt);
    EXPECT_EQ(contents.lastMinute, std::nullopt);
    EXPECT_EQ(contents.firstSecond, std::nullopt);
}

// The series of the store are summed up row by row; SQL's own grouping says what they must come to.

TEST_F(ExampleLog, seriesOfMinutesAreWhatGroupingGives) {
    const auto file = written("a", {.days = 3, .detailDays = 0});
    const auto store = opened(file);
    const auto connection = connected(file);
    const DateInterval range{end - Seconds(2.3 * 86'400), end - Seconds(1000.5)};
    for (const std::int64_t bucket : {60, 600, 7 * 3600, 40 * 86'400})
        expectSame(store->systemSeries(range, bucket), plainSeries(connection.get(), range, bucket));
}

TEST_F(ExampleLog, seriesOfSecondsAreWhatGroupingGives) {
    const auto file = written("a", {.days = 1, .detailDays = 1, .hasApps = false});
    const auto store = opened(file);
    const auto connection = connected(file);
    const DateInterval range{end - Seconds(9 * 3600.0), end - Seconds(7.5)};
    for (const std::int64_t bucket : {1, 7, 3600, 86'400}) {
        const auto series = store->secondsSeries(range, bucket);
        sqlite::Statement select(connection.get(),
                                 "SELECT (ts / ?1) * ?1 AS b, AVG(cpu), MAX(cpu), AVG(ram_r), AVG(ram_w), "
                                 "MAX(ram_r + ram_w), AVG(ssd_r), AVG(ssd_w), MAX(ssd_r + ssd_w), MAX(swap_mb), "
                                 "MAX(pressure), MAX(lag_ms) FROM system_seconds WHERE ts >= ?2 AND ts < ?3 "
                                 "GROUP BY b ORDER BY b");
        select.bindAll(bucket, range.start, range.end);
        std::size_t index = 0;
        for (; select.step() == sqlite::Step::row; ++index) {
            ASSERT_LT(index, series.size());
            sqlite::Columns row(select);
            const SecondBucket expected{.start = Date(row.real()),
                                        .cpu = row.real() / 1000,
                                        .cpuPeak = row.real() / 1000,
                                        .ramRead = row.real(),
                                        .ramWrite = row.real(),
                                        .ramPeak = row.real(),
                                        .ssdRead = row.real(),
                                        .ssdWrite = row.real(),
                                        .ssdPeak = row.real(),
                                        .swapUsed = row.natural() << 20,
                                        .pressure = row.integer(),
                                        .lagMilliseconds = row.integer()};
            ASSERT_EQ(series[index], expected) << bucket << ", " << index;
        }
        EXPECT_EQ(index, series.size()) << bucket;
    }
}

} // namespace
} // namespace kestrio
