#include "Kestrio/Resources/ResourceExporter.h"

#include "Kestrio/Base/CSV.h"
#include "Kestrio/Base/Files.h"
#include "Kestrio/Base/ISODates.h"
#include "Kestrio/Base/TextFile.h"
#include "Kestrio/Resources/ResourceReport.h"
#include "TindraCore/ResourceMath.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <fstream>
#include <limits>

namespace kestrio::ResourceExporter {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

constexpr double bytesPerMB = 1'048'576;      // of memory
constexpr double speedBytesPerMB = 1'000'000; // of what moves
constexpr std::int64_t secondsPerPage = 5'000;
constexpr mode_t ownerOnly = 0600;

// Fields.

/// The moment in whole seconds, with the zone's offset.
std::string iso(Date date, const Calendar& calendar) {
    const Date whole(std::floor(date.seconds()));
    auto text = isoDateTime(whole, calendar.secondsFromUTC(whole));
    return text.erase(text.find('.'), 4);
}

std::string oneDecimal(double value) {
    return fmt::format("{:.1f}", value);
}

std::string twoDecimals(double value) {
    return fmt::format("{:.2f}", value);
}

std::string percent(double share) {
    return oneDecimal(share * 100);
}

std::string percent(const std::optional<double>& share) {
    return share ? percent(*share) : "";
}

std::string megabytes(std::uint64_t bytes) {
    return oneDecimal(static_cast<double>(bytes) / bytesPerMB);
}

std::string speed(double bytesPerSecond) {
    return twoDecimals(bytesPerSecond / speedBytesPerMB);
}

std::string yesOrNo(bool value) {
    return value ? "yes" : "no";
}

std::string pressureWord(std::int64_t code) {
    return code == 4 ? "critical" : code == 2 ? "warning" : "normal";
}

std::string stateWord(std::int64_t code) {
    return code == 2 ? "frozen" : code == 1 ? "efficiency_cores" : "running";
}

double joules(const AppMinute& app) {
    return static_cast<double>(app.energyMillijoules) / 1000;
}

void writeRow(const Sink& sink, std::initializer_list<std::string> fields) {
    std::string row;
    const char* separator = "";
    for (const auto& field : fields) {
        row += separator + csvField(field);
        separator = ",";
    }
    sink(row += '\n');
}

std::string number(std::int64_t value) {
    return std::to_string(value);
}

std::string number(std::uint64_t value) {
    return std::to_string(value);
}

// JSON.

template <class Value>
Json optionalJSON(const std::optional<Value>& value) {
    return value ? Json(*value) : Json(nullptr);
}

Json asJSON(const Mac& mac) {
    return {{"chip", mac.chip},
            {"memory_gb", mac.memoryGB},
            {"efficiency_cores", mac.efficiencyCores},
            {"performance_cores", mac.performanceCores},
            {"macos", mac.macOS}};
}

Json asJSON(const ConfigGroup& group, const Calendar& calendar) {
    return {{"setup", group.label},
            {"first_used", iso(group.firstUsed, calendar)},
            {"minutes_counted", group.stats.minutes},
            {"reliable", group.stats.isReliable()},
            {"memory_pressure_share", group.stats.pressureShare()},
            {"swap_read_bytes_per_hour", group.stats.readBackPerHour()},
            {"slowdowns_per_hour", group.stats.slowdownsPerHour()},
            {"freezes_per_hour", group.stats.stallsPerHour()},
            {"avg_cpu", group.cpu},
            {"avg_memory_bytes", group.memoryUsed},
            {"avg_apps_frozen", group.frozenApps},
            {"avg_apps_on_efficiency_cores", group.efficientApps}};
}

Json asJSON(const SystemMinute& minute, const Calendar& calendar) {
    return {{"minute", iso(minute.minute, calendar)},
            {"cpu", minute.cpu},
            {"cpu_peak", minute.cpuPeak},
            {"cpu_performance", minute.cpuPerformance},
            {"cpu_efficiency", minute.cpuEfficiency},
            {"memory_used", minute.memoryUsed},
            {"memory_total", minute.memoryTotal},
            {"compressed", minute.compressed},
            {"swap_used", minute.swapUsed},
            {"swap_in", minute.swapIn},
            {"swap_out", minute.swapOut},
            {"pressure", minute.pressure},
            {"thermal", minute.thermal},
            {"lag_ms", minute.lagMilliseconds},
            {"front_app", optionalJSON(minute.frontApp)},
            {"ram_read_bytes_per_s", minute.ramRead},
            {"ram_write_bytes_per_s", minute.ramWrite},
            {"ram_peak_bytes_per_s", minute.ramPeak},
            {"ssd_read_bytes_per_s", minute.ssdRead},
            {"ssd_write_bytes_per_s", minute.ssdWrite},
            {"ssd_peak_bytes_per_s", minute.ssdPeak},
            {"ssd_request_wait_us", minute.ssdWaitMicroseconds},
            {"active_seconds", minute.activeSeconds},
            {"idle_seconds", minute.idleSeconds},
            {"away_seconds", minute.awaySeconds},
            {"paused_seconds", minute.pausedSeconds},
            {"app_switches", minute.switches},
            {"apps_open", minute.appsOpen},
            {"processes", minute.processes},
            {"battery_percent", optionalJSON(minute.battery)},
            {"on_ac_power", optionalJSON(minute.onAC)},
            {"low_power_mode", minute.lowPower},
            {"temperature_c", optionalJSON(minute.temperature)},
            {"optimizer_setup", optionalJSON(minute.configLabel)}};
}

Json asJSON(const AppMinute& app, const Calendar& calendar) {
    return {{"minute", iso(app.minute, calendar)},
            {"app", app.name},
            {"bundle_id", app.appID},
            {"cpu_of_core", app.cpu},
            {"cpu_peak_of_core", app.cpuPeak},
            {"fast_core_share", optionalJSON(app.pcoreShare)},
            {"memory", app.memory},
            {"memory_peak", app.memoryPeak},
            {"resident", app.resident},
            {"pageins", app.pageins},
            {"front_seconds", app.frontSeconds},
            {"state", stateWord(app.state)},
            {"processes", app.processes},
            {"disk_read_bytes", app.diskRead},
            {"disk_written_bytes", app.diskWritten},
            {"energy_millijoules", app.energyMillijoules},
            {"cpu_wakeups", app.wakeups}};
}

Json asJSON(const ResourceEvent& event, const Calendar& calendar) {
    return {{"time", iso(event.at, calendar)},
            {"kind", std::string(storedText(event.kind))},
            {"app", optionalJSON(event.appName)},
            {"bundle_id", optionalJSON(event.appID)},
            {"detail", event.detail},
            {"bytes", optionalJSON(event.bytes)}};
}

/// One line of JSON; a text that is not UTF-8 does not end the export.
std::string line(const Json& value) {
    return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

template <class Record>
void writeArray(const Sink& sink, const char* name, const std::vector<Record>& records, const Calendar& calendar) {
    sink(fmt::format(",\n\"{}\": [", name));
    const char* separator = "\n";
    for (const auto& record : records) {
        sink(separator + line(asJSON(record, calendar)));
        separator = ",\n";
    }
    sink("\n]");
}

/// A name that is not taken yet: nothing of an earlier export is written over.
fs::path freshFolder(const fs::path& destination, Date now, const Calendar& calendar) {
    const auto name = "kestrio-" + calendar.formatted(now, "yyyy-MM-dd");
    std::error_code error;
    auto folder = destination / name;
    for (int number = 2; fs::exists(folder, error); ++number)
        folder = destination / fmt::format("{}-{}", name, number);
    return folder;
}

/// Too long for a file that appears whole; a failure leaves the rows up to it. Answers what went wrong.
std::optional<std::string> writeSecondsFile(const fs::path& file, ResourceStore& store, DateInterval interval,
                                            const Calendar& calendar,
                                            const std::function<bool(std::int64_t rows)>& wantsMore) {
    if (const auto error = makePrivateFile(file))
        return "seconds.csv: " + error.message();
    std::ofstream stream(file, std::ios::binary | std::ios::trunc);
    writeSecondsCSV(
        store, interval, calendar,
        [&](std::string_view piece) { stream.write(piece.data(), static_cast<std::streamsize>(piece.size())); },
        wantsMore);
    if (stream.flush())
        return std::nullopt;
    return "seconds.csv: it could not be written to its end";
}

/// Takes away what an export of ours wrote, and its folder with it unless somebody put something else there.
void removeExport(const fs::path& folder) {
    std::error_code ignored;
    for (const auto* name : fileNames)
        fs::remove(folder / name, ignored);
    fs::remove(folder, ignored);
}

} // namespace

Snapshot load(DateInterval interval, std::string title, ResourceStore& store) {
    using Measure = ResourceStore::SecondMeasure;
    Snapshot snapshot{.interval = interval,
                      .title = std::move(title),
                      .system = store.systemMinutes(interval),
                      .apps = store.appMinutes(interval),
                      .summaries = store.appSummaries(interval),
                      .events = store.events(interval, std::numeric_limits<std::int64_t>::max()),
                      .hours = store.hourProfiles(interval),
                      .worstStalls = store.worstSeconds(interval, Measure::lag, worstSecondsTold),
                      .worstSSD = store.worstSeconds(interval, Measure::disk, worstSecondsTold),
                      .worstRAM = store.worstSeconds(interval, Measure::memory, worstSecondsTold),
                      .secondsLogged = store.secondsCount(interval),
                      .configs = store.configGroups(interval)};
    std::ranges::reverse(snapshot.events);
    return snapshot;
}

void writeSystemCSV(const Snapshot& snapshot, const Calendar& calendar, const Sink& sink) {
    sink("minute,cpu_percent,cpu_peak_percent,fast_cores_percent,efficiency_cores_percent,memory_used_mb,"
         "memory_total_mb,compressed_mb,swap_used_mb,swap_read_mb,swap_written_mb,pressure,thermal,stall_ms,front_app,"
         "ram_read_mb_s,ram_write_mb_s,ram_peak_mb_s,ssd_read_mb_s,ssd_write_mb_s,ssd_peak_mb_s,ssd_request_wait_us,"
         "active_seconds,idle_seconds,away_seconds,paused_seconds,app_switches,apps_open,processes,battery_percent,"
         "on_ac_power,low_power_mode,temperature_c,optimizer_setup\n");
    for (const auto& minute : snapshot.system)
        writeRow(sink, {iso(minute.minute, calendar),
                        percent(minute.cpu),
                        percent(minute.cpuPeak),
                        percent(minute.cpuPerformance),
                        percent(minute.cpuEfficiency),
                        megabytes(minute.memoryUsed),
                        megabytes(minute.memoryTotal),
                        megabytes(minute.compressed),
                        megabytes(minute.swapUsed),
                        megabytes(minute.swapIn),
                        megabytes(minute.swapOut),
                        pressureWord(minute.pressure),
                        number(minute.thermal),
                        number(minute.lagMilliseconds),
                        minute.frontApp.value_or(""),
                        speed(minute.ramRead),
                        speed(minute.ramWrite),
                        speed(minute.ramPeak),
                        speed(minute.ssdRead),
                        speed(minute.ssdWrite),
                        speed(minute.ssdPeak),
                        number(minute.ssdWaitMicroseconds),
                        number(minute.activeSeconds),
                        number(minute.idleSeconds),
                        number(minute.awaySeconds),
                        number(minute.pausedSeconds),
                        number(minute.switches),
                        number(minute.appsOpen),
                        number(minute.processes),
                        minute.battery ? number(*minute.battery) : "",
                        minute.onAC ? yesOrNo(*minute.onAC) : "",
                        yesOrNo(minute.lowPower),
                        minute.temperature ? oneDecimal(*minute.temperature) : "",
                        minute.configLabel.value_or("")});
}

void writeAppsCSV(const Snapshot& snapshot, const Calendar& calendar, const Sink& sink) {
    sink("minute,app,bundle_id,cpu_percent_of_core,cpu_peak_percent_of_core,fast_core_share_percent,memory_mb,"
         "memory_peak_mb,in_ram_mb,out_of_ram_mb,pageins,front_seconds,state,processes,disk_read_mb,disk_written_mb,"
         "energy_joules,avg_watts,cpu_wakeups\n");
    for (const auto& app : snapshot.apps)
        writeRow(sink, {iso(app.minute, calendar), app.name, app.appID, percent(app.cpu), percent(app.cpuPeak),
                        percent(app.pcoreShare), megabytes(app.memory), megabytes(app.memoryPeak),
                        megabytes(app.resident), megabytes(tindra::outOfRAM(app.memory, app.resident)),
                        number(app.pageins), oneDecimal(app.frontSeconds), stateWord(app.state), number(app.processes),
                        megabytes(app.diskRead), megabytes(app.diskWritten), twoDecimals(joules(app)),
                        twoDecimals(joules(app) / 60), number(app.wakeups)});
}

void writeEventsCSV(const Snapshot& snapshot, const Calendar& calendar, const Sink& sink) {
    sink("time,kind,app,bundle_id,detail,bytes_mb\n");
    for (const auto& event : snapshot.events)
        writeRow(sink, {iso(event.at, calendar), std::string(storedText(event.kind)), event.appName.value_or(""),
                        event.appID.value_or(""), event.detail, event.bytes ? megabytes(*event.bytes) : ""});
}

void writeImpactCSV(const Snapshot& snapshot, const Calendar& calendar, const Sink& sink) {
    sink("setup,first_used,minutes_counted,reliable,memory_pressure_percent,critical_minutes,swap_read_mb_per_hour,"
         "slowdowns_per_hour,freezes_per_hour,avg_cpu_percent,avg_memory_mb,avg_swap_mb,avg_apps_frozen,"
         "avg_apps_on_efficiency_cores,avg_frozen_memory_mb\n");
    for (const auto& group : snapshot.configs)
        writeRow(sink, {group.label, iso(group.firstUsed, calendar), number(group.stats.minutes),
                        yesOrNo(group.stats.isReliable()), percent(group.stats.pressureShare()),
                        number(group.stats.criticalMinutes), oneDecimal(group.stats.readBackPerHour() / bytesPerMB),
                        twoDecimals(group.stats.slowdownsPerHour()), twoDecimals(group.stats.stallsPerHour()),
                        percent(group.cpu), megabytes(group.memoryUsed), megabytes(group.swapUsed),
                        oneDecimal(group.frozenApps), oneDecimal(group.efficientApps), megabytes(group.frozenMemory)});
}

void writeSessionsCSV(const std::vector<UsedSession>& sessions, const Calendar& calendar, const Sink& sink) {
    sink("start,end,duration_seconds,kind,app,bundle_id,category,project,site\n");
    for (const auto& session : sessions)
        writeRow(sink,
                 {iso(session.start, calendar), iso(session.end, calendar),
                  number(std::int64_t{std::llround((session.end - session.start).count())}), session.kind, session.app,
                  session.bundleID, session.category, session.project.value_or(""), session.site.value_or("")});
}

void writeSecondsCSV(ResourceStore& store, DateInterval interval, const Calendar& calendar, const Sink& sink,
                     const std::function<bool(std::int64_t rows)>& wantsMore) {
    sink("time,cpu_percent,fast_cores_percent,efficiency_cores_percent,memory_used_mb,compressed_mb,swap_used_mb,"
         "pressure,thermal,ram_read_mb_s,ram_write_mb_s,ssd_read_mb_s,ssd_write_mb_s,swap_read_mb_s,swap_written_mb_s,"
         "stall_ms,seconds_since_input,state,front_app\n");
    std::optional<Date> last;
    std::int64_t rows = 0;
    for (;;) {
        const auto page = store.seconds(interval, last, secondsPerPage);
        for (const auto& second : page)
            writeRow(sink,
                     {iso(second.at, calendar), percent(second.cpu), percent(second.cpuPerformance),
                      percent(second.cpuEfficiency), megabytes(second.memoryUsed), megabytes(second.compressed),
                      megabytes(second.swapUsed), pressureWord(second.pressure), number(second.thermal),
                      speed(second.ramRead), speed(second.ramWrite), speed(second.ssdRead), speed(second.ssdWrite),
                      speed(second.swapInRate), speed(second.swapOutRate), number(second.lagMilliseconds),
                      number(second.idleSeconds), number(second.state), second.frontApp.value_or("")});
        rows += static_cast<std::int64_t>(page.size());
        if (wantsMore && !wantsMore(rows))
            return;
        if (static_cast<std::int64_t>(page.size()) < secondsPerPage)
            return;
        last = page.back().at;
    }
}

void writeJSON(const Snapshot& snapshot, const Surroundings& surroundings, const Sink& sink) {
    const auto& calendar = surroundings.calendar;
    sink("{\n\"range\": " +
         line({{"start", iso(snapshot.interval.start, calendar)}, {"end", iso(snapshot.interval.end, calendar)}}));
    sink(",\n\"mac\": " + line(asJSON(surroundings.mac)));
    sink(",\n\"settings\": " + line(surroundings.settings));
    sink(",\n\"note\": " +
         line(fmt::format("Second-by-second readings ({} in this range) are in seconds.csv, not here.",
                          snapshot.secondsLogged)));
    writeArray(sink, "optimizer_setups", snapshot.configs, calendar);
    writeArray(sink, "system_minutes", snapshot.system, calendar);
    writeArray(sink, "app_minutes", snapshot.apps, calendar);
    writeArray(sink, "events", snapshot.events, calendar);
    sink("\n}\n");
}

std::string readme(const Snapshot& snapshot, const Surroundings& surroundings, std::size_t sessions) {
    const auto& mac = surroundings.mac;
    std::string text = "Kestrio resource log export\n";
    text += fmt::format("{} to {}\n", iso(snapshot.interval.start, surroundings.calendar),
                        iso(snapshot.interval.end, surroundings.calendar));
    text += fmt::format("from a {} with {} GB of RAM ({}).\n\n", mac.chip, mac.memoryGB, mac.macOS);
    text += "FILES\n";
    text +=
        "report.md            A readable summary: how you used the Mac, memory, speeds, apps, worst moments, what the "
        "optimizer did.\n";
    text +=
        fmt::format("system-minutes.csv   One row per minute for the whole Mac ({} rows): CPU, memory, swap, RAM and "
                    "SSD speed,\n"
                    "                     how you spent the minute (active / idle / away / paused seconds, app "
                    "switches), open apps, battery, heat,\n"
                    "                     and which optimizer setup was active (the optimizer_setup column).\n",
                    snapshot.system.size());
    text +=
        fmt::format("apps-minutes.csv     One row per app per minute it mattered ({} rows): CPU, memory (in RAM and "
                    "pushed out),\n"
                    "                     disk read and written, energy, which kind of core it ran on, time in "
                    "front.\n",
                    snapshot.apps.size());
    text += fmt::format("seconds.csv          The second-by-second readings ({} rows, at the pace set in Settings): "
                        "whole-Mac numbers only.\n",
                        snapshot.secondsLogged);
    text +=
        "events.csv           Slowdowns, memory pressure, what the optimizer did, apps opening and closing, sleep and "
        "wake, active/away changes.\n";
    text +=
        "optimization-impact.csv  One row per optimizer setup (and \"off\"): how the Mac did while each was in use, "
        "for comparing them.\n";
    text +=
        fmt::format("activity-sessions.csv What you used and when ({} rows): app, category, project, site. No window "
                    "titles or URLs.\n",
                    sessions);
    text += "data.json            The minute-level data and settings in one file.\n";
    text += "resources.sqlite     A copy of the raw log database, for anyone who wants to query it with SQL.\n\n";
    text +=
        "UNITS\n"
        "Memory in MB (1 MB = 1,048,576 bytes). Speeds in MB/s (1 MB = 1,000,000 bytes), the way drives and memory "
        "are rated.\n"
        "CPU in percent of all cores (system files) or percent of one core (apps files, so 150 means one and a half "
        "cores).\n"
        "Times are in the Mac's local time zone. Pressure: normal, warning, critical. Thermal: 0 nominal to 3 "
        "critical.\n\n";
    text += "PRIVACY\n"
            "Only app names, categories and numbers. Never window titles, tabs, URLs or content.\n\n";
    text = surroundings.hostWords(text, {});
    text += "SETTINGS WHEN EXPORTED\n";
    for (const auto& [key, value] : surroundings.settings.items())
        text += fmt::format("{}: {}\n", key, value.is_string() ? value.get<std::string>() : line(value));
    return text;
}

Export exportEverything(const Request& request, const Surroundings& surroundings, ResourceStore& store) {
    const auto& calendar = surroundings.calendar;
    Export result{.folder = freshFolder(request.destination, request.now, calendar), .error = std::nullopt};
    if (const auto error = makePrivateFolder(result.folder)) {
        result.error = error.message();
        return result;
    }
    const auto interval =
        request.interval.value_or(DateInterval{store.earliestMinute().value_or(request.now), request.now});
    auto snapshot = load(interval, request.title, store);
    std::vector<std::string> names;
    std::ranges::transform(snapshot.summaries, std::back_inserter(names), &AppResourceSummary::name);
    for (auto& event : snapshot.events)
        event.detail = surroundings.hostWords(event.detail, names);
    const auto sessions = request.sessions(interval);

    const auto isOver = [&] { return result.error || request.work.stop.stop_requested(); };

    // The share of each file is about what it takes; the seconds tell their own.
    const auto write = [&](const char* name, double shareAfter, const std::function<void(const Sink&)>& fill) {
        if (isOver())
            return;
        ReplacementFile file(result.folder / name, ownerOnly);
        fill([&](std::string_view piece) {
            if (!isOver())
                file.write(piece);
        });
        if (isOver())
            return;
        if (const auto error = file.commit())
            result.error = fmt::format("{}: {}", name, error.message());
        else
            request.work.progress(shareAfter);
    };
    write("report.md", 0.05, [&](const Sink& sink) { sink(report(snapshot, surroundings)); });
    write("system-minutes.csv", 0.1, [&](const Sink& sink) { writeSystemCSV(snapshot, calendar, sink); });
    write("apps-minutes.csv", 0.3, [&](const Sink& sink) { writeAppsCSV(snapshot, calendar, sink); });
    if (!isOver())
        result.error =
            writeSecondsFile(result.folder / "seconds.csv", store, interval, calendar, [&](std::int64_t rows) {
                const auto all = static_cast<double>(std::max<std::int64_t>(snapshot.secondsLogged, 1));
                request.work.progress(0.3 + 0.4 * std::min(static_cast<double>(rows) / all, 1.0));
                return !request.work.stop.stop_requested();
            });
    write("events.csv", 0.72, [&](const Sink& sink) { writeEventsCSV(snapshot, calendar, sink); });
    write("optimization-impact.csv", 0.73, [&](const Sink& sink) { writeImpactCSV(snapshot, calendar, sink); });
    write("activity-sessions.csv", 0.75, [&](const Sink& sink) { writeSessionsCSV(sessions, calendar, sink); });
    write("data.json", 0.9, [&](const Sink& sink) { writeJSON(snapshot, surroundings, sink); });
    if (!isOver() && !store.copyDatabase(result.folder / ResourceStore::fileName))
        result.error = fmt::format("{}: the copy could not be made", ResourceStore::fileName);
    write("README.txt", 1, [&](const Sink& sink) { sink(readme(snapshot, surroundings, sessions.size())); });
    if (request.work.stop.stop_requested()) {
        removeExport(result.folder);
        result.wasStopped = true;
    }
    return result;
}

} // namespace kestrio::ResourceExporter
