#include "Programs/Window/StoredArchive.h"

namespace kestrio {
namespace {

/// More than anybody looks through.
constexpr std::int32_t mostTotals = 5000;

} // namespace

DataSettings::Stored StoredArchive::stored() {
    DataSettings::Stored stored{.fileName = file_.filename().string()};
    try {
        Database database(file_, queue_, Database::Access::readOnly);
        stored.bytes = static_cast<std::uint64_t>(database.fileSize());
        stored.sessions = database.sessionCount();
        stored.since = database.earliestStart();
    } catch (const DatabaseError& error) {
        stored.trouble = error.trouble();
    }
    return stored;
}

std::vector<NamedTotal> StoredArchive::totals(const char* sql) {
    try {
        Database database(file_, queue_, Database::Access::readOnly);
        return database.totals(sql, mostTotals);
    } catch (const DatabaseError&) {
        return {};
    }
}

} // namespace kestrio
