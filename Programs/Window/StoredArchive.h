// All that is recorded as the settings look at it. The file is opened anew at each look, as the history's is.
//
// Belongs to the loading queue.
#pragma once

#include "Kestrio/Views/Window/ActivityArchive.h"
#include "Programs/Window/StoredHistory.h"

namespace kestrio {

class StoredArchive final : public ActivityArchive {
public:
    /// The history of the same file must outlive the archive.
    StoredArchive(std::filesystem::path file, StoredHistory& history) : file_(std::move(file)), history_(history) {}

    DataSettings::Stored stored() override;
    std::vector<NamedTotal> appTotals() override { return totals(Database::appTotals); }
    std::vector<NamedTotal> domainTotals() override { return totals(Database::domainTotals); }
    FoundSessions sessions(DateInterval interval) override { return history_.sessions(interval); }

private:
    std::vector<NamedTotal> totals(const char* sql);

    const std::filesystem::path file_;
    StoredHistory& history_;
    WorkerQueue queue_{"Kestrio.database"};
};

} // namespace kestrio
