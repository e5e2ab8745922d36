#include "Kestrio/Base/VirtualQueue.h"
#include "Kestrio/Resources/ResourceStore.h"
#include "Tests/ExpectedLog.h"
#include "Tests/Support/TemporaryFolder.h"

#include <cmath>
#include <cstdlib>
#include <ctime>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <limits>
#include <sys/stat.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

constexpr Date noon{1'699'999'980}; // the start of a minute
constexpr std::uint64_t mebibyte = 1 << 20;

Date minuteAfter(int minutes) {
    return noon + Seconds(60.0 * minutes);
}

/// Every field with a value of its own, so that two columns that change places are seen.
SystemMinute fullMinute(Date at) {
    return {.minute = at,
            .cpu = 0.125,
            .cpuPeak = 0.5,
            .cpuPerformance = 0.25,
            .cpuEfficiency = 0.75,
            .memoryUsed = 1001,
            .memoryTotal = 1002,
            .compressed = 1003,
            .swapUsed = 1004,
            .swapIn = 1005,
            .swapOut = 1006,
            .pressure = 2,
            .thermal = 3,
            .lagMilliseconds = 14,
            .frontApp = "org.example.front",
            .ramRead = 21,
            .ramWrite = 22,
            .ramPeak = 23,
            .ssdRead = 24,
            .ssdWrite = 25,
            .ssdPeak = 26,
            .ssdWaitMicroseconds = 27,
            .activeSeconds = 31,
            .idleSeconds = 32,
            .awaySeconds = 33,
            .pausedSeconds = 34,
            .switches = 35,
            .appsOpen = 36,
            .processes = 37,
            .battery = 38,
            .onAC = true,
            .lowPower = true,
            .temperature = 39.5,
            .config = tindra::OptimizerConfig::off(),
            .frozenApps = 1.5,
            .efficientApps = 2.5,
            .frozenMemory = 7 * mebibyte};
}

AppMinute fullApp(Date at, std::string key = "org.example.app", std::string name = "App") {
    return {.minute = at,
            .appID = std::move(key),
            .name = std::move(name),
            .cpu = 1.5,
            .cpuPeak = 2.5,
            .pcoreShare = 0.75,
            .memory = 2001,
            .memoryPeak = 2002,
            .resident = 2003,
            .pageins = 2004,
            .frontSeconds = 12.5,
            .state = 1,
            .processes = 5,
            .diskRead = 2005,
            .diskWritten = 2006,
            .energyMillijoules = 2007,
            .wakeups = 2008};
}

SystemSecond fullSecond(Date at) {
    return {.at = at,
            .cpu = 0.125,
            .cpuPerformance = 0.25,
            .cpuEfficiency = 0.5,
            .memoryUsed = 3 * mebibyte,
            .compressed = 4 * mebibyte,
            .swapUsed = 5 * mebibyte,
            .pressure = 1,
            .thermal = 2,
            .ramRead = 41,
            .ramWrite = 42,
            .ssdRead = 43,
            .ssdWrite = 44,
            .swapInRate = 45,
            .swapOutRate = 46,
            .lagMilliseconds = 47,
            .idleSeconds = 48,
            .state = 3,
            .frontApp = "org.example.front"};
}

class ResourceStoreTest : public testing::Test {
protected:
    TemporaryFolder folder;
    fs::path file = folder.path() / "Kestrio" / ResourceStore::fileName;
    VirtualTime time{minuteAfter(1000)};
    VirtualQueue queue{time, ResourceStore::queueLabel};
    const DateInterval everything{noon - Seconds(86'400), noon + Seconds(86'400)};

    std::unique_ptr<ResourceStore> open() { return std::make_unique<ResourceStore>(file, queue, time); }

    /// Runs SQL on the file behind the store's back.
    void run(const std::string& sql) {
        fs::create_directories(file.parent_path());
        sqlite3* raw = nullptr;
        sqlite3_open(file.c_str(), &raw);
        const sqlite::Connection connection(raw);
        EXPECT_EQ(sqlite::execute(raw, sql.c_str()), std::nullopt) << sql;
    }

    /// The first column of the first row, or "NULL"; "nothing" without a row.
    std::string value(const std::string& sql) {
        sqlite3* raw = nullptr;
        sqlite3_open(file.c_str(), &raw);
        const sqlite::Connection connection(raw);
        sqlite::Statement statement(raw, sql);
        if (statement.step() != sqlite::Step::row)
            return "nothing";
        return statement.text(0).value_or("NULL");
    }
};

// Opening.

TEST_F(ResourceStoreTest, theFilesAreForTheirOwnerAlone) {
    const auto store = open();
    store->write(fullMinute(noon), {});
    store->earliestMinute();
    for (const char* suffix : {"", "-wal", "-shm"}) {
        struct stat status {};
        ASSERT_EQ(stat((file.string() + suffix).c_str(), &status), 0) << suffix;
        EXPECT_EQ(status.st_mode & 0777u, 0600u) << suffix;
    }
}

TEST_F(ResourceStoreTest, aNewFileGivesPagesBackBitByBitAndWritesAhead) {
    open();
    EXPECT_EQ(value("PRAGMA auto_vacuum"), "2"); // incremental
    EXPECT_EQ(value("PRAGMA journal_mode"), "wal");
    EXPECT_EQ(value("PRAGMA user_version"), "2");
}

TEST_F(ResourceStoreTest, theTablesHaveTheirColumnsInOrder) {
    const auto store = open();
    const std::pair<const char*, const char*> table[] = {
        {"apps", "id,key,name"},
        {"system_minutes", "minute,cpu,cpu_peak,cpu_p,cpu_e,mem_used,mem_total,compressed,swap_used,swap_in,swap_out,"
                           "pressure,thermal,lag_ms,front,ram_r,ram_w,ram_peak,ssd_r,ssd_w,ssd_peak,ssd_wait_us,"
                           "active_s,idle_s,away_s,paused_s,switches,apps_open,procs,battery,on_ac,low_power,temp,"
                           "config,frozen_avg,eff_avg,frozen_mb"},
        {"app_minutes", "minute,app,cpu,cpu_peak,pcore,memory,mem_peak,resident,pageins,front,state,processes,disk_r,"
                        "disk_w,energy_mj,wakeups"},
        {"events", "id,at,kind,app,detail,bytes"},
        {"configs", "id,key,label,first_seen"},
        {"system_seconds", "ts,cpu,cpu_p,cpu_e,mem_mb,comp_mb,swap_mb,pressure,thermal,ram_r,ram_w,ssd_r,ssd_w,swap_in,"
                           "swap_out,lag_ms,idle_s,state,front"},
    };
    for (const auto& [name, columns] : table)
        EXPECT_EQ(value(fmt::format("SELECT group_concat(name) FROM pragma_table_info('{}')", name)), columns) << name;
    for (const char* index : {"app_minutes_app", "events_at"})
        EXPECT_EQ(value(fmt::format("SELECT COUNT(*) FROM sqlite_master WHERE name = '{}'", index)), "1") << index;
}

TEST_F(ResourceStoreTest, anEarlierFileGainsTheColumnsAndItsRowsReadAsNothing) {
    run("CREATE TABLE apps (id INTEGER PRIMARY KEY, key TEXT NOT NULL UNIQUE, name TEXT NOT NULL);"
        "CREATE TABLE system_minutes (minute INTEGER PRIMARY KEY, cpu REAL NOT NULL, cpu_peak REAL NOT NULL,"
        " cpu_p REAL NOT NULL, cpu_e REAL NOT NULL, mem_used INTEGER NOT NULL, mem_total INTEGER NOT NULL,"
        " compressed INTEGER NOT NULL, swap_used INTEGER NOT NULL, swap_in INTEGER NOT NULL, swap_out INTEGER NOT NULL,"
        " pressure INTEGER NOT NULL, thermal INTEGER NOT NULL, lag_ms INTEGER NOT NULL, front INTEGER);"
        "CREATE TABLE app_minutes (minute INTEGER NOT NULL, app INTEGER NOT NULL, cpu REAL NOT NULL,"
        " cpu_peak REAL NOT NULL, pcore REAL, memory INTEGER NOT NULL, mem_peak INTEGER NOT NULL,"
        " resident INTEGER NOT NULL, pageins INTEGER NOT NULL, front REAL NOT NULL, state INTEGER NOT NULL,"
        " processes INTEGER NOT NULL, PRIMARY KEY (minute, app)) WITHOUT ROWID;"
        "INSERT INTO apps VALUES (1, 'a', 'A');"
        "INSERT INTO system_minutes VALUES (1699999980, 0.5, 0.75, 0.25, 0.125, 1, 2, 3, 4, 5, 6, 1, 0, 7, 1);"
        "INSERT INTO app_minutes VALUES (1699999980, 1, 0.5, 0.5, NULL, 1, 2, 3, 4, 5, 0, 1);");
    for (int opening = 0; opening < 2; ++opening) {
        const auto store = open();
        const auto minutes = store->systemMinutes(everything);
        ASSERT_EQ(minutes.size(), 1u);
        const SystemMinute expected{.minute = noon,
                                    .cpu = 0.5,
                                    .cpuPeak = 0.75,
                                    .cpuPerformance = 0.25,
                                    .cpuEfficiency = 0.125,
                                    .memoryUsed = 1,
                                    .memoryTotal = 2,
                                    .compressed = 3,
                                    .swapUsed = 4,
                                    .swapIn = 5,
                                    .swapOut = 6,
                                    .pressure = 1,
                                    .lagMilliseconds = 7,
                                    .frontApp = "a",
                                    .configLabel = tindra::OptimizerConfig::off().label()};
        EXPECT_EQ(minutes[0], expected);
        const auto apps = store->appMinutes(everything);
        ASSERT_EQ(apps.size(), 1u);
        EXPECT_EQ(apps[0].diskRead + apps[0].diskWritten + apps[0].energyMillijoules + apps[0].wakeups, 0u);
        EXPECT_EQ(apps[0].pcoreShare, std::nullopt);
    }
}

TEST_F(ResourceStoreTest, aFileThatIsNoDatabaseIsRefusedAndLoggedOnce) {
    folder.write(fs::path("Kestrio") / ResourceStore::fileName, std::string(4096, 'x'));
    EXPECT_THROW(open(), DatabaseError);
    const ExpectedLog log;
    EXPECT_EQ(ResourceStore::openOrLog(file, queue, time), nullptr);
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(log.lines()[0], "Kestrio: resource log unavailable: Database error: file is not a database");
}

TEST_F(ResourceStoreTest, aReaderSeesWhatTheWriterWroteAndCannotMakeAFile) {
    VirtualQueue readers(time, "reader");
    EXPECT_THROW(ResourceStore(file, readers, time, DatabaseAccess::readOnly), DatabaseError);
    EXPECT_FALSE(fs::exists(file));
    const auto store = open();
    ResourceStore reader(file, readers, time, DatabaseAccess::readOnly);
    store->write(fullMinute(noon), {});
    EXPECT_EQ(store->earliestMinute(), noon);
    EXPECT_EQ(reader.earliestMinute(), noon);
}

// Setups of minutes from before they were stored.

class BackFillTest : public ResourceStoreTest {
protected:
    /// A file of a hundred minutes without setups, and these switchings: the minute, and on or off.
    void makeFile(const std::vector<std::pair<double, bool>>& switchings) {
        open();
        std::string sql = "BEGIN; DELETE FROM configs;";
        for (int i = 0; i < 100; ++i)
            sql += fmt::format("INSERT INTO system_minutes (minute, cpu, cpu_peak, cpu_p, cpu_e, mem_used, mem_total,"
                               " compressed, swap_used, swap_in, swap_out, pressure, thermal, lag_ms)"
                               " VALUES ({}, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);",
                               static_cast<std::int64_t>(minuteAfter(i).seconds()));
        for (const auto& [minute, on] : switchings)
            sql += fmt::format("INSERT INTO events (at, kind) VALUES ({}, '{}');",
                               (noon + Seconds(60 * minute)).seconds(), on ? "optimizerOn" : "optimizerOff");
        run(sql + "PRAGMA user_version = 0; COMMIT;");
    }

    /// The minutes that count as on, as "first-last" of each run.
    std::string minutesOn() {
        const auto store = open();
        std::string runs;
        int first = -1;
        const auto minutes = store->systemMinutes(everything);
        for (int i = 0; i <= static_cast<int>(minutes.size()); ++i) {
            const bool on = i < static_cast<int>(minutes.size()) &&
                            minutes[static_cast<std::size_t>(i)].configLabel == "Optimization on (setup not recorded)";
            if (on && first < 0)
                first = i;
            if (!on && first >= 0) {
                runs += fmt::format("{}{}-{}", runs.empty() ? "" : " ", first, i - 1);
                first = -1;
            }
        }
        return runs;
    }
};

TEST_F(BackFillTest, theEventsTellWhenTheOptimizerWasOn) {
    struct Row {
        const char* name;
        std::vector<std::pair<double, bool>> switchings;
        std::string on;
    };
    const Row table[] = {
        {"no events", {}, ""},
        {"on, on, off: one span from the first on", {{10.5, true}, {20.5, true}, {30.5, false}}, "10-30"},
        {"an off without an on", {{10.5, false}}, ""},
        {"an off first, then a span", {{5.5, false}, {10.5, true}, {12.5, false}}, "10-12"},
        {"two spans", {{10.5, true}, {12.5, false}, {20.5, true}, {22.5, false}}, "10-12 20-22"},
        {"still on: up to now", {{90.5, true}}, "90-99"},
        {"switched on exactly at a minute's start: the minute before counts too",
         {{10.0, true}, {12.5, false}},
         "9-12"},
        {"switched off exactly at a minute's start", {{10.5, true}, {12.0, false}}, "10-11"},
    };
    for (const auto& row : table) {
        makeFile(row.switchings);
        EXPECT_EQ(minutesOn(), row.on) << row.name;
        fs::remove_all(file.parent_path());
    }
}

TEST_F(BackFillTest, itHappensOnce) {
    makeFile({{10.5, true}, {12.5, false}});
    EXPECT_EQ(minutesOn(), "10-12");
    EXPECT_EQ(value("PRAGMA user_version"), "2");
    run("UPDATE system_minutes SET config = NULL");
    EXPECT_EQ(minutesOn(), "");
    EXPECT_EQ(value("SELECT COUNT(*) FROM system_minutes WHERE config IS NULL"), "100");
}

// Minutes and applications.

TEST_F(ResourceStoreTest, aMinuteComesBackAsItWasWritten) {
    const auto store = open();
    store->write(fullMinute(noon), {fullApp(noon)});
    auto expected = fullMinute(noon);
    expected.configLabel = expected.config->label();
    expected.config.reset();
    EXPECT_EQ(store->systemMinutes(everything), std::vector{expected});
    EXPECT_EQ(store->appMinutes(everything), std::vector{fullApp(noon)});
}

TEST_F(ResourceStoreTest, whatIsAbsentComesBackAbsent) {
    const auto store = open();
    SystemMinute bare{.minute = noon};
    auto app = fullApp(noon);
    app.pcoreShare.reset();
    store->write(bare, {app});
    EXPECT_EQ(store->systemMinutes(everything), std::vector{bare});
    EXPECT_EQ(store->appMinutes(everything), std::vector{app});
    bare.onAC = false;
    store->write(bare, {});
    EXPECT_EQ(store->systemMinutes(everything)[0].onAC, false);
}

TEST_F(ResourceStoreTest, theSameMinuteWrittenTwiceIsTheLaterOne) {
    const auto store = open();
    store->write(fullMinute(noon), {fullApp(noon)});
    store->write({.minute = noon + Seconds(0.9), .cpu = 1}, {fullApp(noon, "org.example.app", "Renamed")});
    const auto minutes = store->systemMinutes(everything);
    ASSERT_EQ(minutes.size(), 1u);
    EXPECT_EQ(minutes[0].cpu, 1);
    EXPECT_EQ(minutes[0].memoryUsed, 0u);
    ASSERT_EQ(store->appMinutes(everything).size(), 1u);
    EXPECT_EQ(store->appMinutes(everything)[0].name, "Renamed");
}

TEST_F(ResourceStoreTest, aRangeTakesItsStartAndNotItsEnd) {
    const auto store = open();
    for (int i = 0; i < 5; ++i) {
        store->write({.minute = minuteAfter(i)}, {fullApp(minuteAfter(i))});
        store->add(ResourceEventKind::freeze, std::nullopt, "", std::nullopt, minuteAfter(i));
        store->write({fullSecond(minuteAfter(i))});
    }
    const DateInterval range{minuteAfter(1), minuteAfter(3)};
    EXPECT_EQ(store->systemMinutes(range).size(), 2u);
    EXPECT_EQ(store->appMinutes(range).size(), 2u);
    EXPECT_EQ(store->events(range, 10).size(), 2u);
    EXPECT_EQ(store->seconds(range, std::nullopt, 10).size(), 2u);
    EXPECT_EQ(store->secondsCount(range), 2);
}

TEST_F(ResourceStoreTest, applicationsComeByMinuteAndThenTheLargestFirst) {
    const auto store = open();
    std::vector<AppMinute> apps;
    for (const auto& [key, memory] : {std::pair{"small", 1u}, {"large", 3u}, {"middle", 2u}}) {
        apps.push_back(fullApp(noon, key, key));
        apps.back().memory = memory;
    }
    store->write({.minute = noon}, apps);
    std::vector<std::string> order;
    for (const auto& app : store->appMinutes(everything))
        order.push_back(app.appID);
    EXPECT_EQ(order, (std::vector<std::string>{"large", "middle", "small"}));
}

TEST_F(ResourceStoreTest, ratesAndFrozenMemoryLoseTheirFractions) {
    const auto store = open();
    store->write({.minute = noon + Seconds(59.9),
                  .ramRead = 1.99,
                  .ssdPeak = std::numeric_limits<double>::infinity(),
                  .frozenMemory = 2 * mebibyte - 1},
                 {});
    const auto minute = store->systemMinutes(everything).at(0);
    EXPECT_EQ(minute.minute, noon + Seconds(59));
    EXPECT_EQ(minute.ramRead, 1);
    EXPECT_GT(minute.ssdPeak, 9e18);
    EXPECT_EQ(minute.frozenMemory, mebibyte);
}

TEST_F(ResourceStoreTest, anApplicationIsKnownByItsKeyUntilItHasAName) {
    const auto store = open();
    const auto nameOfA = [&] {
        store->earliestMinute(); // waits for the writing
        return value("SELECT name FROM apps WHERE key = 'a'");
    };
    store->write({.minute = noon, .frontApp = "a"}, {});
    EXPECT_EQ(nameOfA(), "a");
    store->write({.minute = minuteAfter(1)}, {fullApp(minuteAfter(1), "a", "Alpha")});
    EXPECT_EQ(nameOfA(), "Alpha");
    store->write({.minute = minuteAfter(2), .frontApp = "a"}, {});
    EXPECT_EQ(nameOfA(), "Alpha");
}

TEST_F(ResourceStoreTest, aNameOfAnEarlierRunOutlivesALookUpByKey) {
    open()->write({.minute = noon}, {fullApp(noon, "a", "Alpha")});
    const auto store = open();
    store->write({.minute = minuteAfter(1), .frontApp = "a"}, {});
    EXPECT_EQ(store->appMinutes(everything).at(0).name, "Alpha");
    EXPECT_EQ(value("SELECT COUNT(*) FROM apps"), "1");
}

TEST_F(ResourceStoreTest, aSetupKeepsItsFirstTime) {
    auto store = open();
    store->write(fullMinute(noon), {});
    store->earliestMinute();
    const auto first = value("SELECT first_seen FROM configs WHERE key = 'off'");
    store.reset();
    time.advance(Seconds(1000));
    store = open();
    store->write(fullMinute(minuteAfter(1)), {});
    store->earliestMinute();
    EXPECT_EQ(value("SELECT first_seen FROM configs WHERE key = 'off'"), first);
    EXPECT_EQ(value("SELECT COUNT(*) FROM configs WHERE key = 'off'"), "1");
}

// Seconds.

TEST_F(ResourceStoreTest, aSecondComesBackAsItWasWritten) {
    const auto store = open();
    store->write(std::vector<SystemSecond>{});
    store->write({fullSecond(noon), SystemSecond{.at = noon + Seconds(1)}});
    EXPECT_EQ(store->seconds(everything, std::nullopt, 10),
              (std::vector{fullSecond(noon), SystemSecond{.at = noon + Seconds(1)}}));
}

TEST_F(ResourceStoreTest, sharesAreKeptInThousandths) {
    struct Row {
        double share;
        const char* stored;
    };
    const Row table[] = {{0, "0"},      {1, "1000"},     {1.0004, "1000"}, {7, "1000"},
                         {0.0005, "1"}, {0.00049, "0"},  {0.9995, "1000"}, {-0.2, "0"},
                         {-1e300, "0"}, {0.1234, "123"}, {0.1235, "124"},  {std::nan(""), "0"}};
    const auto store = open();
    for (const auto& row : table) {
        store->write({SystemSecond{.at = noon, .cpu = row.share}});
        store->earliestMinute();
        EXPECT_EQ(value("SELECT cpu FROM system_seconds"), row.stored) << row.share;
    }
}

TEST_F(ResourceStoreTest, countsOfASecondAreHeldWithin32Bits) {
    const auto store = open();
    store->write({SystemSecond{.at = noon + Seconds(0.7),
                               .memoryUsed = 2 * mebibyte - 1,
                               .ssdWrite = 7.9,
                               .lagMilliseconds = std::int64_t{1} << 40,
                               .idleSeconds = -(std::int64_t{1} << 40)}});
    const auto second = store->seconds(everything, std::nullopt, 1).at(0);
    EXPECT_EQ(second.at, noon);
    EXPECT_EQ(second.memoryUsed, mebibyte);
    EXPECT_EQ(second.ssdWrite, 7);
    EXPECT_EQ(second.lagMilliseconds, std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(second.idleSeconds, std::numeric_limits<std::int32_t>::min());
}

TEST_F(ResourceStoreTest, aLongRangeIsReadInPieces) {
    const auto store = open();
    std::vector<SystemSecond> written;
    for (int i = 0; i < 100; ++i)
        written.push_back(fullSecond(noon + Seconds(i)));
    store->write(written);
    std::vector<SystemSecond> read;
    std::optional<Date> last;
    for (;;) {
        const auto piece = store->seconds(everything, last, 30);
        if (piece.empty())
            break;
        read.insert(read.end(), piece.begin(), piece.end());
        last = piece.back().at;
    }
    EXPECT_EQ(read, written);
}

TEST_F(ResourceStoreTest, theWorstSecondsComeByTheirMeasure) {
    const auto store = open();
    store->write({{.at = noon, .cpu = 0.1, .ssdRead = 5, .ssdWrite = 5, .lagMilliseconds = 300},
                  {.at = noon + Seconds(1), .cpu = 0.9, .ssdRead = 8, .lagMilliseconds = 100},
                  {.at = noon + Seconds(2), .cpu = 0.5, .ssdWrite = 9, .lagMilliseconds = 200}});
    using Measure = ResourceStore::SecondMeasure;
    const std::tuple<Measure, int, int> table[] = {{Measure::lag, 0, 2}, {Measure::disk, 0, 2}, {Measure::cpu, 1, 2}};
    for (const auto& [measure, first, second] : table) {
        const auto worst = store->worstSeconds(everything, measure, 2);
        ASSERT_EQ(worst.size(), 2u);
        EXPECT_EQ(worst[0].at, noon + Seconds(first));
        EXPECT_EQ(worst[1].at, noon + Seconds(second));
    }
}

// Events.

TEST_F(ResourceStoreTest, anEventComesBackAsItWasWrittenTheLatestFirst) {
    const auto store = open();
    store->add(ResourceEventKind::freeze, AppReference{"a", "Alpha"}, "Not used for 10 minutes", 4096, noon);
    store->add(ResourceEventKind::macWoke, std::nullopt, "", std::nullopt, noon + Seconds(0.25));
    const auto events = store->events(everything, 10);
    ASSERT_EQ(events.size(), 2u);
    EXPECT_EQ(events[0].kind, ResourceEventKind::macWoke);
    EXPECT_EQ(events[0].at, noon + Seconds(0.25));
    EXPECT_EQ(events[0].appID, std::nullopt);
    EXPECT_EQ(events[0].bytes, std::nullopt);
    const ResourceEvent freeze{.id = 1,
                               .at = noon,
                               .kind = ResourceEventKind::freeze,
                               .appID = "a",
                               .appName = "Alpha",
                               .detail = "Not used for 10 minutes",
                               .bytes = 4096};
    EXPECT_EQ(events[1], freeze);
    EXPECT_EQ(store->events(everything, 1).size(), 1u);
}

TEST_F(ResourceStoreTest, aByteCountBeyondTheSignedRangeIsTheLargestThereIs) {
    const auto store = open();
    store->add(ResourceEventKind::quit, std::nullopt, "", std::numeric_limits<std::uint64_t>::max(), noon);
    EXPECT_EQ(store->events(everything, 1).at(0).bytes, std::uint64_t{std::numeric_limits<std::int64_t>::max()});
}

TEST_F(ResourceStoreTest, aKindThatALaterVersionWroteIsLeftOut) {
    const auto store = open();
    store->add(ResourceEventKind::thaw, std::nullopt, "", std::nullopt, noon);
    store->earliestMinute();
    run("INSERT INTO events (at, kind) VALUES (1699999985, 'teleported')");
    store->add(ResourceEventKind::wake, std::nullopt, "", std::nullopt, noon + Seconds(9));
    const auto events = store->events(everything, 10);
    ASSERT_EQ(events.size(), 2u);
    EXPECT_EQ(events[0].kind, ResourceEventKind::wake);
    EXPECT_EQ(events[1].kind, ResourceEventKind::thaw);
}

TEST(ResourceEventKind, everyKindHasItsWords) {
    struct Row {
        ResourceEventKind kind;
        const char* stored;
        const char* title;
        const char* symbol;
    };
    using enum ResourceEventKind;
    const Row table[] = {
        {freeze, "freeze", "Frozen", "snowflake"},
        {thaw, "thaw", "Resumed", "play.circle"},
        {wake, "wake", "Woke to check", "bell.badge"},
        {efficient, "efficient", "Efficiency cores", "leaf"},
        {restored, "restored", "Full speed", "hare"},
        {quit, "quit", "Quit", "xmark.circle"},
        {slowdown, "slowdown", "Slowdown", "tortoise"},
        {pressure, "pressure", "Memory pressure", "memorychip"},
        {runaway, "runaway", "Runaway CPU", "flame"},
        {override, "override", "Temporary rule", "clock.badge"},
        {optimizerOn, "optimizerOn", "Optimizer on", "bolt.circle"},
        {optimizerOff, "optimizerOff", "Optimizer off", "bolt.slash"},
        {recovered, "recovered", "Recovered", "arrow.uturn.backward.circle"},
        {appOpened, "appOpened", "App opened", "plus.app"},
        {appClosed, "appClosed", "App closed", "xmark.app"},
        {macSlept, "macSlept", "Mac went to sleep", "moon.zzz"},
        {macWoke, "macWoke", "Mac woke up", "sun.max"},
        {activity, "activity", "Active or away", "figure.walk"},
        {power, "power", "Power", "powerplug"},
        {thermal, "thermal", "Heat", "thermometer.medium"},
        {configChanged, "configChanged", "Setup changed", "slider.horizontal.3"},
    };
    EXPECT_EQ(std::size(table), resourceEventKindCount);
    for (const auto& row : table) {
        EXPECT_EQ(storedText(row.kind), row.stored);
        EXPECT_EQ(resourceEventKind(row.stored), row.kind);
        EXPECT_EQ(title(row.kind), row.title);
        EXPECT_EQ(symbolName(row.kind), row.symbol);
    }
    EXPECT_EQ(resourceEventKind(""), std::nullopt);
    EXPECT_EQ(resourceEventKind("Freeze"), std::nullopt);
}

// Periods.

TEST_F(ResourceStoreTest, minutesAreGatheredIntoPeriods) {
    const auto store = open();
    auto first = fullMinute(Date(1'699'999'200)); // a multiple of 600
    auto second = fullMinute(Date(1'699'999'260));
    second.cpu = 0.375;
    second.cpuPeak = 0.75;
    second.memoryUsed = 2003;
    second.swapUsed = 9;
    second.pressure = 1;
    second.lagMilliseconds = 800;
    second.ramPeak = 99;
    second.ssdRead = 26;
    store->write(first, {});
    store->write(second, {});
    store->write(fullMinute(Date(1'699'999'800)), {});
    const auto series = store->systemSeries(everything, 600);
    ASSERT_EQ(series.size(), 2u);
    const SystemBucket expected{.start = Date(1'699'999'200),
                                .cpu = 0.25,
                                .cpuPeak = 0.75,
                                .cpuPerformance = 0.25,
                                .cpuEfficiency = 0.75,
                                .memoryUsed = 1502,
                                .swapUsed = 1004,
                                .swapIn = 2010,
                                .swapOut = 2012,
                                .pressure = 2,
                                .pressureMinutes = 1,
                                .lagMilliseconds = 800,
                                .minutes = 2,
                                .ramRead = 21,
                                .ramWrite = 22,
                                .ramPeak = 99,
                                .ssdRead = 25,
                                .ssdWrite = 25,
                                .ssdPeak = 26,
                                .activeSeconds = 62,
                                .idleSeconds = 64,
                                .awaySeconds = 66,
                                .switches = 70};
    EXPECT_EQ(series[0], expected);
    EXPECT_EQ(series[1].start, Date(1'699'999'800));
}

TEST_F(ResourceStoreTest, aPeriodIsNeverShorterThanItsRecords) {
    const auto store = open();
    store->write({.minute = noon}, {fullApp(noon)});
    store->write({.minute = minuteAfter(1)}, {fullApp(minuteAfter(1))});
    store->write({fullSecond(noon), fullSecond(noon + Seconds(1))});
    const std::vector<std::string> keys{"org.example.app"};
    for (const std::int64_t bucket : {10, 0, -5, 60}) {
        EXPECT_EQ(store->systemSeries(everything, bucket).size(), 2u) << bucket;
        EXPECT_EQ(store->appMemorySeries(everything, bucket, keys).size(), 2u) << bucket;
    }
    for (const std::int64_t bucket : {0, -5, 1})
        EXPECT_EQ(store->secondsSeries(everything, bucket).size(), 2u) << bucket;
}

TEST_F(ResourceStoreTest, secondsAreGatheredIntoPeriods) {
    const auto store = open();
    store->write({{.at = Date(1'700'000'000),
                   .cpu = 0.25,
                   .swapUsed = 2 * mebibyte,
                   .pressure = 1,
                   .ramRead = 10,
                   .ramWrite = 1,
                   .ssdRead = 4,
                   .ssdWrite = 8,
                   .lagMilliseconds = 3},
                  {.at = Date(1'700'000'001),
                   .cpu = 0.75,
                   .swapUsed = mebibyte,
                   .pressure = 4,
                   .ramRead = 2,
                   .ramWrite = 7,
                   .ssdRead = 6,
                   .ssdWrite = 2,
                   .lagMilliseconds = 2}});
    const auto series = store->secondsSeries(everything, 10);
    ASSERT_EQ(series.size(), 1u);
    const SecondBucket expected{.start = Date(1'700'000'000),
                                .cpu = 0.5,
                                .cpuPeak = 0.75,
                                .ramRead = 6,
                                .ramWrite = 4,
                                .ramPeak = 11,
                                .ssdRead = 5,
                                .ssdWrite = 5,
                                .ssdPeak = 12,
                                .swapUsed = 2 * mebibyte,
                                .pressure = 4,
                                .lagMilliseconds = 3};
    EXPECT_EQ(series[0], expected);
}

TEST_F(ResourceStoreTest, hoursOfTheDayAreLocalAndEmptyOnesAreLeftOut) {
    const char* before = std::getenv("TZ");
    const std::string zone = before ? before : "";
    setenv("TZ", "Asia/Kolkata", 1); // five hours and a half ahead
    tzset();
    const auto store = open();
    store->write(fullMinute(Date(1'700'000'040)), {}); // 22:14 UTC, 03:44 there
    store->write(fullMinute(Date(1'700'000'100)), {});
    store->write(fullMinute(Date(1'700'003'640)), {}); // an hour later
    const auto hours = store->hourProfiles(everything);
    if (before)
        setenv("TZ", zone.c_str(), 1);
    else
        unsetenv("TZ");
    tzset();
    ASSERT_EQ(hours.size(), 2u);
    const HourProfile expected{.hour = 3,
                               .activeSeconds = 62,
                               .idleSeconds = 64,
                               .awaySeconds = 66,
                               .switches = 70,
                               .memoryUsed = 1001,
                               .swapIn = 2010,
                               .pressureMinutes = 2,
                               .cpu = 0.125,
                               .minutes = 2,
                               .lagMilliseconds = 14};
    EXPECT_EQ(hours[0], expected);
    EXPECT_EQ(hours[1].hour, 4);
}

TEST_F(ResourceStoreTest, anApplicationIsSummedUpOverItsMinutes) {
    const auto store = open();
    auto one = fullApp(noon);
    auto two = fullApp(minuteAfter(1));
    one.state = 2;
    one.memory = 5000; // of which 2997 are not in memory
    two.cpuPeak = 9;
    two.pcoreShare.reset();
    two.memory = 1000; // all in memory
    auto small = fullApp(noon, "small", "Small");
    small.memory = 10;
    store->write({.minute = noon}, {small, one});
    store->write({.minute = minuteAfter(1)}, {two});
    const auto summaries = store->appSummaries(everything);
    ASSERT_EQ(summaries.size(), 2u);
    const AppResourceSummary expected{.id = "org.example.app",
                                      .name = "App",
                                      .minutes = 2,
                                      .cpu = 1.5,
                                      .cpuPeak = 9,
                                      .memory = 3000,
                                      .memoryPeak = 2002,
                                      .outOfRAM = 1498,
                                      .pageins = 4008,
                                      .frontSeconds = 25,
                                      .frozenMinutes = 1,
                                      .efficientMinutes = 1,
                                      .pcoreShare = 0.75,
                                      .diskRead = 4010,
                                      .diskWritten = 4012,
                                      .energyMillijoules = 4014,
                                      .wakeups = 4016};
    EXPECT_EQ(summaries[0], expected);
    EXPECT_EQ(summaries[1].id, "small");
}

TEST_F(ResourceStoreTest, anApplicationsMemoryIsReadForTheKeysAsked) {
    const auto store = open();
    store->write({.minute = noon}, {fullApp(noon, "a", "A"), fullApp(noon, "b", "B"), fullApp(noon, "c", "C")});
    const std::vector<std::string> keys{"a", "c", "unheard"};
    std::vector<std::string> names;
    for (const auto& point : store->appMemorySeries(everything, 60, keys)) {
        EXPECT_EQ(point.start, noon);
        EXPECT_EQ(point.memory, 2001u);
        names.push_back(point.name);
    }
    EXPECT_EQ(names, (std::vector<std::string>{"A", "C"}));
    EXPECT_TRUE(store->appMemorySeries(everything, 60, {}).empty());
}

TEST_F(ResourceStoreTest, onlyMinutesOfWorkTellOfASetup) {
    struct Row {
        const char* name;
        std::int64_t active, idle, away, paused;
        int minutes, uncertain;
    };
    const Row table[] = {
        {"29 seconds of work and some idle", 29, 31, 0, 0, 0, 0},
        {"30 seconds of work", 30, 0, 30, 0, 1, 0},
        {"nothing was logged of it", 0, 0, 0, 0, 1, 1},
        {"away", 0, 0, 60, 0, 0, 0},
        {"paused", 0, 0, 0, 60, 0, 0},
    };
    for (const auto& row : table) {
        const auto store = open();
        auto minute = fullMinute(noon);
        minute.activeSeconds = row.active;
        minute.idleSeconds = row.idle;
        minute.awaySeconds = row.away;
        minute.pausedSeconds = row.paused;
        store->write(minute, {});
        const auto groups = store->configGroups(everything);
        ASSERT_EQ(static_cast<int>(groups.size()), row.minutes) << row.name;
        if (row.minutes > 0) {
            EXPECT_EQ(groups[0].uncertainMinutes, row.uncertain) << row.name;
        }
    }
}

TEST_F(ResourceStoreTest, setupsAreMeasuredTheSwitchedOffOneFirst) {
    const auto store = open();
    const auto minute = [](int index, tindra::OptimizerConfig config, std::int64_t pressure, std::int64_t lag,
                           std::uint64_t swapIn) {
        auto made = fullMinute(minuteAfter(index));
        made.config = std::move(config);
        made.pressure = pressure;
        made.lagMilliseconds = lag;
        made.swapIn = swapIn;
        return made;
    };
    const tindra::OptimizerConfig on(true, {}, {});
    const auto off = tindra::OptimizerConfig::off();
    store->write(minute(0, on, 4, 0, 0), {});           // a slowdown by pressure, critical
    store->write(minute(1, on, 2, 500, 0), {});         // a slowdown by a stall
    store->write(minute(2, on, 1, 499, 268435455), {}); // none
    store->write(minute(3, on, 1, 0, 268435456), {});   // a slowdown by swapping in
    store->write(minute(4, off, 1, 0, 0), {});
    const auto groups = store->configGroups(everything);
    ASSERT_EQ(groups.size(), 2u);
    EXPECT_EQ(groups[0].key, "off");
    EXPECT_EQ(groups[0].label, off.label());
    const tindra::ConfigStats expected{.minutes = 4,
                                       .pressureMinutes = 2,
                                       .criticalMinutes = 1,
                                       .swapReadBytes = 2 * 268435456ull - 1,
                                       .slowdownMinutes = 3,
                                       .stallMinutes = 1};
    EXPECT_EQ(groups[1].stats, expected);
    EXPECT_EQ(groups[1].key, on.key());
    EXPECT_EQ(groups[1].firstUsed, noon);
    EXPECT_EQ(groups[1].frozenApps, 1.5);
    EXPECT_EQ(groups[1].efficientApps, 2.5);
    EXPECT_EQ(groups[1].frozenMemory, 7 * mebibyte);
    EXPECT_EQ(groups[1].memoryUsed, 1001u);
    EXPECT_EQ(groups[1].uncertainMinutes, 0);
}

// Removing, copying, failing.

TEST_F(ResourceStoreTest, pruningForgetsWhatNothingRefersTo) {
    const auto store = open();
    auto old = fullMinute(noon);
    old.frontApp = "old.front";
    store->write(old, {fullApp(noon, "old", "Old")});
    store->write(fullMinute(minuteAfter(2)), {fullApp(minuteAfter(2), "kept", "Kept")});
    store->write({SystemSecond{.at = noon, .frontApp = "in.seconds"}});
    store->add(ResourceEventKind::quit, AppReference{"old.event", "E"}, "", std::nullopt, noon);
    store->add(ResourceEventKind::quit, AppReference{"kept.event", "E"}, "", std::nullopt, minuteAfter(2));
    store->earliestMinute();
    const auto oldID = value("SELECT id FROM apps WHERE key = 'old'");
    store->prune(minuteAfter(1), std::nullopt);
    store->earliestMinute();
    EXPECT_EQ(value("SELECT group_concat(key) FROM (SELECT key FROM apps ORDER BY key)"),
              "in.seconds,kept,kept.event,org.example.front");
    EXPECT_EQ(store->systemMinutes(everything).size(), 1u);
    EXPECT_EQ(store->secondsCount(everything), 1);

    store->write({.minute = minuteAfter(3)}, {fullApp(minuteAfter(3), "old", "Old")});
    EXPECT_EQ(store->appMinutes(everything).size(), 2u); // it was interned anew
    store->prune(minuteAfter(1), noon + Seconds(1));
    EXPECT_EQ(store->secondsCount(everything), 0);
    EXPECT_EQ(value("SELECT COUNT(*) FROM apps WHERE key = 'in.seconds'"), "0");
    EXPECT_NE(oldID, "nothing");
}

TEST_F(ResourceStoreTest, pruningForgetsSetupsThatNoMinuteHas) {
    const auto store = open();
    auto on = fullMinute(noon);
    on.config = tindra::OptimizerConfig(true, {}, {});
    store->write(on, {});
    store->write(fullMinute(minuteAfter(2)), {});
    store->prune(minuteAfter(1), std::nullopt);
    store->earliestMinute();
    EXPECT_EQ(value("SELECT group_concat(key) FROM configs"), "off");
}

TEST_F(ResourceStoreTest, pruningShrinksTheFile) {
    const auto store = open();
    std::vector<SystemSecond> hours;
    for (int i = 0; i < 50'000; ++i)
        hours.push_back(fullSecond(noon + Seconds(i)));
    store->write(hours);
    store->earliestMinute();
    run("PRAGMA wal_checkpoint(TRUNCATE)");
    const auto before = store->fileSize();
    store->prune(noon, noon + Seconds(49'000));
    store->earliestMinute();
    run("PRAGMA wal_checkpoint(TRUNCATE)");
    EXPECT_LT(store->fileSize(), before / 4);
}

TEST_F(ResourceStoreTest, deletingAllLeavesAnEmptyLogThatGoesOn) {
    const auto store = open();
    store->write(fullMinute(noon), {fullApp(noon)});
    store->write({fullSecond(noon)});
    store->add(ResourceEventKind::quit, AppReference{"a", "A"}, "", std::nullopt, noon);
    store->deleteAll();
    EXPECT_EQ(store->earliestMinute(), std::nullopt);
    for (const char* table : {"apps", "configs", "events", "system_seconds", "app_minutes"})
        EXPECT_EQ(value(fmt::format("SELECT COUNT(*) FROM {}", table)), "0") << table;
    store->write(fullMinute(noon), {fullApp(noon)});
    EXPECT_EQ(store->earliestMinute(), noon);
    EXPECT_EQ(store->appMinutes(everything).size(), 1u);
}

TEST_F(ResourceStoreTest, aCopyIsOneWholeFileForItsOwnerAlone) {
    const auto store = open();
    store->write(fullMinute(noon), {fullApp(noon)});
    const auto copy = folder.path() / "copy.sqlite";
    writeFile(copy, "something else");
    ASSERT_TRUE(store->copyDatabase(copy));
    struct stat status {};
    ASSERT_EQ(stat(copy.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777u, 0600u);
    EXPECT_FALSE(fs::exists(copy.string() + "-wal"));
    VirtualQueue others(time, "copy");
    ResourceStore copied(copy, others, time, DatabaseAccess::readOnly);
    EXPECT_EQ(copied.earliestMinute(), noon);
}

TEST_F(ResourceStoreTest, aCopyThatCannotBeMadeSaysSo) {
    const auto store = open();
    EXPECT_FALSE(store->copyDatabase(folder.path() / "no" / "such" / "folder" / "copy.sqlite"));
}

TEST_F(ResourceStoreTest, aRefusedWriteIsLoggedAndDroppedAndTheRestGoesOn) {
    const auto store = open();
    run("DROP TABLE app_minutes");
    {
        const ExpectedLog log;
        store->write(fullMinute(noon), {fullApp(noon)});
        EXPECT_EQ(store->systemMinutes(everything).size(), 1u);
        ASSERT_FALSE(log.lines().empty());
        EXPECT_EQ(log.lines()[0], "Kestrio resource log SQL error: no such table: app_minutes");
    }
    const ExpectedLog log;
    EXPECT_TRUE(store->appMinutes(everything).empty());
    EXPECT_EQ(log.lines().size(), 1u);
}

TEST_F(ResourceStoreTest, theSizeIsThatOfAllThreeFiles) {
    const auto store = open();
    store->write(fullMinute(noon), {});
    store->earliestMinute();
    std::int64_t size = 0;
    for (const char* suffix : {"", "-wal", "-shm"})
        size += static_cast<std::int64_t>(fs::file_size(file.string() + suffix));
    EXPECT_EQ(store->fileSize(), size);
}

} // namespace
} // namespace kestrio
