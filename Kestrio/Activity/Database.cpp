#include "Kestrio/Activity/Database.h"

#include "Kestrio/Activity/SessionRows.h"
#include "Kestrio/Base/Log.h"

namespace kestrio {
namespace {

namespace fs = std::filesystem;
using sqlite::Statement;
using sqlite::Step;

constexpr auto schema = "CREATE TABLE IF NOT EXISTS sessions (\n"
                        "    id        INTEGER PRIMARY KEY AUTOINCREMENT,\n"
                        "    start     REAL NOT NULL,\n"
                        "    end       REAL NOT NULL,\n"
                        "    bundle_id TEXT NOT NULL,\n"
                        "    app_name  TEXT NOT NULL,\n"
                        "    title     TEXT NOT NULL DEFAULT '',\n"
                        "    url       TEXT,\n"
                        "    domain    TEXT,\n"
                        "    project   TEXT,\n"
                        "    kind      INTEGER NOT NULL DEFAULT 0\n"
                        ");\n"
                        "CREATE INDEX IF NOT EXISTS sessions_start ON sessions(start);";

void logSQLError(const std::string& message) {
    logLine("Kestrio SQL error: " + message);
}

} // namespace

fs::path Database::directory(const fs::path& base) {
    auto target = base / "Kestrio";
    std::error_code error;
    if (fs::exists(fs::symlink_status(target, error)))
        return target;
    for (const char* earlier : {"TindraDesk", "Timeweft"}) {
        if (!fs::exists(base / earlier, error))
            continue;
        fs::rename(base / earlier, target, error);
        if (error)
            logLine("Kestrio: couldn't move the old data folder: " + error.message());
        break;
    }
    return target;
}

Database::Database(const fs::path& file, Queue& queue, Access access) : file_(file), queue_(queue) {
    std::exception_ptr failure;
    queue_.sync([&] {
        try {
            connection_ = openDatabaseFile(file_, access);
            if (access == Access::readWrite)
                migrate();
            else
                check();
        } catch (const DatabaseError&) {
            connection_.reset();
            failure = std::current_exception();
        }
    });
    if (failure)
        std::rethrow_exception(failure);
}

void Database::check() {
    // Opening alone looks at nothing; a file that is no database would read as an empty one.
    executeOrThrow(connection_.get(), "SELECT kind FROM sessions LIMIT 0");
}

void Database::migrate() {
    for (const char* sql : {"PRAGMA journal_mode = WAL", "PRAGMA synchronous = NORMAL", schema})
        executeOrThrow(connection_.get(), sql);
    // A file from before there were kinds: all its rows are focus rows.
    if (!tableColumns(connection_.get(), "sessions").contains("kind"))
        if (const auto error =
                sqlite::execute(connection_.get(), "ALTER TABLE sessions ADD COLUMN kind INTEGER NOT NULL DEFAULT 0"))
            logSQLError(*error);
}

Statement Database::prepare(std::string_view sql) {
    Statement statement(connection_.get(), sql);
    if (!statement.isValid())
        logSQLError(sqlite::errorMessage(connection_.get()));
    return statement;
}

std::optional<std::int64_t> Database::insert(const ActivitySample& sample, Date start, Date end) {
    return queue_.sync([&] { return insertOnQueue(sample, start, end); });
}

std::optional<std::int64_t> Database::insertOnQueue(const ActivitySample& sample, Date start, Date end) {
    auto statement = prepare(sessionRows::insertSQL);
    sessionRows::bindInsert(statement, activitySession(0, sample, start, end));
    if (statement.step() != Step::done)
        return std::nullopt;
    return sqlite3_last_insert_rowid(connection_.get());
}

bool Database::updateEnd(std::int64_t id, Date end) {
    return queue_.sync([&] { return updateEndOnQueue(id, end); });
}

bool Database::updateEndOnQueue(std::int64_t id, Date end) {
    auto statement = prepare(sessionRows::updateEndSQL);
    sessionRows::bindUpdateEnd(statement, id, end);
    return statement.step() == Step::done;
}

std::vector<ActivitySession> Database::sessions(Date from, Date to) {
    auto answer = findSessions(from, to);
    auto* const found = std::get_if<std::vector<ActivitySession>>(&answer);
    return found ? std::move(*found) : std::vector<ActivitySession>();
}

FoundSessions Database::findSessions(Date from, Date to) {
    return queue_.sync([&]() -> FoundSessions {
        auto statement = prepare(sessionRows::rangeSQL);
        sessionRows::bindRange(statement, from, to);
        std::vector<ActivitySession> found;
        for (;;)
            switch (statement.step()) {
            case Step::row: found.push_back(sessionRows::decode(statement)); break;
            case Step::done: return found;
            case Step::failed: return databaseTrouble(connection_.get());
            }
    });
}

std::string Database::lastError() {
    return queue_.sync([&] { return sqlite::errorMessage(connection_.get()); });
}

void Database::deleteSessions(Date before) {
    queue_.sync([&] {
        executeOnQueue("DELETE FROM sessions WHERE end < ?", before);
        shrinkOnQueue();
    });
}

void Database::deleteAll() {
    queue_.sync([&] {
        executeOnQueue("DELETE FROM sessions", std::nullopt);
        shrinkOnQueue();
    });
}

void Database::executeOnQueue(const char* sql, std::optional<Date> parameter) {
    auto statement = prepare(sql);
    if (parameter)
        statement.bind(1, *parameter);
    if (statement.isValid() && statement.step() == Step::failed)
        logSQLError(sqlite::errorMessage(connection_.get()));
}

void Database::shrinkOnQueue() {
    // Neither has to succeed: the rows are gone already. The checkpoint takes the deleted rows out of the sidecar too.
    sqlite::execute(connection_.get(), "VACUUM");
    sqlite::execute(connection_.get(), "PRAGMA wal_checkpoint(TRUNCATE)");
}

Seconds Database::timeInFront(DateInterval interval, std::optional<std::int64_t> withoutRow) {
    return queue_.sync([&] {
        auto statement = prepare(sessionRows::timeInFrontSQL);
        sessionRows::bindRange(statement, interval.start, interval.end);
        statement.bind(4, rawValue(SessionKind::watching));
        statement.bind(5, rawValue(SessionKind::listening));
        statement.bind(6, withoutRow.value_or(-1)); // which no row has
        return Seconds(statement.step() == Step::row ? statement.real(0) : 0);
    });
}

std::int64_t Database::sessionCount() {
    return queue_.sync([&] {
        auto statement = prepare("SELECT COUNT(*) FROM sessions");
        return statement.step() == Step::row ? statement.integer(0) : std::int64_t{0};
    });
}

std::optional<Date> Database::earliestStart() {
    return queue_.sync([&]() -> std::optional<Date> {
        auto statement = prepare("SELECT MIN(start) FROM sessions");
        if (statement.step() != Step::row || statement.isNull(0))
            return std::nullopt;
        return statement.date(0);
    });
}

std::int64_t Database::fileSize() {
    return databaseFileSize(file_);
}

std::vector<NamedTotal> Database::totals(const char* sql, std::int32_t limit) {
    return queue_.sync([&] {
        auto statement = prepare(sql);
        statement.bind(1, std::int64_t{limit});
        std::vector<NamedTotal> found;
        while (statement.step() == Step::row) {
            auto id = statement.text(0);
            if (!id)
                continue;
            auto name = statement.text(1).value_or(*id);
            found.push_back({std::move(*id), std::move(name), Seconds(statement.real(2))});
        }
        return found;
    });
}

} // namespace kestrio
