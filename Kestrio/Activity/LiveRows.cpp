#include "Kestrio/Activity/LiveRows.h"

#include "Kestrio/Activity/AlongsideSessions.h"

#include <algorithm>

namespace kestrio {

void joinLive(std::vector<ActivitySession>& stored, const LiveActivity& live, DateInterval interval,
              std::int64_t& nextID) {
    if (live.lastSeen <= interval.start || live.start >= interval.end)
        return;
    if (!live.rowID) {
        if (live.lastSeen > live.start)
            stored.push_back(activitySession(nextID--, live.sample, live.start, live.lastSeen));
        return;
    }
    const auto row = std::find_if(stored.begin(), stored.end(),
                                  [&](const ActivitySession& session) { return session.id == *live.rowID; });
    if (row != stored.end())
        row->end = std::max(row->end, live.lastSeen);
}

void joinOpen(std::vector<ActivitySession>& stored, const std::optional<LiveActivity>& live,
              const std::vector<LiveActivity>& alongside, DateInterval interval) {
    std::int64_t nextID = -1;
    if (live)
        joinLive(stored, *live, interval, nextID);
    for (const auto& session : alongside)
        if (session.lastSeen - session.start >= AlongsideSessions::minimum)
            joinLive(stored, session, interval, nextID);
}

} // namespace kestrio
