// How a session stands in its row: the statements that the store and the import share, and what their parameters and
// columns mean. Statements belong to the store's queue.
#pragma once

#include "Kestrio/Base/Sqlite.h"
#include "Kestrio/Model/Models.h"

namespace kestrio::sessionRows {

inline constexpr auto insertSQL =
    "INSERT INTO sessions (start, end, bundle_id, app_name, title, url, domain, project, kind)\n"
    "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)";
void bindInsert(sqlite::Statement& statement, const ActivitySession& session);

inline constexpr auto updateEndSQL = "UPDATE sessions SET end = ? WHERE id = ?";
void bindUpdateEnd(sqlite::Statement& statement, std::int64_t id, Date end);

inline constexpr auto rangeSQL = "SELECT id, start, end, bundle_id, app_name, title, url, domain, project, kind\n"
                                 "FROM sessions\n"
                                 "WHERE start >= ? AND start < ? AND end > ?\n"
                                 "ORDER BY start";
/// A kind that nobody knows counts as in front, as in `decode`.
inline constexpr auto timeInFrontSQL = "SELECT SUM(MAX(0, MIN(end, ?2) - MAX(start, ?3))) FROM sessions\n"
                                       "WHERE start >= ?1 AND start < ?2 AND end > ?3 AND kind NOT IN (?4, ?5)\n"
                                       "AND id != ?6";
void bindRange(sqlite::Statement& statement, Date from, Date to);
ActivitySession decode(const sqlite::Statement& row);

} // namespace kestrio::sessionRows
