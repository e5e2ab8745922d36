#include "Programs/CommandLine/StoredSessions.h"

#include "Kestrio/Activity/LiveRows.h"

#include <fmt/format.h>

namespace kestrio {

StoredSessions::StoredSessions(const Locations& places) {
    const auto file = dataFolder(places) / Database::fileName;
    std::error_code ignored;
    if (std::filesystem::exists(file, ignored))
        database_.emplace(file, queue_, Database::Access::readOnly);
}

std::vector<ActivitySession> sessionsOf(Database* database, const std::optional<AgentStatus>& agent,
                                        DateInterval interval) {
    std::vector<ActivitySession> found;
    if (database)
        found = database->sessions(interval.start, interval.end);
    if (agent)
        joinOpen(found, agent->live, agent->alongside, interval);
    return found;
}

void warnOfUnsaved(const std::optional<AgentStatus>& agent) {
    if (agent && agent->unsaved > 0)
        complain(fmt::format("{} sessions wait in the agent's memory for the disk and are not listed", agent->unsaved));
}

} // namespace kestrio
