// Notices when the machine stalls: a heartbeat each second on a queue of its own, and how late it comes.
//
// The heartbeat belongs to the queue "Kestrio.stallProbe"; the rest may be called from any thread but that one. The
// clock is time awake, so that a sleep is no stall.
#pragma once

#include "Kestrio/Base/Clock.h"
#include "Kestrio/Base/Queue.h"

#include <cstdint>

namespace kestrio {

class StallProbe {
public:
    static constexpr auto queueLabel = "Kestrio.stallProbe";
    static constexpr Seconds beat{1};

    /// Clock and queue must outlive the probe.
    StallProbe(const Clock& clock, Queue& queue) : clock_(clock), queue_(queue) {}
    ~StallProbe() { stop(); }
    StallProbe(const StallProbe&) = delete;
    StallProbe& operator=(const StallProbe&) = delete;

    /// A second call does nothing.
    void start();
    /// Waits for a beat that is under way, and forgets what it saw.
    void stop();

    /// How late the latest of the beats since the last call was, in whole milliseconds. Waits for a beat that is under
    /// way, which does little. 0 while stopped.
    std::int64_t takeWorstMilliseconds();

private:
    void noteBeat();

    const Clock& clock_;
    Queue& queue_;
    bool running_ = false; // the caller's side

    // On the queue.
    Subscription timer_;
    Uptime last_;
    std::int64_t worst_ = 0;
};

} // namespace kestrio
