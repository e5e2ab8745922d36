// The single owner of `activity.sqlite`, the file of finished and open sessions.
//
// A thin, synchronous layer: one connection, one serial queue, statements prepared per call. Every operation waits on
// the queue and may be called from any thread but the queue itself. After opening nothing throws: a failure gives the
// empty result, because losing one write of a session must not disturb tracking.
#pragma once

#include "Kestrio/Activity/FoundSessions.h"
#include "Kestrio/Activity/PackedSessions.h"
#include "Kestrio/Activity/SessionStore.h"
#include "Kestrio/Base/DatabaseFile.h"
#include "Kestrio/Base/LongWork.h"
#include "Kestrio/Base/Queue.h"

#include <filesystem>
#include <variant>
#include <vector>

namespace kestrio {

/// The time spent on one application or site, over all kinds of session together.
struct NamedTotal {
    std::string id;
    std::string name;
    Seconds duration{};

    friend bool operator==(const NamedTotal&, const NamedTotal&) = default;
};

class Database final : public SessionStore {
public:
    using Access = DatabaseAccess;

    /// The folder for the program's data below the person's data folder. A folder that an earlier version left under
    /// an earlier name is moved here once; one log line when that fails, and the new folder is used all the same.
    static std::filesystem::path directory(const std::filesystem::path& base);

    static constexpr auto fileName = "activity.sqlite";

    /// Opens the file; made, with its folder, when missing, or brought up to date. Throws `DatabaseError`. The queue
    /// must outlive the database.
    Database(const std::filesystem::path& file, Queue& queue, Access access = Access::readWrite);

    std::optional<std::int64_t> insert(const ActivitySample& sample, Date start, Date end) override;
    bool updateEnd(std::int64_t id, Date end) override;
    std::vector<ActivitySession> sessions(Date from, Date to) override;
    std::string lastError() override;

    /// The same, or why they cannot be read.
    FoundSessions findSessions(Date from, Date to);

    /// Removes the sessions that ended before the date; one that crosses it stays whole. The file shrinks at once.
    void deleteSessions(Date before);
    void deleteAll();

    /// The time in front within the interval, without that of one row. As `sessions` finds them; 0 on failure.
    Seconds timeInFront(DateInterval interval, std::optional<std::int64_t> withoutRow);

    std::int64_t sessionCount();
    /// Absent when there is no session.
    std::optional<Date> earliestStart();
    /// Bytes of the file and its two sidecars; one that cannot be read counts 0.
    std::int64_t fileSize();

    /// The two statements for `totals`.
    static constexpr auto appTotals = "SELECT bundle_id, MAX(app_name), SUM(end - start) AS total FROM sessions\n"
                                      "GROUP BY bundle_id ORDER BY total DESC LIMIT ?";
    static constexpr auto domainTotals = "SELECT domain, domain, SUM(end - start) AS total FROM sessions\n"
                                         "WHERE domain IS NOT NULL GROUP BY domain ORDER BY total DESC LIMIT ?";
    std::vector<NamedTotal> totals(const char* sql, std::int32_t limit);

    struct ImportSummary {
        std::int64_t added = 0;
        std::int64_t extended = 0;   // rows of which the import knew a later end
        std::int64_t duplicates = 0; // sessions that were there already

        friend bool operator==(const ImportSummary&, const ImportSummary&) = default;
    };
    struct ImportStopped {};
    struct ImportFailure {
        std::string message; // in the library's words
    };
    using ImportOutcome = std::variant<ImportSummary, ImportStopped, ImportFailure>;

    /// Takes in sessions recorded elsewhere: extends the rows that they go on from, ignores those that are there, adds
    /// the rest, all in one transaction. A single row that cannot be written is passed over. Whenever the work does not
    /// come to its end the database stays as it was. Holds the queue for as long as it takes.
    ImportOutcome importSessions(PackedSessions sessions, const LongWork& work = {});

    /// The same; all zeros when it failed.
    ImportSummary importSessions(const std::vector<ActivitySession>& sessions);

private:
    void check();
    void migrate();
    std::optional<std::int64_t> insertOnQueue(const ActivitySample& sample, Date start, Date end);
    bool updateEndOnQueue(std::int64_t id, Date end);
    void executeOnQueue(const char* sql, std::optional<Date> parameter);
    void shrinkOnQueue();

    /// The statement, or one that is not valid and a line in the log.
    sqlite::Statement prepare(std::string_view sql);

    const std::filesystem::path file_;
    Queue& queue_;
    sqlite::Connection connection_; // on the queue
};

} // namespace kestrio
