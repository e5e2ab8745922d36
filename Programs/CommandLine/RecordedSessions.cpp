#include "Programs/CommandLine/RecordedSessions.h"

#include "Kestrio/Activity/AlongsideSessions.h"
#include "Kestrio/Activity/LiveRows.h"

namespace kestrio {

std::vector<ActivitySession> sessionsOf(Database* database, const std::optional<AgentStatus>& agent,
                                        DateInterval interval) {
    std::vector<ActivitySession> found;
    if (database)
        found = database->sessions(interval.start, interval.end);
    if (!agent)
        return found;
    std::int64_t nextID = -1;
    if (agent->live)
        joinLive(found, *agent->live, interval, nextID);
    for (const auto& session : agent->alongside)
        if (session.lastSeen - session.start >= AlongsideSessions::minimum)
            joinLive(found, session, interval, nextID);
    return found;
}

} // namespace kestrio
