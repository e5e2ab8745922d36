// The recorded sessions as the commands look at them: those in the database, joined with what is open in the agent.
#pragma once

#include "Kestrio/Activity/Database.h"
#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Link/Background.h"
#include "Programs/CommandLine/ExitStatus.h"
#include "Programs/CommandLine/Places.h"
#include "Programs/CommandLine/Terminal.h"

#include <optional>
#include <vector>

namespace kestrio {

/// The stored sessions, for looking at only.
class StoredSessions {
public:
    explicit StoredSessions(const Locations& places);

    /// Null when nothing was ever recorded.
    Database* database() { return database_ ? &*database_ : nullptr; }

private:
    WorkerQueue queue_{"Kestrio.database"};
    std::optional<Database> database_;
};

/// Runs a command that uses the database; one that cannot be opened is a clear line.
template <class Work>
int withDatabaseErrors(const Locations& places, Work work) {
    try {
        return work();
    } catch (const DatabaseError& error) {
        complain((dataFolder(places) / Database::fileName).string() + ": " + error.what());
        return exitStatus::failed;
    }
}

/// Runs a command that reads the database.
template <class Work>
int withStored(const Locations& places, Work work) {
    return withDatabaseErrors(places, [&] {
        StoredSessions stored(places);
        return work(stored.database());
    });
}

/// The sessions of an interval, with what is open in the agent's memory right now.
std::vector<ActivitySession> sessionsOf(Database* database, const std::optional<AgentStatus>& agent,
                                        DateInterval interval);

/// Says on standard error when the agent holds sessions that the disk has not taken yet.
void warnOfUnsaved(const std::optional<AgentStatus>& agent);

} // namespace kestrio
