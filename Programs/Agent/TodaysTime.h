// How long the person was active, as the bar shows it: added up in the database, with what the open session has lasted
// beyond its last write. No report is built for it.
#pragma once

#include "Kestrio/Activity/ActivityMonitor.h"
#include "Kestrio/Activity/Database.h"

#include <algorithm>

namespace kestrio {

/// Waits for the database. On the monitor's queue, so that nothing is written meanwhile.
inline Seconds timeInFront(Database& database, const ActivityMonitor& monitor, DateInterval interval) {
    const auto live = monitor.published().live;
    if (!live)
        return database.timeInFront(interval, std::nullopt);
    const auto open = std::min(live->lastSeen, interval.end) - std::max(live->start, interval.start);
    return database.timeInFront(interval, live->rowID) + std::max(open, Seconds(0));
}

} // namespace kestrio
