// The charts of `ResourceStore`. Beside the minutes the log keeps the sums of whole hours, so that a year's chart need
// not go through half a million rows. They are an aid alone: an hour without them is read by its minutes, and a change
// of one of its minutes does away with them.
#include "Kestrio/Base/SqliteFold.h"
#include "Kestrio/Resources/PeriodSeries.h"
#include "Kestrio/Resources/ResourceStore.h"
#include "Kestrio/Resources/StoredValues.h"

namespace kestrio {
namespace {

using namespace storedValues;
using sqlite::Columns;
using sqlite::RowFold;
using sqlite::RowValues;
using sqlite::Step;

constexpr std::int64_t minuteLength = 60;
constexpr std::int64_t hourLength = 3600;

constexpr auto foldMinutes =
    "SELECT fold(minute, cpu, cpu_peak, cpu_p, cpu_e, mem_used, swap_used, swap_in, swap_out,\n"
    "pressure, lag_ms, ram_r, ram_w, ram_peak, ssd_r, ssd_w, ssd_peak, active_s, idle_s,\n"
    "away_s, switches) FROM system_minutes WHERE minute >= ? AND minute < ?";

std::int64_t hourOf(Date minute) {
    return wholeSeconds(minute) / hourLength * hourLength;
}

SystemBucket decodeHour(Columns row) {
    return {.start = row.date(),
            .cpu = row.real(),
            .cpuPeak = row.real(),
            .cpuPerformance = row.real(),
            .cpuEfficiency = row.real(),
            .memoryUsed = row.natural(),
            .swapUsed = row.natural(),
            .swapIn = row.natural(),
            .swapOut = row.natural(),
            .pressure = row.integer(),
            .pressureMinutes = row.integer(),
            .lagMilliseconds = row.integer(),
            .minutes = row.integer(),
            .ramRead = row.real(),
            .ramWrite = row.real(),
            .ramPeak = row.real(),
            .ssdRead = row.real(),
            .ssdWrite = row.real(),
            .ssdPeak = row.real(),
            .activeSeconds = row.integer(),
            .idleSeconds = row.integer(),
            .awaySeconds = row.integer(),
            .switches = row.integer()};
}

} // namespace

// Keeping the sums.

void ResourceStore::sumUpHours() {
    const auto now = hourOf(clock_.now());
    auto latest = prepare("SELECT MAX(hour) FROM system_hours WHERE hour <= ?");
    latest.bindAll(now);
    const bool isAny = latest.step() == Step::row && !latest.isNull(0);
    sqlite::Transaction transaction(connection_.get());
    sumUpHours(isAny ? latest.integer(0) + hourLength : 0, now);
    transaction.commit(); // what fails is tried again at the next start
}

void ResourceStore::sumUpHours(std::int64_t from, std::int64_t to) {
    PeriodSeries<SystemBucket> hours(hourLength);
    const RowFold fold(connection_.get(), [&](RowValues row) { hours.receive(row); });
    auto minutes = prepare(foldMinutes);
    minutes.bindAll(from, to);
    run(minutes);
    auto insert = prepare("INSERT OR REPLACE INTO system_hours (hour, cpu, cpu_peak, cpu_p, cpu_e, mem_used,\n"
                          "swap_used, swap_in, swap_out, pressure, pressure_min, lag_ms, minutes, ram_r, ram_w,\n"
                          "ram_peak, ssd_r, ssd_w, ssd_peak, active_s, idle_s, away_s, switches)\n"
                          "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    for (const auto& hour : hours.sums()) {
        insert.reset();
        insert.bindAll(wholeSeconds(hour.start), hour.cpu, hour.cpuPeak, hour.cpuPerformance, hour.cpuEfficiency,
                       stored(hour.memoryUsed), stored(hour.swapUsed), stored(hour.swapIn), stored(hour.swapOut),
                       hour.pressure, hour.pressureMinutes, hour.lagMilliseconds, hour.minutes, hour.ramRead,
                       hour.ramWrite, hour.ramPeak, hour.ssdRead, hour.ssdWrite, hour.ssdPeak, hour.activeSeconds,
                       hour.idleSeconds, hour.awaySeconds, hour.switches);
        run(insert);
    }
}

void ResourceStore::sumUpHourBefore(Date minute) {
    const auto hour = hourOf(minute);
    if (openHour_ && *openHour_ != hour)
        sumUpHours(*openHour_, *openHour_ + hourLength);
    openHour_ = hour;
}

// The charts.

/// The sums of the hours that lie wholly in the range, each within one period.
std::vector<SystemBucket> ResourceStore::wholeHours(DateInterval range, std::int64_t period) {
    std::vector<SystemBucket> hours;
    if (!hasHours_ || period < 2 * hourLength)
        return hours;
    auto select =
        prepare("SELECT hour, cpu, cpu_peak, cpu_p, cpu_e, mem_used, swap_used, swap_in, swap_out, pressure,\n"
                "pressure_min, lag_ms, minutes, ram_r, ram_w, ram_peak, ssd_r, ssd_w, ssd_peak, active_s,\n"
                "idle_s, away_s, switches FROM system_hours\n"
                "WHERE hour >= ?1 AND hour <= ?2 - 3600 AND hour / ?3 = (hour + 3599) / ?3 ORDER BY hour");
    select.bindAll(range.start, range.end, period);
    while (select.step() == Step::row)
        hours.push_back(decodeHour(Columns(select)));
    return hours;
}

std::vector<SystemBucket> ResourceStore::systemSeries(DateInterval range, std::int64_t bucket) {
    return queue_.sync([&] {
        const auto period = std::max(bucket, minuteLength);
        PeriodSeries<SystemBucket> made(period);
        const RowFold fold(connection_.get(), [&](RowValues row) { made.receive(row); });
        auto minutes = prepare(foldMinutes);
        const auto addMinutes = [&](Date from, Date to) {
            if (from >= to)
                return;
            minutes.reset();
            minutes.bindAll(from, to);
            run(minutes);
        };
        auto from = range.start;
        for (const auto& hour : wholeHours(range, period)) {
            addMinutes(from, hour.start);
            made.receive(wholeSeconds(hour.start), hour, hour.minutes);
            from = hour.start + Seconds(hourLength);
        }
        addMinutes(from, range.end);
        return made.averages();
    });
}

std::vector<SecondBucket> ResourceStore::secondsSeries(DateInterval range, std::int64_t bucket) {
    return queue_.sync([&] {
        PeriodSeries<SecondBucket> made(std::max(bucket, std::int64_t{1}));
        const RowFold fold(connection_.get(), [&](RowValues row) { made.receive(row); });
        auto seconds = prepare("SELECT fold(ts, cpu, ram_r, ram_w, ssd_r, ssd_w, swap_mb, pressure, lag_ms)\n"
                               "FROM system_seconds WHERE ts >= ? AND ts < ?");
        seconds.bindAll(range.start, range.end);
        run(seconds);
        return made.averages();
    });
}

} // namespace kestrio
