#include "Kestrio/Activity/SessionWriter.h"

#include "Kestrio/Base/Log.h"

#include <algorithm>

namespace kestrio {
namespace {

/// A busy month of sessions in a few megabytes; beyond that the oldest give way.
constexpr std::size_t mostWaiting = 20'000;

} // namespace

void SessionWriter::save(LiveActivity& session) {
    if (session.rowID)
        store_.updateEnd(*session.rowID, session.lastSeen);
    else
        session.rowID = store_.insert(session.sample, session.start, session.lastSeen);
}

void SessionWriter::finish(const LiveActivity& session, Date end, Seconds minimum) {
    const Write last{session, std::max(end, session.start)};
    if (!session.rowID && last.end - session.start < minimum)
        return;
    if (!write(last))
        keep(last);
}

bool SessionWriter::write(const Write& write) {
    const auto& [session, end] = write;
    return session.rowID ? store_.updateEnd(*session.rowID, end)
                         : store_.insert(session.sample, session.start, end).has_value();
}

void SessionWriter::keep(Write write) {
    if (waiting_.empty())
        logLine("Kestrio: activity can't be saved and waits in memory: " + store_.lastError());
    if (waiting_.size() == mostWaiting)
        waiting_.pop_front();
    waiting_.push_back(std::move(write));
}

void SessionWriter::retry() {
    if (waiting_.empty())
        return;
    while (!waiting_.empty() && write(waiting_.front()))
        waiting_.pop_front();
    if (waiting_.empty())
        logLine("Kestrio: activity that waited in memory has been saved");
}

void SessionWriter::retryIfDue(Date now) {
    const auto since = now - lastRetry_;
    if (waiting_.empty() || (since >= Seconds(0) && since < retryInterval))
        return;
    lastRetry_ = now;
    retry();
}

std::vector<ActivitySession> SessionWriter::sessions(DateInterval range, std::int64_t& nextID) {
    auto found = store_.sessions(range.start, range.end);
    for (const auto& write : waiting_) {
        const auto& session = write.session;
        if (!session.rowID) {
            if (write.end > range.start && session.start < range.end)
                found.push_back(activitySession(nextID--, session.sample, session.start, write.end));
            continue;
        }
        const auto row = std::find_if(found.begin(), found.end(),
                                      [id = *session.rowID](const ActivitySession& stored) { return stored.id == id; });
        if (row != found.end())
            row->end = write.end;
    }
    return found;
}

void SessionWriter::reportLoss() const {
    if (!waiting_.empty())
        logLine("Kestrio: " + std::to_string(waiting_.size()) +
                " sessions could not be saved before the end: " + store_.lastError());
}

} // namespace kestrio
