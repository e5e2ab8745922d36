// The part of the database that takes in sessions recorded elsewhere.
#include "Kestrio/Activity/Database.h"
#include "Kestrio/Activity/SessionMerge.h"
#include "Kestrio/Activity/SessionRows.h"

#include <algorithm>

namespace kestrio {
namespace {

using sqlite::Statement;
using sqlite::Step;

/// Rows around the incoming ones that could still match.
constexpr Seconds margin{2.0};

constexpr std::size_t rowsPerProgress = 4096;

/// Reading what is stored takes about so much of the whole.
constexpr double shareOfReading = 0.3;

/// Keeps statements from waiting for other connections' locks. Where one wait was in vain, as many as there are rows
/// would hold everybody up for days.
class NoPatience {
public:
    explicit NoPatience(sqlite3* connection) : connection_(connection) {
        Statement asked(connection, "PRAGMA busy_timeout");
        if (asked.step() == Step::row)
            milliseconds_ = static_cast<int>(asked.integer(0));
        sqlite3_busy_timeout(connection, 0);
    }
    ~NoPatience() { sqlite3_busy_timeout(connection_, milliseconds_); }
    NoPatience(const NoPatience&) = delete;
    NoPatience& operator=(const NoPatience&) = delete;

private:
    sqlite3* connection_;
    int milliseconds_ = 0;
};

/// Whether after such a failure every other write would fail too.
bool isLasting(int failure) {
    switch (failure & 0xFF) {
    case SQLITE_FULL:
    case SQLITE_IOERR:
    case SQLITE_NOMEM:
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
    case SQLITE_READONLY:
    case SQLITE_CANTOPEN: return true;
    default: return false;
    }
}

/// One import on the database's queue.
class Import {
public:
    Import(sqlite3* connection, PackedSessions sessions, const LongWork& work)
        : connection_(connection), sessions_(std::move(sessions)), work_(work) {
        sessions_.sortByStart();
    }

    Database::ImportOutcome run() {
        if (sessions_.rows().empty())
            return Database::ImportSummary{};
        SessionMerge merge(sessions_);
        readStored(merge);
        sqlite::Transaction transaction(connection_);
        std::optional<NoPatience> noPatience;
        if (!transaction.isOpen())
            noPatience.emplace(connection_); // and goes on without: what can be written is
        write(merge);
        if (work_.stop.stop_requested())
            return Database::ImportStopped{};
        if (failure_)
            return Database::ImportFailure{*failure_};
        if (transaction.isOpen() && !transaction.commit())
            return Database::ImportFailure{transaction.error()};
        // The sidecar grew with every row; it need not stay that large.
        sqlite::execute(connection_, "PRAGMA wal_checkpoint(TRUNCATE)");
        return summary_;
    }

private:
    void readStored(SessionMerge& merge) {
        const auto& rows = sessions_.rows();
        const auto from = rows.front().start - margin;
        const auto to =
            std::max_element(rows.begin(), rows.end(), [](const auto& a, const auto& b) { return a.end < b.end; })
                ->end +
            margin;
        Statement stored(connection_, sessionRows::rangeSQL);
        sessionRows::bindRange(stored, from, to);
        for (std::size_t read = 1; !work_.stop.stop_requested() && stored.step() == Step::row; ++read) {
            const auto session = sessionRows::decode(stored);
            merge.addStored(session);
            if (read % rowsPerProgress == 0)
                work_.progress(shareOfReading * std::clamp((session.start - from) / (to - from), 0.0, 1.0));
        }
    }

    void write(SessionMerge& merge) {
        Statement insert(connection_, sessionRows::insertSQL);
        Statement updateEnd(connection_, sessionRows::updateEndSQL);
        const auto& rows = sessions_.rows();
        for (std::size_t i = 0; i < rows.size() && !failure_ && !work_.stop.stop_requested(); ++i) {
            const auto decision = merge.decide(i);
            if (const auto* extend = std::get_if<SessionMerge::Extend>(&decision)) {
                sessionRows::bindUpdateEnd(updateEnd, extend->id, rows[i].end);
                run(updateEnd);
                ++summary_.extended;
            } else if (std::holds_alternative<SessionMerge::Ignore>(decision)) {
                ++summary_.duplicates;
            } else {
                sessionRows::bindInsert(insert, PackedSessions::session(rows[i]));
                if (run(insert)) {
                    merge.added(i, sqlite3_last_insert_rowid(connection_));
                    ++summary_.added;
                }
            }
            if (i % rowsPerProgress == 0)
                work_.progress(shareOfReading +
                               (1 - shareOfReading) * static_cast<double>(i) / static_cast<double>(rows.size()));
        }
    }

    /// A row that cannot be written is passed over, but for reasons that hold for every other too.
    bool run(Statement& statement) {
        const bool done = statement.step() == Step::done;
        if (!done && (!statement.isValid() || isLasting(sqlite3_errcode(connection_))))
            failure_ = sqlite::errorMessage(connection_);
        statement.reset();
        return done;
    }

    sqlite3* connection_;
    PackedSessions sessions_;
    const LongWork& work_;
    Database::ImportSummary summary_;
    std::optional<std::string> failure_;
};

} // namespace

Database::ImportOutcome Database::importSessions(PackedSessions sessions, const LongWork& work) {
    return queue_.sync([&] { return Import(connection_.get(), std::move(sessions), work).run(); });
}

Database::ImportSummary Database::importSessions(const std::vector<ActivitySession>& sessions) {
    if (sessions.empty())
        return {};
    PackedSessions packed;
    for (const auto& session : sessions)
        packed.add(session);
    const auto outcome = importSessions(std::move(packed));
    const auto* summary = std::get_if<ImportSummary>(&outcome);
    return summary ? *summary : ImportSummary{};
}

} // namespace kestrio
