// What the minutes of a log come to by SQL's own grouping, which the store's series must equal.
#pragma once

#include "Kestrio/Base/Sqlite.h"
#include "Kestrio/Resources/ResourceRecords.h"

#include <gtest/gtest.h>
#include <vector>

namespace kestrio {

inline std::vector<SystemBucket> plainSeries(sqlite3* log, DateInterval range, std::int64_t bucket) {
    sqlite::Statement select(
        log, "SELECT (minute / ?1) * ?1 AS b, AVG(cpu), MAX(cpu_peak), AVG(cpu_p), AVG(cpu_e), AVG(mem_used),\n"
             "MAX(swap_used), SUM(swap_in), SUM(swap_out), MAX(pressure), SUM(pressure >= 2), MAX(lag_ms), COUNT(*),\n"
             "AVG(ram_r), AVG(ram_w), MAX(ram_peak), AVG(ssd_r), AVG(ssd_w), MAX(ssd_peak), SUM(active_s),\n"
             "SUM(idle_s), SUM(away_s), SUM(switches) FROM system_minutes WHERE minute >= ?2 AND minute < ?3\n"
             "GROUP BY b ORDER BY b");
    select.bindAll(std::max(bucket, std::int64_t{60}), range.start, range.end);
    std::vector<SystemBucket> series;
    while (select.step() == sqlite::Step::row) {
        sqlite::Columns row(select);
        series.push_back({.start = row.date(),
                          .cpu = row.real(),
                          .cpuPeak = row.real(),
                          .cpuPerformance = row.real(),
                          .cpuEfficiency = row.real(),
                          .memoryUsed = static_cast<std::uint64_t>(row.real()),
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
                          .switches = row.integer()});
    }
    return series;
}

/// Sums of fractions differ in their last digit by the order in which they are added; nothing else may.
inline void expectSame(const std::vector<SystemBucket>& found, const std::vector<SystemBucket>& plain) {
    ASSERT_EQ(found.size(), plain.size());
    for (std::size_t i = 0; i < plain.size(); ++i) {
        auto rounded = found[i];
        for (auto member :
             {&SystemBucket::cpu, &SystemBucket::cpuPerformance, &SystemBucket::cpuEfficiency, &SystemBucket::ramRead,
              &SystemBucket::ramWrite, &SystemBucket::ssdRead, &SystemBucket::ssdWrite}) {
            ASSERT_NEAR(rounded.*member, plain[i].*member, 1e-12 * std::max(1.0, plain[i].*member)) << i;
            rounded.*member = plain[i].*member;
        }
        ASSERT_EQ(rounded, plain[i]) << "period " << i << " at " << plain[i].start.seconds();
    }
}

} // namespace kestrio
