#include "Kestrio/Activity/SessionRows.h"

#include "Kestrio/Base/Text.h"

namespace kestrio::sessionRows {
namespace {

/// A session that began this long before a range can still be found reaching into it, without giving up the index.
constexpr Seconds reachBack{43'200};

} // namespace

void bindInsert(sqlite::Statement& statement, const ActivitySession& session) {
    statement.bind(1, session.start);
    statement.bind(2, session.end);
    statement.bind(3, std::string_view(session.bundleID));
    statement.bind(4, std::string_view(session.appName));
    statement.bind(5, std::string_view(session.title));
    statement.bind(6, session.url);
    statement.bind(7, session.domain);
    statement.bind(8, session.project);
    statement.bind(9, rawValue(session.kind));
}

void bindUpdateEnd(sqlite::Statement& statement, std::int64_t id, Date end) {
    statement.bind(1, end);
    statement.bind(2, id);
}

void bindRange(sqlite::Statement& statement, Date from, Date to) {
    statement.bind(1, from - reachBack);
    statement.bind(2, to);
    statement.bind(3, from);
}

ActivitySession decode(const sqlite::Statement& row) {
    ActivitySession session;
    session.id = row.integer(0);
    session.start = row.date(1);
    session.end = row.date(2);
    session.bundleID = row.text(3).value_or("unknown");
    session.appName = text::withoutInvisibleMarks(row.text(4).value_or("Unknown"));
    session.title = text::withoutInvisibleMarks(row.text(5).value_or(""));
    session.url = row.text(6);
    session.domain = row.text(7);
    session.project = row.text(8);
    session.kind = sessionKind(row.integer(9)).value_or(SessionKind::focus);
    return session;
}

} // namespace kestrio::sessionRows
