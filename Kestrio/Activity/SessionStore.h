// What the activity monitor needs of the store of sessions, and nothing more. Every operation may block its caller for
// as long as one statement takes, at most the database's busy time-out of 3 seconds, and never throws.
#pragma once

#include "Kestrio/Model/Models.h"

#include <vector>

namespace kestrio {

class SessionStore {
public:
    virtual ~SessionStore() = default;

    /// The new row's identifier; absent when the row could not be written.
    virtual std::optional<std::int64_t> insert(const ActivitySample& sample, Date start, Date end) = 0;

    /// Moves the end of a row. False when that could not be written; the row then stands as it stood.
    virtual bool updateEnd(std::int64_t id, Date end) = 0;

    /// The sessions that reach into the range, in the order of their starts; not clipped to it. A session of more than
    /// 12 hours may be missing when it began more than 12 hours before `from`. Empty on failure.
    virtual std::vector<ActivitySession> sessions(Date from, Date to) = 0;

    /// Why the latest write failed, in the library's words.
    virtual std::string lastError() = 0;
};

} // namespace kestrio
