// The recorded sessions as the windows look at them: those in the database, joined with what is open in the agent's
// memory. The agent makes the database; as long as there is none the history is empty.
//
// Belongs to the loading queue.
#pragma once

#include "Kestrio/Activity/Database.h"
#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Link/AgentLink.h"
#include "Kestrio/Views/Window/ActivityArchive.h"

#include <filesystem>
#include <optional>

namespace kestrio {

class StoredHistory final : public ActivityArchive {
public:
    /// How long a first look waits to hear what is open.
    static constexpr Seconds patience{0.3};

    /// The link must outlive the history.
    StoredHistory(std::filesystem::path file, const AgentLink& agent) : file_(std::move(file)), agent_(agent) {}

    /// Empty on failure. Waits.
    std::vector<ActivitySession> sessions(DateInterval interval) override;

    DataSettings::Stored stored() override;
    std::vector<NamedTotal> appTotals() override { return totals(Database::appTotals); }
    std::vector<NamedTotal> domainTotals() override { return totals(Database::domainTotals); }

private:
    Database* database();
    std::vector<NamedTotal> totals(const char* sql);

    const std::filesystem::path file_;
    const AgentLink& agent_;
    bool hasFailed_ = false;
    WorkerQueue queue_{"Kestrio.database"};
    std::optional<Database> database_;
};

} // namespace kestrio
