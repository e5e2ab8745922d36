#include "Kestrio/Base/VirtualQueue.h"
#include "Kestrio/Resources/ResourceExporter.h"
#include "Tests/ExpectedLog.h"
#include "Tests/Resources/ExampleSnapshot.h"
#include "Tests/Support/TemporaryFolder.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;
using namespace ResourceExporter;

std::string collected(const std::function<void(const Sink&)>& write) {
    std::string text;
    write([&](std::string_view piece) { text += piece; });
    return text;
}

/// A text's lines, without the line feeds.
std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> found;
    for (std::size_t from = 0; from < text.size();) {
        const auto to = text.find('\n', from);
        found.push_back(text.substr(from, to - from));
        from = to == std::string::npos ? text.size() : to + 1;
    }
    return found;
}

const Calendar calendar("en_GB", "Europe/Berlin");

// The tables.

TEST(ResourceExporter, aMinuteOfTheMachineIsARow) {
    Snapshot snapshot;
    snapshot.system = {exampleMinute(0)};
    const auto rows = lines(collected([&](const Sink& sink) { writeSystemCSV(snapshot, calendar, sink); }));
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0],
              "minute,cpu_percent,cpu_peak_percent,fast_cores_percent,efficiency_cores_percent,memory_used_mb,"
              "memory_total_mb,compressed_mb,swap_used_mb,swap_read_mb,swap_written_mb,pressure,thermal,stall_ms,"
              "front_app,ram_read_mb_s,ram_write_mb_s,ram_peak_mb_s,ssd_read_mb_s,ssd_write_mb_s,ssd_peak_mb_s,"
              "ssd_request_wait_us,active_seconds,idle_seconds,away_seconds,paused_seconds,app_switches,apps_open,"
              "processes,battery_percent,on_ac_power,low_power_mode,temperature_c,optimizer_setup");
    EXPECT_EQ(rows[1], "2023-11-14T23:13:00+01:00,25.0,50.0,12.5,37.5,8192.0,16384.0,100.0,50.0,3.0,2.0,normal,0,12,"
                       "org.example.app,1500.00,500.00,3000.00,10.00,5.00,90.00,350,40,10,6,4,3,7,300,80,yes,no,51.2,"
                       "Optimization off");
}

TEST(ResourceExporter, whatIsUnknownOfAMinuteIsAnEmptyField) {
    Snapshot snapshot;
    snapshot.system = {{.minute = exampleStart, .pressure = 2, .lowPower = true}};
    const auto rows = lines(collected([&](const Sink& sink) { writeSystemCSV(snapshot, calendar, sink); }));
    EXPECT_EQ(rows.at(1),
              "2023-11-14T23:13:00+01:00,0.0,0.0,0.0,0.0,0.0,0.0,0.0,0.0,0.0,0.0,warning,0,0,,0.00,0.00,0.00,"
              "0.00,0.00,0.00,0,0,0,0,0,0,0,0,,,yes,,");
}

TEST(ResourceExporter, pressureIsAWord) {
    const std::pair<std::int64_t, const char*> table[] = {{1, "normal"}, {2, "warning"}, {4, "critical"},
                                                          {0, "normal"}, {3, "normal"},  {9, "normal"}};
    for (const auto& [code, word] : table) {
        Snapshot snapshot;
        snapshot.system = {{.minute = exampleStart, .pressure = code}};
        const auto text = collected([&](const Sink& sink) { writeSystemCSV(snapshot, calendar, sink); });
        EXPECT_NE(text.find(fmt::format(",{},0,0,", word)), std::string::npos) << code;
    }
}

TEST(ResourceExporter, aMinuteOfAnApplicationIsARowWithItsNameQuoted) {
    Snapshot snapshot;
    snapshot.apps = {exampleApp(0)};
    const auto rows = lines(collected([&](const Sink& sink) { writeAppsCSV(snapshot, calendar, sink); }));
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0], "minute,app,bundle_id,cpu_percent_of_core,cpu_peak_percent_of_core,fast_core_share_percent,"
                       "memory_mb,memory_peak_mb,in_ram_mb,out_of_ram_mb,pageins,front_seconds,state,processes,"
                       "disk_read_mb,disk_written_mb,energy_joules,avg_watts,cpu_wakeups");
    EXPECT_EQ(rows[1],
              "2023-11-14T23:13:00+01:00,\"App, the \"\"great\"\" one\",org.example.app,150.0,225.0,75.0,300.0,"
              "310.0,200.0,100.0,17,42.2,frozen,5,1.0,1.5,123.46,2.06,99");
}

