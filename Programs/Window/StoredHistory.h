// The recorded sessions as the windows look at them: those in the database, joined with what is open in the agent's
// memory. The agent makes the database; before it ever did the history is empty. The file is opened anew at each look,
// since it may be gone, replaced or unreadable at one and right again at the next.
//
// Belongs to the loading queue.
#pragma once

#include "Kestrio/Activity/Database.h"
#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Link/AgentLink.h"

#include <filesystem>

namespace kestrio {

class StoredHistory {
public:
    /// How long a first look waits to hear what is open.
    static constexpr Seconds patience{0.3};

    /// The link must outlive the history.
    StoredHistory(std::filesystem::path file, const AgentLink& agent) : file_(std::move(file)), agent_(agent) {}

    /// Waits, while the file is locked for some seconds.
    FoundSessions sessions(DateInterval interval);

private:
    enum class Agent { there, away };
    FoundSessions stored(DateInterval interval, Agent agent);

    const std::filesystem::path file_;
    const AgentLink& agent_;
    bool hasOpened_ = false;
    bool hasFailed_ = false;
    WorkerQueue queue_{"Kestrio.database"};
};

} // namespace kestrio
