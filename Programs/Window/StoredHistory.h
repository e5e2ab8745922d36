// The recorded sessions as the windows look at them: those in the database, joined with what is open in the agent's
// memory. The agent makes the database; as long as there is none the history is empty.
//
// Belongs to the loading queue.
#pragma once

#include "Kestrio/Activity/Database.h"
#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Link/AgentLink.h"

#include <filesystem>
#include <optional>

namespace kestrio {

class StoredHistory {
public:
    /// How long a first look waits to hear what is open.
    static constexpr Seconds patience{0.3};

    /// The link must outlive the history.
    StoredHistory(std::filesystem::path file, const AgentLink& agent) : file_(std::move(file)), agent_(agent) {}

    /// Empty on failure. Waits.
    std::vector<ActivitySession> sessions(DateInterval interval);

private:
    Database* database();

    const std::filesystem::path file_;
    const AgentLink& agent_;
    bool hasFailed_ = false;
    WorkerQueue queue_{"Kestrio.database"};
    std::optional<Database> database_;
};

} // namespace kestrio