TEST(ResourceExporter, theStateOfAnApplicationIsAWord) {
    const std::pair<std::int64_t, const char*> table[] = {
        {0, "running"}, {1, "efficiency_cores"}, {2, "frozen"}, {3, "running"}};
    for (const auto& [code, word] : table) {
        auto app = exampleApp(0);
        app.state = code;
        app.pcoreShare.reset();
        Snapshot snapshot;
        snapshot.apps = {app};
        const auto text = collected([&](const Sink& sink) { writeAppsCSV(snapshot, calendar, sink); });
        EXPECT_NE(text.find(fmt::format(",42.2,{},5,", word)), std::string::npos) << code;
        EXPECT_NE(text.find(",225.0,,300.0,"), std::string::npos);
    }
}

TEST(ResourceExporter, eventsAndSetupsAndSessionsAreRows) {
    Snapshot snapshot;
    snapshot.events = {{.id = 1,
                        .at = exampleStart + Seconds(0.9),
                        .kind = ResourceEventKind::freeze,
                        .appID = "a",
                        .appName = "A",
                        .detail = "first,\nsecond",
                        .bytes = 3 * exampleMebibyte / 2},
                       {.id = 2, .at = exampleStart + Seconds(1), .kind = ResourceEventKind::macWoke}};
    EXPECT_EQ(collected([&](const Sink& sink) { writeEventsCSV(snapshot, calendar, sink); }),
              "time,kind,app,bundle_id,detail,bytes_mb\n"
              "2023-11-14T23:13:00+01:00,freeze,A,a,\"first,\nsecond\",1.5\n"
              "2023-11-14T23:13:01+01:00,macWoke,,,,\n");

    snapshot.configs = {{.id = 1,
                         .key = "off",
                         .label = "Optimization off",
                         .firstUsed = exampleStart,
                         .stats = {.minutes = 60,
                                   .pressureMinutes = 6,
                                   .criticalMinutes = 3,
                                   .swapReadBytes = 5 * exampleMebibyte,
                                   .slowdownMinutes = 2,
                                   .stallMinutes = 1},
                         .cpu = 0.5,
                         .memoryUsed = 100 * exampleMebibyte,
                         .swapUsed = 10 * exampleMebibyte,
                         .frozenApps = 1.25,
                         .efficientApps = 2,
                         .frozenMemory = 64 * exampleMebibyte}};
    EXPECT_EQ(lines(collected([&](const Sink& sink) { writeImpactCSV(snapshot, calendar, sink); })),
              (std::vector<std::string>{
                  "setup,first_used,minutes_counted,reliable,memory_pressure_percent,critical_minutes,"
                  "swap_read_mb_per_hour,slowdowns_per_hour,freezes_per_hour,avg_cpu_percent,avg_memory_mb,avg_swap_mb,"
                  "avg_apps_frozen,avg_apps_on_efficiency_cores,avg_frozen_memory_mb",
                  "Optimization off,2023-11-14T23:13:00+01:00,60,yes,10.0,3,5.0,2.00,1.00,50.0,100.0,10.0,1.2,2.0,"
                  "64.0"}));
    snapshot.configs[0].stats.minutes = 29;
    EXPECT_NE(collected([&](const Sink& sink) { writeImpactCSV(snapshot, calendar, sink); }).find(",29,no,"),
              std::string::npos);

    const std::vector<UsedSession> sessions{
        {exampleStart, exampleStart + Seconds(90.5), "focused", "A, B", "a", "Work & Docs", "kestrel", std::nullopt}};
    EXPECT_EQ(collected([&](const Sink& sink) { writeSessionsCSV(sessions, calendar, sink); }),
              "start,end,duration_seconds,kind,app,bundle_id,category,project,site\n"
              "2023-11-14T23:13:00+01:00,2023-11-14T23:14:30+01:00,91,focused,\"A, B\",a,Work & Docs,kestrel,\n");
}

