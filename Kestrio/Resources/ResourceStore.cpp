#include "Kestrio/Resources/ResourceStore.h"

#include "Kestrio/Base/Files.h"
#include "Kestrio/Base/Log.h"
#include "Kestrio/Resources/ResourceTables.h"
#include "Kestrio/Resources/StoredValues.h"

#include <exception>

namespace kestrio {
namespace {

namespace fs = std::filesystem;
using namespace storedValues;
using sqlite::Columns;
using sqlite::Statement;
using sqlite::Step;

constexpr std::int64_t minuteLength = 60;

/// The version of a file whose minutes all know their setup.
constexpr std::int64_t backFilledVersion = 2;

void logSQLError(const std::string& message) {
    logLine("Kestrio resource log SQL error: " + message);
}

// The decoders below read each column in the order in which their statement names them.

SystemMinute decodeSystemMinute(Columns row) {
    SystemMinute minute{.minute = row.date(),
                        .cpu = row.real(),
                        .cpuPeak = row.real(),
                        .cpuPerformance = row.real(),
                        .cpuEfficiency = row.real(),
                        .memoryUsed = row.natural(),
                        .memoryTotal = row.natural(),
                        .compressed = row.natural(),
                        .swapUsed = row.natural(),
                        .swapIn = row.natural(),
                        .swapOut = row.natural(),
                        .pressure = row.integer(),
                        .thermal = row.integer(),
                        .lagMilliseconds = row.integer(),
                        .frontApp = row.text(),
                        .ramRead = row.real(),
                        .ramWrite = row.real(),
                        .ramPeak = row.real(),
                        .ssdRead = row.real(),
                        .ssdWrite = row.real(),
                        .ssdPeak = row.real(),
                        .ssdWaitMicroseconds = row.integer(),
                        .activeSeconds = row.integer(),
                        .idleSeconds = row.integer(),
                        .awaySeconds = row.integer(),
                        .pausedSeconds = row.integer(),
                        .switches = row.integer(),
                        .appsOpen = row.integer(),
                        .processes = row.integer(),
                        .battery = row.optionalInteger()};
    if (const auto onAC = row.optionalInteger())
        minute.onAC = *onAC != 0;
    minute.lowPower = row.integer() != 0;
    minute.temperature = row.optionalReal();
    minute.configLabel = row.text();
    minute.frozenApps = row.real();
    minute.efficientApps = row.real();
    minute.frozenMemory = fromMebibytes(row.natural());
    return minute;
}

AppMinute decodeAppMinute(Columns row) {
    return {.minute = row.date(),
            .appID = row.text().value_or(""),
            .name = row.text().value_or(""),
            .cpu = row.real(),
            .cpuPeak = row.real(),
            .pcoreShare = row.optionalReal(),
            .memory = row.natural(),
            .memoryPeak = row.natural(),
            .resident = row.natural(),
            .pageins = row.natural(),
            .frontSeconds = row.real(),
            .state = row.integer(),
            .processes = row.integer(),
            .diskRead = row.natural(),
            .diskWritten = row.natural(),
            .energyMillijoules = row.natural(),
            .wakeups = row.natural()};
}

AppResourceSummary decodeSummary(Columns row) {
    return {.id = row.text().value_or(""),
            .name = row.text().value_or(""),
            .minutes = row.integer(),
            .cpu = row.real(),
            .cpuPeak = row.real(),
            .memory = averageCount(row.real()),
            .memoryPeak = row.natural(),
            .outOfRAM = averageCount(row.real()),
            .pageins = row.natural(),
            .frontSeconds = row.real(),
            .frozenMinutes = row.integer(),
            .efficientMinutes = row.integer(),
            .pcoreShare = row.optionalReal(),
            .diskRead = row.natural(),
            .diskWritten = row.natural(),
            .energyMillijoules = row.natural(),
            .wakeups = row.natural()};
}

HourProfile decodeHour(Columns row) {
    return {.hour = row.integer(),
            .activeSeconds = row.integer(),
            .idleSeconds = row.integer(),
            .awaySeconds = row.integer(),
            .switches = row.integer(),
            .memoryUsed = averageCount(row.real()),
            .swapIn = row.natural(),
            .pressureMinutes = row.integer(),
            .cpu = row.real(),
            .minutes = row.integer(),
            .lagMilliseconds = row.integer()};
}

ConfigGroup decodeConfigGroup(Columns row) {
    return {.id = row.integer(),
            .key = row.text().value_or(""),
            .label = row.text().value_or(""),
            .firstUsed = row.date(),
            .stats = {.minutes = row.integer(),
                      .pressureMinutes = row.integer(),
                      .criticalMinutes = row.integer(),
                      .swapReadBytes = row.natural(),
                      .slowdownMinutes = row.integer(),
                      .stallMinutes = row.integer()},
            .cpu = row.real(),
            .memoryUsed = averageCount(row.real()),
            .swapUsed = averageCount(row.real()),
            .frozenApps = row.real(),
            .efficientApps = row.real(),
            .frozenMemory = fromMebibytes(averageCount(row.real())),
            .uncertainMinutes = row.integer()};
}

constexpr auto secondColumns =
    "SELECT s.ts, s.cpu, s.cpu_p, s.cpu_e, s.mem_mb, s.comp_mb, s.swap_mb, s.pressure, s.thermal, s.ram_r, s.ram_w,\n"
    "s.ssd_r, s.ssd_w, s.swap_in, s.swap_out, s.lag_ms, s.idle_s, s.state, a.key\n"
    "FROM system_seconds s LEFT JOIN apps a ON a.id = s.front\n";

SystemSecond decodeSecond(Columns row) {
    return {.at = row.date(),
            .cpu = share(row.integer()),
            .cpuPerformance = share(row.integer()),
            .cpuEfficiency = share(row.integer()),
            .memoryUsed = fromMebibytes(row.natural()),
            .compressed = fromMebibytes(row.natural()),
            .swapUsed = fromMebibytes(row.natural()),
            .pressure = row.integer(),
            .thermal = row.integer(),
            .ramRead = row.real(),
            .ramWrite = row.real(),
            .ssdRead = row.real(),
            .ssdWrite = row.real(),
            .swapInRate = row.real(),
            .swapOutRate = row.real(),
            .lagMilliseconds = row.integer(),
            .idleSeconds = row.integer(),
            .state = row.integer(),
            .frontApp = row.text()};
}

std::optional<ResourceEvent> decodeEvent(Columns row) {
    ResourceEvent event{.id = row.integer(), .at = row.date()};
    const auto kind = resourceEventKind(row.text().value_or(""));
    if (!kind)
        return std::nullopt;
    event.kind = *kind;
    event.appID = row.text();
    event.appName = row.text();
    event.detail = row.text().value_or("");
    if (const auto bytes = row.optionalInteger())
        event.bytes = static_cast<std::uint64_t>(std::max(*bytes, std::int64_t{0}));
    return event;
}

std::optional<Date> optionalDate(const std::optional<double>& seconds) {
    return seconds ? std::optional(Date(*seconds)) : std::nullopt;
}

LogContents decodeContents(Columns row) {
    return {.minutes = row.integer(),
            .appMinutes = row.integer(),
            .seconds = row.integer(),
            .events = row.integer(),
            .apps = row.integer(),
            .setups = row.integer(),
            .firstMinute = optionalDate(row.optionalReal()),
            .lastMinute = optionalDate(row.optionalReal()),
            .firstSecond = optionalDate(row.optionalReal())};
}

const char* column(ResourceStore::SecondMeasure measure) {
    switch (measure) {
    case ResourceStore::SecondMeasure::lag: return "s.lag_ms";
    case ResourceStore::SecondMeasure::disk: return "s.ssd_r + s.ssd_w";
    case ResourceStore::SecondMeasure::memory: return "s.ram_r + s.ram_w";
    case ResourceStore::SecondMeasure::cpu: return "s.cpu";
    }
    return "s.ts";
}

} // namespace

// Opening.

ResourceStore::ResourceStore(const fs::path& file, Queue& queue, const Clock& clock, DatabaseAccess access)
    : file_(file), queue_(queue), clock_(clock) {
    std::exception_ptr failure;
    queue_.sync([&] {
        try {
            connection_ = openDatabaseFile(file_, access);
            if (access == DatabaseAccess::readWrite)
                migrate();
            else // opening alone looks at nothing; a file that is no log would read as an empty one
                executeOrThrow(connection_.get(), "SELECT frozen_mb FROM system_minutes LIMIT 0");
            hasHours_ = !tableColumns(connection_.get(), "system_hours").empty();
        } catch (const DatabaseError&) {
            connection_.reset();
            failure = std::current_exception();
        }
    });
    if (failure)
        std::rethrow_exception(failure);
}

std::unique_ptr<ResourceStore> ResourceStore::openOrLog(const fs::path& file, Queue& queue, const Clock& clock,
                                                        DatabaseAccess access) {
    try {
        return std::make_unique<ResourceStore>(file, queue, clock, access);
    } catch (const DatabaseError& error) {
        logLine(std::string("Kestrio: resource log unavailable: ") + error.what());
        return nullptr;
    }
}

ResourceStore::~ResourceStore() {
    queue_.sync([this] { connection_.reset(); });
}

void ResourceStore::migrate() {
    // How pages are given back takes effect on a file that has no table yet, so it comes first.
    for (const char* sql : {"PRAGMA auto_vacuum = INCREMENTAL", "PRAGMA journal_mode = WAL",
                            "PRAGMA synchronous = NORMAL", resourceTables::schema})
        executeOrThrow(connection_.get(), sql);
    addColumns("system_minutes", resourceTables::systemMinuteColumns);
    addColumns("app_minutes", resourceTables::appMinuteColumns);
    backFillConfigs();
    sumUpHours();
}

void ResourceStore::addColumns(const std::string& table,
                               std::span<const std::pair<const char*, const char*>> definitions) {
    const auto present = tableColumns(connection_.get(), table);
    for (const auto& [name, definition] : definitions)
        if (!present.contains(name))
            execute(("ALTER TABLE " + table + " ADD COLUMN " + name + " " + definition).c_str());
}

/// Minutes from before setups were stored get the one that the events tell of, as far as they do.
void ResourceStore::backFillConfigs() {
    auto version = prepare("PRAGMA user_version");
    if (version.step() == Step::row && version.integer(0) >= backFilledVersion)
        return;
    version.reset();

    const auto spans = recordedOptimizerSpans();
    sqlite::Transaction transaction(connection_.get());
    const auto offSetup = tindra::OptimizerConfig::off();
    const auto off = configID(offSetup.key(), offSetup.label());
    const auto on =
        configID(std::string(tindra::OptimizerConfig::unrecordedOn), "Optimization on (setup not recorded)");
    auto markOff = prepare("UPDATE system_minutes SET config = ? WHERE config IS NULL");
    markOff.bindAll(off);
    run(markOff);
    for (const auto& span : spans) {
        auto markOn = prepare("UPDATE system_minutes SET config = ? WHERE minute >= ? AND minute < ?");
        // The minute in which it was switched on counts as on.
        markOn.bindAll(on, span.start - Seconds(minuteLength), span.end);
        run(markOn);
    }
    execute("PRAGMA user_version = 2");
    if (!transaction.commit())
        logSQLError(sqlite::errorMessage(connection_.get()));
}

std::vector<DateInterval> ResourceStore::recordedOptimizerSpans() {
    std::vector<DateInterval> spans;
    std::optional<Date> openSince;
    auto switches = prepare("SELECT at, kind FROM events WHERE kind IN ('optimizerOn', 'optimizerOff') ORDER BY at");
    while (switches.step() == Step::row) {
        const auto at = switches.date(0);
        const bool on = switches.text(1) == storedText(ResourceEventKind::optimizerOn);
        if (on && !openSince) {
            openSince = at;
        } else if (!on && openSince) {
            spans.push_back({*openSince, at});
            openSince.reset();
        }
    }
    if (openSince)
        spans.push_back({*openSince, clock_.now()});
    return spans;
}

// Statements.

Statement ResourceStore::prepare(std::string_view sql) {
    Statement statement(connection_.get(), sql);
    if (!statement.isValid())
        logSQLError(sqlite::errorMessage(connection_.get()));
    return statement;
}

/// Runs a statement that gives no rows.
void ResourceStore::run(Statement& statement) {
    if (statement.isValid() && statement.step() == Step::failed)
        logSQLError(sqlite::errorMessage(connection_.get()));
}

void ResourceStore::execute(const char* sql) {
    if (const auto error = sqlite::execute(connection_.get(), sql))
        logSQLError(*error);
}

template <class Record, class Decode>
std::vector<Record> ResourceStore::collect(Statement& statement, Decode decode) {
    std::vector<Record> records;
    Step step = statement.step();
    for (; step == Step::row; step = statement.step())
        records.push_back(decode(Columns(statement)));
    if (step == Step::failed && statement.isValid())
        logSQLError(sqlite::errorMessage(connection_.get()));
    return records;
}

// Interning.

std::optional<std::int64_t> ResourceStore::appID(const std::string& key, const std::optional<std::string>& name) {
    if (const auto known = appIDs_.find(key); known != appIDs_.end()) {
        if (!name || *name == appNames_[key])
            return known->second;
        auto rename = prepare("UPDATE apps SET name = ? WHERE id = ?");
        rename.bindAll(std::string_view(*name), known->second);
        run(rename);
        appNames_[key] = *name;
        return known->second;
    }
    // An application that is known by its key alone has it for a name until a better one comes.
    auto intern = prepare(name ? "INSERT INTO apps (key, name) VALUES (?1, ?2)\n"
                                 "ON CONFLICT(key) DO UPDATE SET name = excluded.name RETURNING id, name"
                               : "INSERT INTO apps (key, name) VALUES (?1, ?1)\n"
                                 "ON CONFLICT(key) DO UPDATE SET key = key RETURNING id, name");
    intern.bind(1, std::string_view(key));
    if (name)
        intern.bind(2, std::string_view(*name));
    if (intern.step() != Step::row) {
        if (intern.isValid())
            logSQLError(sqlite::errorMessage(connection_.get()));
        return std::nullopt;
    }
    const auto id = intern.integer(0);
    appIDs_[key] = id;
    appNames_[key] = intern.text(1).value_or(key);
    return id;
}

std::optional<std::int64_t> ResourceStore::appID(const std::optional<std::string>& key) {
    return key ? appID(*key, std::nullopt) : std::nullopt;
}

std::optional<std::int64_t> ResourceStore::configID(const std::string& key, const std::string& label) {
    if (const auto known = configIDs_.find(key); known != configIDs_.end())
        return known->second;
    auto intern = prepare("INSERT INTO configs (key, label, first_seen) VALUES (?1, ?2, ?3)\n"
                          "ON CONFLICT(key) DO UPDATE SET label = excluded.label RETURNING id");
    intern.bindAll(std::string_view(key), std::string_view(label), clock_.now());
    if (intern.step() != Step::row)
        return std::nullopt;
    return configIDs_[key] = intern.integer(0);
}

void ResourceStore::forgetIdentifiers() {
    appIDs_.clear();
    appNames_.clear();
    configIDs_.clear();
}

// Writing. A row that is refused does not undo the others of its transaction.

void ResourceStore::write(SystemMinute minute, std::vector<AppMinute> apps) {
    queue_.async([this, minute = std::move(minute), apps = std::move(apps)] {
        sqlite::Transaction transaction(connection_.get());
        if (!transaction.isOpen())
            return logSQLError(sqlite::errorMessage(connection_.get()));
        writeMinute(minute);
        writeApps(apps);
        sumUpHourBefore(minute.minute);
        if (!transaction.commit())
            logSQLError(sqlite::errorMessage(connection_.get()));
    });
}

void ResourceStore::writeMinute(const SystemMinute& minute) {
    const auto front = appID(minute.frontApp);
    const auto config = minute.config ? configID(minute.config->key(), minute.config->label()) : std::nullopt;
    auto insert = prepare("INSERT OR REPLACE INTO system_minutes (minute, cpu, cpu_peak, cpu_p, cpu_e, mem_used,\n"
                          "mem_total, compressed, swap_used, swap_in, swap_out, pressure, thermal, lag_ms, front,\n"
                          "ram_r, ram_w, ram_peak, ssd_r, ssd_w, ssd_peak, ssd_wait_us, active_s, idle_s, away_s,\n"
                          "paused_s, switches, apps_open, procs, battery, on_ac, low_power, temp, config, frozen_avg,\n"
                          "eff_avg, frozen_mb) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?,\n"
                          "?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    insert.bindAll(wholeSeconds(minute.minute), minute.cpu, minute.cpuPeak, minute.cpuPerformance, minute.cpuEfficiency,
                   stored(minute.memoryUsed), stored(minute.memoryTotal), stored(minute.compressed),
                   stored(minute.swapUsed), stored(minute.swapIn), stored(minute.swapOut), minute.pressure,
                   minute.thermal, minute.lagMilliseconds, front, truncated(minute.ramRead), truncated(minute.ramWrite),
                   truncated(minute.ramPeak), truncated(minute.ssdRead), truncated(minute.ssdWrite),
                   truncated(minute.ssdPeak), minute.ssdWaitMicroseconds, minute.activeSeconds, minute.idleSeconds,
                   minute.awaySeconds, minute.pausedSeconds, minute.switches, minute.appsOpen, minute.processes,
                   minute.battery, flag(minute.onAC), std::int64_t{minute.lowPower}, minute.temperature, config,
                   minute.frozenApps, minute.efficientApps, mebibytes(minute.frozenMemory));
    run(insert);
}

void ResourceStore::writeApps(const std::vector<AppMinute>& apps) {
    auto insert = prepare("INSERT OR REPLACE INTO app_minutes (minute, app, cpu, cpu_peak, pcore, memory, mem_peak,\n"
                          "resident, pageins, front, state, processes, disk_r, disk_w, energy_mj, wakeups)\n"
                          "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    for (const auto& app : apps) {
        insert.reset();
        insert.bindAll(wholeSeconds(app.minute), appID(app.appID, app.name), app.cpu, app.cpuPeak, app.pcoreShare,
                       stored(app.memory), stored(app.memoryPeak), stored(app.resident), stored(app.pageins),
                       app.frontSeconds, app.state, app.processes, stored(app.diskRead), stored(app.diskWritten),
                       stored(app.energyMillijoules), stored(app.wakeups));
        run(insert);
    }
}

void ResourceStore::write(std::vector<SystemSecond> seconds) {
    if (seconds.empty())
        return;
    queue_.async([this, seconds = std::move(seconds)] {
        sqlite::Transaction transaction(connection_.get());
        if (!transaction.isOpen())
            return logSQLError(sqlite::errorMessage(connection_.get()));
        writeSeconds(seconds);
        if (!transaction.commit())
            logSQLError(sqlite::errorMessage(connection_.get()));
    });
}

void ResourceStore::writeSeconds(const std::vector<SystemSecond>& seconds) {
    auto insert = prepare("INSERT OR REPLACE INTO system_seconds (ts, cpu, cpu_p, cpu_e, mem_mb, comp_mb, swap_mb,\n"
                          "pressure, thermal, ram_r, ram_w, ssd_r, ssd_w, swap_in, swap_out, lag_ms, idle_s, state,\n"
                          "front) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    for (const auto& second : seconds) {
        insert.reset();
        insert.bindAll(wholeSeconds(second.at), permille(second.cpu), permille(second.cpuPerformance),
                       permille(second.cpuEfficiency), mebibytes(second.memoryUsed), mebibytes(second.compressed),
                       mebibytes(second.swapUsed), second.pressure, second.thermal, truncated(second.ramRead),
                       truncated(second.ramWrite), truncated(second.ssdRead), truncated(second.ssdWrite),
                       truncated(second.swapInRate), truncated(second.swapOutRate),
                       clampedTo32Bits(second.lagMilliseconds), clampedTo32Bits(second.idleSeconds), second.state,
                       appID(second.frontApp));
        run(insert);
    }
}

void ResourceStore::add(ResourceEventKind kind, std::optional<AppReference> app, std::string detail,
                        std::optional<std::uint64_t> bytes, Date at) {
    queue_.async([this, kind, app = std::move(app), detail = std::move(detail), bytes, at] {
        const auto id = app ? appID(app->key, app->name) : std::nullopt;
        auto insert = prepare("INSERT INTO events (at, kind, app, detail, bytes) VALUES (?, ?, ?, ?, ?)");
        insert.bindAll(at, storedText(kind), id, std::string_view(detail),
                       bytes ? std::optional(stored(*bytes)) : std::nullopt);
        run(insert);
    });
}

void ResourceStore::prune(Date before, std::optional<Date> seconds) {
    queue_.async([this, before, seconds] {
        const auto removeFrom = [this](const char* sql, Date bound) {
            auto statement = prepare(sql);
            statement.bind(1, bound);
            run(statement);
        };
        removeFrom("DELETE FROM system_minutes WHERE minute < ?", before);
        removeFrom("DELETE FROM app_minutes WHERE minute < ?", before);
        removeFrom("DELETE FROM events WHERE at < ?", before);
        if (seconds)
            removeFrom("DELETE FROM system_seconds WHERE ts < ?", *seconds);
        execute("DELETE FROM apps WHERE id NOT IN (SELECT app FROM app_minutes)\n"
                "AND id NOT IN (SELECT front FROM system_minutes WHERE front IS NOT NULL)\n"
                "AND id NOT IN (SELECT front FROM system_seconds WHERE front IS NOT NULL)\n"
                "AND id NOT IN (SELECT app FROM events WHERE app IS NOT NULL)");
        execute("DELETE FROM configs WHERE id NOT IN (SELECT config FROM system_minutes WHERE config IS NOT NULL)");
        forgetIdentifiers(); // their rows may just have gone
        execute("PRAGMA incremental_vacuum");
    });
}

void ResourceStore::deleteAll() {
    queue_.async([this] {
        execute("DELETE FROM system_minutes; DELETE FROM system_hours; DELETE FROM system_seconds; DELETE FROM "
                "app_minutes; DELETE FROM events;"
                " DELETE FROM apps; DELETE FROM configs;");
        forgetIdentifiers();
        execute("VACUUM");
    });
}

// Reading.

std::vector<SystemMinute> ResourceStore::systemMinutes(DateInterval range) {
    return queue_.sync([&] {
        auto select = prepare(
            "SELECT s.minute, s.cpu, s.cpu_peak, s.cpu_p, s.cpu_e, s.mem_used, s.mem_total, s.compressed, "
            "s.swap_used,\n"
            "s.swap_in, s.swap_out, s.pressure, s.thermal, s.lag_ms, a.key, s.ram_r, s.ram_w, s.ram_peak, s.ssd_r,\n"
            "s.ssd_w, s.ssd_peak, s.ssd_wait_us, s.active_s, s.idle_s, s.away_s, s.paused_s, s.switches, s.apps_open,\n"
            "s.procs, s.battery, s.on_ac, s.low_power, s.temp, c.label, s.frozen_avg, s.eff_avg, s.frozen_mb\n"
            "FROM system_minutes s LEFT JOIN apps a ON a.id = s.front LEFT JOIN configs c ON c.id = s.config\n"
            "WHERE s.minute >= ? AND s.minute < ? ORDER BY s.minute");
        select.bindAll(range.start, range.end);
        return collect<SystemMinute>(select, decodeSystemMinute);
    });
}

std::vector<AppMinute> ResourceStore::appMinutes(DateInterval range) {
    return queue_.sync([&] {
        auto select = prepare(
            "SELECT m.minute, a.key, a.name, m.cpu, m.cpu_peak, m.pcore, m.memory, m.mem_peak, m.resident, m.pageins,\n"
            "m.front, m.state, m.processes, m.disk_r, m.disk_w, m.energy_mj, m.wakeups\n"
            "FROM app_minutes m JOIN apps a ON a.id = m.app\n"
            "WHERE m.minute >= ? AND m.minute < ? ORDER BY m.minute, m.memory DESC");
        select.bindAll(range.start, range.end);
        return collect<AppMinute>(select, decodeAppMinute);
    });
}

std::vector<AppResourceSummary> ResourceStore::appSummaries(DateInterval range) {
    return queue_.sync([&] {
        auto select =
            prepare("SELECT a.key, a.name, COUNT(*), AVG(m.cpu), MAX(m.cpu_peak), AVG(m.memory), MAX(m.mem_peak),\n"
                    "AVG(MAX(m.memory - m.resident, 0)), SUM(m.pageins), SUM(m.front), SUM(m.state = 2),\n"
                    "SUM(m.state = 1), AVG(m.pcore), SUM(m.disk_r), SUM(m.disk_w), SUM(m.energy_mj), SUM(m.wakeups)\n"
                    "FROM app_minutes m JOIN apps a ON a.id = m.app\n"
                    "WHERE m.minute >= ? AND m.minute < ? GROUP BY m.app ORDER BY AVG(m.memory) DESC");
        select.bindAll(range.start, range.end);
        return collect<AppResourceSummary>(select, decodeSummary);
    });
}

std::vector<ResourceEvent> ResourceStore::events(DateInterval range, std::int64_t limit) {
    return queue_.sync([&] {
        auto select = prepare("SELECT e.id, e.at, e.kind, a.key, a.name, e.detail, e.bytes\n"
                              "FROM events e LEFT JOIN apps a ON a.id = e.app\n"
                              "WHERE e.at >= ? AND e.at < ? ORDER BY e.at DESC LIMIT ?");
        select.bindAll(range.start, range.end, limit);
        std::vector<ResourceEvent> known;
        for (auto& event : collect<std::optional<ResourceEvent>>(select, decodeEvent))
            if (event)
                known.push_back(std::move(*event));
        return known;
    });
}

std::vector<HourProfile> ResourceStore::hourProfiles(DateInterval range) {
    return queue_.sync([&] {
        auto select = prepare("SELECT CAST(strftime('%H', minute, 'unixepoch', 'localtime') AS INTEGER) AS h,\n"
                              "SUM(active_s), SUM(idle_s), SUM(away_s), SUM(switches), AVG(mem_used), SUM(swap_in),\n"
                              "SUM(pressure >= 2), AVG(cpu), COUNT(*), MAX(lag_ms) FROM system_minutes\n"
                              "WHERE minute >= ? AND minute < ? GROUP BY h ORDER BY h");
        select.bindAll(range.start, range.end);
        return collect<HourProfile>(select, decodeHour);
    });
}

std::vector<ConfigGroup> ResourceStore::configGroups(DateInterval range) {
    // Only minutes in which somebody worked for half of the time tell how the machine felt. Those from before behaviour
    // was logged are let in, and counted as uncertain.
    return queue_.sync([&] {
        auto select = prepare(
            "SELECT c.id, c.key, c.label, MIN(m.minute), COUNT(*), SUM(m.pressure >= 2), SUM(m.pressure >= 4),\n"
            "SUM(m.swap_in), SUM(m.lag_ms >= 500 OR m.pressure >= 4 OR m.swap_in >= 268435456),\n"
            "SUM(m.lag_ms >= 500), AVG(m.cpu), AVG(m.mem_used), AVG(m.swap_used), AVG(m.frozen_avg), AVG(m.eff_avg),\n"
            "AVG(m.frozen_mb), SUM(m.active_s + m.idle_s + m.away_s + m.paused_s = 0)\n"
            "FROM system_minutes m JOIN configs c ON c.id = m.config\n"
            "WHERE m.minute >= ? AND m.minute < ?\n"
            "AND (m.active_s >= 30 OR m.active_s + m.idle_s + m.away_s + m.paused_s = 0)\n"
            "GROUP BY c.id ORDER BY c.key = 'off' DESC, MIN(m.minute)");
        select.bindAll(range.start, range.end);
        return collect<ConfigGroup>(select, decodeConfigGroup);
    });
}

std::vector<SystemSecond> ResourceStore::seconds(DateInterval range, std::optional<Date> after, std::int64_t limit) {
    return queue_.sync([&] {
        auto select =
            prepare(secondColumns + std::string("WHERE s.ts >= ? AND s.ts < ? AND s.ts > ? ORDER BY s.ts LIMIT ?"));
        select.bindAll(range.start, range.end, after.value_or(Date(-1)), limit);
        return collect<SystemSecond>(select, decodeSecond);
    });
}

std::vector<SystemSecond> ResourceStore::worstSeconds(DateInterval range, SecondMeasure by, std::int64_t limit) {
    return queue_.sync([&] {
        auto select = prepare(secondColumns + std::string("WHERE s.ts >= ? AND s.ts < ? ORDER BY ") + column(by) +
                              " DESC LIMIT ?");
        select.bindAll(range.start, range.end, limit);
        return collect<SystemSecond>(select, decodeSecond);
    });
}

std::int64_t ResourceStore::secondsCount(DateInterval range) {
    return queue_.sync([&] {
        auto select = prepare("SELECT COUNT(*) FROM system_seconds WHERE ts >= ? AND ts < ?");
        select.bindAll(range.start, range.end);
        return select.step() == Step::row ? select.integer(0) : std::int64_t{0};
    });
}

std::vector<AppMemoryPoint> ResourceStore::appMemorySeries(DateInterval range, std::int64_t bucket,
                                                           std::span<const std::string> keys) {
    return queue_.sync([&] {
        std::string marks;
        for (std::size_t i = 0; i < keys.size(); ++i)
            marks += i == 0 ? "?" : ", ?";
        auto select = prepare("SELECT (m.minute / ?1) * ?1 AS b, a.key, a.name, AVG(m.memory)\n"
                              "FROM app_minutes m JOIN apps a ON a.id = m.app\n"
                              "WHERE m.minute >= ?2 AND m.minute < ?3 AND a.key IN (" +
                              marks + ")\nGROUP BY b, m.app ORDER BY b");
        select.bindAll(std::max(bucket, minuteLength), range.start, range.end);
        int parameter = 4;
        for (const auto& key : keys)
            select.bind(parameter++, std::string_view(key));
        return collect<AppMemoryPoint>(select, [](Columns row) {
            return AppMemoryPoint{.start = row.date(),
                                  .appID = row.text().value_or(""),
                                  .name = row.text().value_or(""),
                                  .memory = averageCount(row.real())};
        });
    });
}

std::optional<Date> ResourceStore::earliestMinute() {
    return queue_.sync([&]() -> std::optional<Date> {
        auto select = prepare("SELECT MIN(minute) FROM system_minutes");
        if (select.step() != Step::row || select.isNull(0))
            return std::nullopt;
        return select.date(0);
    });
}

LogContents ResourceStore::contents() {
    return queue_.sync([&] {
        auto select = prepare("SELECT (SELECT COUNT(*) FROM system_minutes), (SELECT COUNT(*) FROM app_minutes),\n"
                              "(SELECT COUNT(*) FROM system_seconds), (SELECT COUNT(*) FROM events),\n"
                              "(SELECT COUNT(*) FROM apps), (SELECT COUNT(*) FROM configs),\n"
                              "(SELECT MIN(minute) FROM system_minutes), (SELECT MAX(minute) FROM system_minutes),\n"
                              "(SELECT MIN(ts) FROM system_seconds)");
        const auto found = collect<LogContents>(select, decodeContents);
        return found.empty() ? LogContents() : found.front();
    });
}

bool ResourceStore::copyDatabase(const fs::path& destination) {
    return queue_.sync([&] {
        std::error_code error;
        fs::remove(destination, error);
        if (makePrivateFile(destination)) // SQLite fills an empty file, and leaves its mode
            return false;
        auto copy = prepare("VACUUM INTO ?");
        copy.bind(1, std::string_view(destination.native()));
        if (copy.step() != Step::failed)
            return true;
        logSQLError(sqlite::errorMessage(connection_.get()));
        fs::remove(destination, error);
        return false;
    });
}

std::int64_t ResourceStore::fileSize() const {
    return databaseFileSize(file_);
}

} // namespace kestrio
