// The recorded sessions, for commands that look at them and change nothing.
#pragma once

#include "Kestrio/Activity/Database.h"
#include "Kestrio/Base/LoopQueue.h"
#include "Programs/CommandLine/ExitStatus.h"
#include "Programs/CommandLine/Places.h"
#include "Programs/CommandLine/Terminal.h"

#include <optional>

namespace kestrio {

class StoredSessions {
public:
    /// Throws `DatabaseError`.
    explicit StoredSessions(const Locations& places) {
        const auto file = dataFolder(places) / Database::fileName;
        std::error_code ignored;
        if (std::filesystem::exists(file, ignored))
            database_.emplace(file, queue_, Database::Access::readOnly);
    }

    /// Null when nothing was ever recorded.
    Database* database() { return database_ ? &*database_ : nullptr; }

private:
    WorkerQueue queue_{"Kestrio.database"};
    std::optional<Database> database_;
};

/// Runs a command that reads the database; one that cannot be read is a clear line.
template <class Work>
int withStored(const Locations& places, Work work) {
    try {
        StoredSessions stored(places);
        return work(stored.database());
    } catch (const DatabaseError& error) {
        complain((dataFolder(places) / Database::fileName).string() + ": " + error.what());
        return exitStatus::failed;
    }
}

} // namespace kestrio