TEST(ResourceExporter, timesCarryTheOffsetOfTheirDay) {
    Snapshot snapshot;
    snapshot.events = {{.at = Date(1'688'000'000), .kind = ResourceEventKind::wake},
                       {.at = Date(1'700'000'000), .kind = ResourceEventKind::wake}};
    const auto rows = lines(collected([&](const Sink& sink) { writeEventsCSV(snapshot, calendar, sink); }));
    EXPECT_EQ(rows.at(1).substr(0, 25), "2023-06-29T02:53:20+02:00");
    EXPECT_EQ(rows.at(2).substr(0, 25), "2023-11-14T23:13:20+01:00");
    const auto utc = lines(collected([&](const Sink& sink) { writeEventsCSV(snapshot, Calendar("en", "UTC"), sink); }));
    EXPECT_EQ(utc.at(1).substr(0, 21), "2023-06-29T00:53:20Z,");
}

TEST(ResourceExporter, theFileForProgramsHasItsKeys) {
    Snapshot snapshot;
    snapshot.interval = {exampleStart, exampleStart + Seconds(120)};
    snapshot.system = {exampleMinute(0), {.minute = exampleStart + Seconds(60)}};
    snapshot.apps = {exampleApp(0)};
    snapshot.events = {{.at = exampleStart, .kind = ResourceEventKind::quit, .detail = "bad \xff byte"}};
    snapshot.configs = {{.key = "off", .label = "Optimization off", .firstUsed = exampleStart}};
    snapshot.secondsLogged = 1234;
    const auto json =
        nlohmann::json::parse(collected([&](const Sink& sink) { writeJSON(snapshot, exampleSurroundings(), sink); }));
    EXPECT_EQ(json["range"]["start"], "2023-11-14T23:13:00+01:00");
    EXPECT_EQ(json["mac"], (nlohmann::json{{"chip", "Example 9"},
                                           {"memory_gb", 16},
                                           {"efficiency_cores", 4},
                                           {"performance_cores", 8},
                                           {"macos", "Debian GNU/Linux 12"}}));
    EXPECT_EQ(json["settings"]["log_days"], 90);
    EXPECT_EQ(json["note"], "Second-by-second readings (1234 in this range) are in seconds.csv, not here.");
    ASSERT_EQ(json["system_minutes"].size(), 2u);
    for (const char* key :
         {"ram_read_bytes_per_s", "ram_write_bytes_per_s", "ram_peak_bytes_per_s", "ssd_read_bytes_per_s",
          "ssd_write_bytes_per_s", "ssd_peak_bytes_per_s", "ssd_request_wait_us", "active_seconds", "idle_seconds",
          "apps_open", "battery_percent", "on_ac_power", "low_power_mode", "temperature_c", "optimizer_setup"})
        EXPECT_TRUE(json["system_minutes"][0].contains(key)) << key;
    EXPECT_EQ(json["system_minutes"][0]["ram_read_bytes_per_s"], 1.5e9);
    EXPECT_TRUE(json["system_minutes"][1]["battery_percent"].is_null());
    for (const char* key : {"bundle_id", "cpu_of_core", "cpu_peak_of_core", "fast_core_share", "memory",
                            "front_seconds", "state", "disk_read_bytes", "disk_written_bytes", "energy_millijoules"})
        EXPECT_TRUE(json["app_minutes"][0].contains(key)) << key;
    for (const char* key : {"bundle_id", "detail", "bytes"})
        EXPECT_TRUE(json["events"][0].contains(key)) << key;
    for (const char* key : {"setup", "first_used", "minutes_counted", "reliable", "memory_pressure_share",
                            "swap_read_bytes_per_hour", "slowdowns_per_hour", "freezes_per_hour", "avg_cpu",
                            "avg_memory_bytes", "avg_apps_frozen", "avg_apps_on_efficiency_cores"})
        EXPECT_TRUE(json["optimizer_setups"][0].contains(key)) << key;
}

TEST(ResourceExporter, thePageSaysWhatEverythingIs) {
    Snapshot snapshot;
    snapshot.interval = {exampleStart, exampleStart + Seconds(60)};
    snapshot.system = {exampleMinute(0)};
    snapshot.secondsLogged = 55;
    EXPECT_EQ(
        readme(snapshot, exampleSurroundings(), 7),
        "Kestrio resource log export\n"
        "2023-11-14T23:13:00+01:00 to 2023-11-14T23:14:00+01:00\n"
        "from a Example 9 with 16 GB of RAM (Debian GNU/Linux 12).\n"
        "\n"
        "FILES\n"
        "report.md            A readable summary: how you used the Mac, memory, speeds, apps, worst moments, what the "
        "optimizer did.\n"
        "system-minutes.csv   One row per minute for the whole Mac (1 rows): CPU, memory, swap, RAM and SSD speed,\n"
        "                     how you spent the minute (active / idle / away / paused seconds, app switches), open "
        "apps, "
        "battery, heat,\n"
        "                     and which optimizer setup was active (the optimizer_setup column).\n"
        "apps-minutes.csv     One row per app per minute it mattered (0 rows): CPU, memory (in RAM and pushed out),\n"
        "                     disk read and written, energy, which kind of core it ran on, time in front.\n"
        "seconds.csv          The second-by-second readings (55 rows, at the pace set in Settings): whole-Mac numbers "
        "only.\n"
        "events.csv           Slowdowns, memory pressure, what the optimizer did, apps opening and closing, sleep and "
        "wake, active/away changes.\n"
        "optimization-impact.csv  One row per optimizer setup (and \"off\"): how the Mac did while each was in use, "
        "for "
        "comparing them.\n"
        "activity-sessions.csv What you used and when (7 rows): app, category, project, site. No window titles or "
        "URLs.\n"
        "data.json            The minute-level data and settings in one file.\n"
        "resources.sqlite     A copy of the raw log database, for anyone who wants to query it with SQL.\n"
        "\n"
        "UNITS\n"
        "Memory in MB (1 MB = 1,048,576 bytes). Speeds in MB/s (1 MB = 1,000,000 bytes), the way drives and memory are "
        "rated.\n"
        "CPU in percent of all cores (system files) or percent of one core (apps files, so 150 means one and a half "
        "cores).\n"
        "Times are in the Mac's local time zone. Pressure: normal, warning, critical. Thermal: 0 nominal to 3 "
        "critical.\n"
        "\n"
        "PRIVACY\n"
        "Only app names, categories and numbers. Never window titles, tabs, URLs or content.\n"
        "\n"
        "SETTINGS WHEN EXPORTED\n"
        "optimization_on: false\n"
        "log_days: 90\n");
}

// The folder.

class ExportTest : public testing::Test {
protected:
    TemporaryFolder folder;
    VirtualTime time{exampleStart + Seconds(86'400)};
    VirtualQueue queue{time, ResourceStore::queueLabel};
    ResourceStore store{folder.path() / "data" / ResourceStore::fileName, queue, time};
    std::vector<double> progress;
    std::stop_source stop;
    std::function<void(double share)> told = [](double) {};

    Request request() {
        return {.destination = folder.path(),
                .interval = std::nullopt,
                .title = "All time",
                .now = time.now(),
                .sessions = [](DateInterval) { return std::vector<UsedSession>{}; },
                .work = {.progress =
                             [this](double share) {
                                 progress.push_back(share);
                                 told(share);
                             },
                         .stop = stop.get_token()}};
    }

    void fill(int seconds) {
        store.write(exampleMinute(0), {exampleApp(0)});
        std::vector<SystemSecond> rows;
        for (int i = 0; i < seconds; ++i)
            rows.push_back(exampleSecond(i));
        store.write(rows);
        store.add(ResourceEventKind::freeze, AppReference{"a", "A"}, "", std::nullopt, exampleStart + Seconds(5));
        store.add(ResourceEventKind::thaw, AppReference{"a", "A"}, "", std::nullopt, exampleStart + Seconds(9));
    }
};

TEST_F(ExportTest, theFolderHoldsTenFilesForTheirOwnerAlone) {
    fill(3);
    const auto result = exportEverything(request(), exampleSurroundings(), store);
    EXPECT_EQ(result.error, std::nullopt);
    EXPECT_EQ(result.folder, folder.path() / "kestrio-2023-11-15");
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(result.folder)) {
        names.push_back(entry.path().filename());
        struct stat status {};
        ASSERT_EQ(stat(entry.path().c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 0777u, 0600u) << entry.path();
    }
    std::ranges::sort(names);
    EXPECT_EQ(names, std::vector<std::string>(fileNames.begin(), fileNames.end()));
    EXPECT_TRUE(std::ranges::is_sorted(progress));
    EXPECT_EQ(progress.back(), 1);
    const auto events = lines(fileText(result.folder / "events.csv"));
    ASSERT_EQ(events.size(), 3u);
    EXPECT_NE(events[1].find("freeze"), std::string::npos); // the oldest first
}

TEST_F(ExportTest, leavesNothingWhenItIsStopped) {
    fill(12'001);
    fs::path folderOfIt;
    for (const double share : {0.05, 0.35, 0.6, 0.72, 0.9, 1.0}) {
        stop = std::stop_source();
        progress.clear();
        told = [&](double reached) {
            if (reached >= share)
                stop.request_stop();
        };
        const auto result = exportEverything(request(), exampleSurroundings(), store);
        EXPECT_TRUE(result.wasStopped) << share;
        EXPECT_EQ(result.error, std::nullopt) << share;
        EXPECT_FALSE(fs::exists(result.folder)) << share;
        EXPECT_LE(progress.back(), share + 0.2) << "it goes no further";
    }
    told = [](double) {};
    stop = std::stop_source();
    EXPECT_FALSE(exportEverything(request(), exampleSurroundings(), store).wasStopped);
}

TEST_F(ExportTest, leavesWhatSomebodyElsePutThereWhenItIsStopped) {
    fill(1);
    auto wanted = request();
    told = [&](double) {
        folder.write(fs::path("kestrio-2023-11-15") / "mine.txt", "precious");
        stop.request_stop();
    };
    const auto result = exportEverything(wanted, exampleSurroundings(), store);
    EXPECT_TRUE(result.wasStopped);
    EXPECT_EQ(fileText(result.folder / "mine.txt"), "precious");
    EXPECT_FALSE(fs::exists(result.folder / "report.md"));
}

TEST_F(ExportTest, aSecondExportOfADayLeavesTheFirstAlone) {
    fill(0);
    const auto first = exportEverything(request(), exampleSurroundings(), store);
    const auto second = exportEverything(request(), exampleSurroundings(), store);
    EXPECT_EQ(second.folder, first.folder.string() + "-2");
    EXPECT_EQ(exportEverything(request(), exampleSurroundings(), store).folder, first.folder.string() + "-3");
}

TEST_F(ExportTest, aLongRunOfSecondsIsWrittenPageByPage) {
    fill(12'001);
    const auto result = exportEverything(request(), exampleSurroundings(), store);
    const auto rows = lines(fileText(result.folder / "seconds.csv"));
    ASSERT_EQ(rows.size(), 12'002u);
    EXPECT_EQ(rows[0], "time,cpu_percent,fast_cores_percent,efficiency_cores_percent,memory_used_mb,compressed_mb,"
                       "swap_used_mb,pressure,thermal,ram_read_mb_s,ram_write_mb_s,ssd_read_mb_s,ssd_write_mb_s,"
                       "swap_read_mb_s,swap_written_mb_s,stall_ms,seconds_since_input,state,front_app");
    EXPECT_EQ(rows[1], "2023-11-14T23:13:00+01:00,97.0,100.0,50.0,100.0,20.0,10.0,critical,1,2000.00,1000.00,300.00,"
                       "200.00,1.50,2.50,900,3,0,org.example.app");
    EXPECT_NE(rows.back().find(",12900,3,0,"), std::string::npos);
}

TEST_F(ExportTest, anEmptyLogYieldsFilesOfHeadersAlone) {
    const auto result = exportEverything(request(), exampleSurroundings(), store);
    EXPECT_EQ(result.error, std::nullopt);
    for (const char* name : {"system-minutes.csv", "apps-minutes.csv", "seconds.csv", "events.csv",
                             "optimization-impact.csv", "activity-sessions.csv"})
        EXPECT_EQ(lines(fileText(result.folder / name)).size(), 1u) << name;
    const auto json = nlohmann::json::parse(fileText(result.folder / "data.json"));
    EXPECT_TRUE(json["system_minutes"].empty());
}

TEST_F(ExportTest, aRangeLeavesOutWhatIsNotInIt) {
    fill(10);
    auto wanted = request();
    wanted.interval = DateInterval{exampleStart + Seconds(4), exampleStart + Seconds(8)};
    const auto result = exportEverything(wanted, exampleSurroundings(), store);
    EXPECT_EQ(lines(fileText(result.folder / "seconds.csv")).size(), 5u);
    EXPECT_EQ(lines(fileText(result.folder / "events.csv")).size(), 2u);
    EXPECT_EQ(lines(fileText(result.folder / "system-minutes.csv")).size(), 1u);
}

TEST_F(ExportTest, aPlaceThatTakesNothingEndsItWithTheReason) {
    auto wanted = request();
    wanted.destination = "/proc/no/such/place";
    const auto result = exportEverything(wanted, exampleSurroundings(), store);
    ASSERT_TRUE(result.error);
    EXPECT_EQ(*result.error, "No such file or directory");
}

TEST_F(ExportTest, aFullDiskEndsItWithTheReason) {
    fill(1);
    auto wanted = request();
    wanted.sessions = [&](DateInterval) {
        // By now the folder is there: nothing more fits into it.
        fs::remove_all(folder.path() / "kestrio-2023-11-15");
        return std::vector<UsedSession>{};
    };
    const auto result = exportEverything(wanted, exampleSurroundings(), store);
    EXPECT_EQ(result.error, "report.md: No such file or directory");
}

} // namespace
} // namespace kestrio
