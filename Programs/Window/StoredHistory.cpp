#include "Programs/Window/StoredHistory.h"

#include "Kestrio/Activity/LiveRows.h"
#include "Kestrio/Base/Log.h"

#include <utility>

namespace kestrio {

FoundSessions StoredHistory::sessions(DateInterval interval) {
    const auto agent = agent_.known(patience);
    auto answer = stored(interval, agent ? Agent::there : Agent::away);
    auto* const found = std::get_if<std::vector<ActivitySession>>(&answer);
    if (found && agent)
        joinOpen(*found, agent->live, agent->alongside, interval);
    return answer;
}

FoundSessions StoredHistory::stored(DateInterval interval, Agent agent) {
    try {
        Database database(file_, queue_, Database::Access::readOnly);
        hasOpened_ = true;
        return database.findSessions(interval.start, interval.end);
    } catch (const DatabaseError& error) {
        const bool wasNeverMade = error.trouble() == DatabaseTrouble::missing && !hasOpened_ && agent == Agent::away;
        if (wasNeverMade)
            return std::vector<ActivitySession>();
        if (!std::exchange(hasFailed_, true)) // tried again at the next look, and said once
            logLine(std::string("Kestrio: ") + error.what());
        return error.trouble();
    }
}

} // namespace kestrio
