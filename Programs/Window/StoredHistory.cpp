#include "Programs/Window/StoredHistory.h"

#include "Kestrio/Activity/LiveRows.h"
#include "Kestrio/Base/Log.h"

#include <utility>

namespace kestrio {
namespace {

/// More than anybody looks through.
constexpr std::int32_t mostTotals = 5000;

} // namespace

std::vector<ActivitySession> StoredHistory::sessions(DateInterval interval) {
    std::vector<ActivitySession> found;
    if (auto* const stored = database())
        found = stored->sessions(interval.start, interval.end);
    if (const auto agent = agent_.known(patience))
        joinOpen(found, agent->live, agent->alongside, interval);
    return found;
}

DataSettings::Stored StoredHistory::stored() {
    DataSettings::Stored stored{.fileName = file_.filename().string()};
    if (auto* const found = database()) {
        stored.bytes = static_cast<std::uint64_t>(found->fileSize());
        stored.sessions = found->sessionCount();
        stored.since = found->earliestStart();
    }
    return stored;
}

std::vector<NamedTotal> StoredHistory::totals(const char* sql) {
    auto* const found = database();
    return found ? found->totals(sql, mostTotals) : std::vector<NamedTotal>();
}

Database* StoredHistory::database() {
    if (database_)
        return &*database_;
    std::error_code ignored;
    if (!std::filesystem::exists(file_, ignored))
        return nullptr;
    try {
        database_.emplace(file_, queue_, Database::Access::readOnly);
        return &*database_;
    } catch (const DatabaseError& error) {
        if (!std::exchange(hasFailed_, true)) // tried again at the next look, and said once
            logLine(std::string("Kestrio: ") + error.what());
        return nullptr;
    }
}

} // namespace kestrio
