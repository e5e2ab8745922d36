// The timers of one queue as a plain value: which are due, and how long the queue may sleep. No thread, no clock.
#pragma once

#include "Kestrio/Base/Queue.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace kestrio {

class TimerSchedule {
public:
    using ID = std::uint64_t;

    ID addOnce(Uptime deadline, Queue::Work work);
    ID addRepeating(Uptime now, const Pace& pace, Queue::Work work);

    /// Does nothing for a timer that is gone.
    void cancel(ID id);

    /// The latest moment by which the queue has to wake up: the earliest deadline-plus-tolerance. Absent without
    /// timers.
    std::optional<Uptime> nextWake() const;

    /// The work of the timer with the earliest deadline not after `now`, which is then removed or set to the next
    /// point of its grid after `now`. Absent when nothing is due. Timers that tolerate waiting come along early
    /// whenever the queue is awake after their deadline: that is the coalescing.
    std::shared_ptr<const Queue::Work> takeDue(Uptime now);

private:
    struct Timer {
        ID id;
        Uptime deadline;
        std::optional<Seconds> interval;
        Seconds tolerance;
        std::shared_ptr<const Queue::Work> work;
    };

    ID nextID_ = 1;
    std::vector<Timer> timers_; // a handful; searched in full
};

} // namespace kestrio
