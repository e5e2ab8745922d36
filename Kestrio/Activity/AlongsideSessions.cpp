#include "Kestrio/Activity/AlongsideSessions.h"

#include <algorithm>

namespace kestrio {

bool AlongsideSessions::takeCheck(Date now) {
    if (now - lastCheck_ < interval)
        return false;
    lastCheck_ = now;
    return true;
}

void AlongsideSessions::update(const std::vector<ActivitySample>& detected, Date now) {
    std::erase_if(open_, [&](const LiveActivity& session) {
        const bool stopped = std::find(detected.begin(), detected.end(), session.sample) == detected.end();
        if (stopped)
            writer_.finish(session, now, minimum);
        return stopped;
    });
    for (const auto& sample : detected) {
        const auto found = std::find_if(open_.begin(), open_.end(),
                                        [&](const LiveActivity& session) { return session.sample == sample; });
        if (found == open_.end())
            open_.push_back({sample, now, now, std::nullopt});
        else
            found->lastSeen = now;
    }
    if (now - lastFlush_ >= flushInterval)
        flush(now);
}

void AlongsideSessions::flush(Date now) {
    for (auto& session : open_)
        if (session.lastSeen - session.start >= minimum)
            writer_.save(session);
    lastFlush_ = now;
}

void AlongsideSessions::closeAll(Date at) {
    for (const auto& session : open_)
        writer_.finish(session, at, minimum);
    open_.clear();
}

void AlongsideSessions::restart() {
    for (const auto& session : open_)
        writer_.finish(session, session.lastSeen, minimum);
    open_.clear();
    lastCheck_ = distantPast;
    lastFlush_ = distantPast;
}

} // namespace kestrio
