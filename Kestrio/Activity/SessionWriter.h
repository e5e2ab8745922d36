// Between the activity monitor and its store: writes sessions, and keeps in memory what the store could not take (a
// full disk, a locked file) until it can. Belongs to the monitor's queue.
#pragma once

#include "Kestrio/Activity/SessionStore.h"

#include <cstddef>
#include <deque>

namespace kestrio {

class SessionWriter {
public:
    /// The store must outlive the writer.
    explicit SessionWriter(SessionStore& store) : store_(store) {}

    /// Writes an open session up to `lastSeen`: a row when it has none yet, kept in `session.rowID`, else the row's
    /// end. A failure changes nothing; the next call tries again.
    void save(LiveActivity& session);

    /// Writes the end of a session that is over. One without a row gets it only if it lasted at least `minimum`.
    /// A failed write waits in memory.
    void finish(const LiveActivity& session, Date end, Seconds minimum);

    /// Tries once more to write what waits, oldest first, up to the first failure.
    void retry();
    /// The same, but no more often than every `retryInterval`: a locked file holds each try up for seconds.
    void retryIfDue(Date now);
    static constexpr Seconds retryInterval{15.0};

    /// The stored sessions of a range, corrected and completed by what waits. What waits without a row follows the
    /// stored ones with identifiers from `nextID` downwards, which is moved on.
    std::vector<ActivitySession> sessions(DateInterval range, std::int64_t& nextID);

    /// What waits is not to be written any more.
    void forget() { waiting_.clear(); }

    std::size_t waiting() const { return waiting_.size(); }

    /// The writer's last words when the program ends: one line in the log if something is lost with it.
    void reportLoss() const;

private:
    struct Write {
        LiveActivity session;
        Date end;
    };

    bool write(const Write& write);
    void keep(Write write);

    SessionStore& store_;
    std::deque<Write> waiting_;
    Date lastRetry_ = distantPast;
};

} // namespace kestrio
