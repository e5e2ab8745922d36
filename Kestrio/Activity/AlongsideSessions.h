// The second line of sessions: what plays while the person does something else. Holds the open ones, and decides when
// each is written. What plays is found out elsewhere. Belongs to the monitor's queue.
#pragma once

#include "Kestrio/Activity/SessionWriter.h"

#include <vector>

namespace kestrio {

class AlongsideSessions {
public:
    /// Time between two checks: a check costs system calls and may ask a browser.
    static constexpr Seconds interval{4.0};
    /// What played for less is never stored, nor shown among the sessions.
    static constexpr Seconds minimum{10.0};
    /// Longest time between two writes of an open session.
    static constexpr Seconds flushInterval{15.0};

    /// The writer must outlive this.
    explicit AlongsideSessions(SessionWriter& writer) : writer_(writer) {}

    /// Whether a check is due; a true answer counts as the check.
    bool takeCheck(Date now);

    /// Takes the result of a check: closes what no longer plays, opens what is new, and writes when it is time.
    void update(const std::vector<ActivitySample>& detected, Date now);

    /// Closes everything, each at `at`, or at its start where that is later.
    void closeAll(Date at);

    /// After the wall clock jumped: closes everything where it was last confirmed, and starts over with the intervals.
    void restart();

    /// The open ones, in the order of their opening.
    const std::vector<LiveActivity>& open() const { return open_; }

private:
    void flush(Date now);

    SessionWriter& writer_;
    std::vector<LiveActivity> open_; // a handful, by full equality of the sample
    Date lastCheck_ = distantPast;
    Date lastFlush_ = distantPast;
};

} // namespace kestrio
