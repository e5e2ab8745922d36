// Tells that the machine slept by the two clocks that drift apart meanwhile, whoever put it to sleep.
//
// Belongs to the queue it was made for. Costs nothing until the kernel tells that the clock was set, which it also does
// on waking.
#pragma once

#include "Kestrio/Base/Date.h"
#include "Kestrio/Base/Subscription.h"
#include "Kestrio/Platform/Linux/Descriptor.h"

#include <functional>
#include <optional>

namespace kestrio {

class LoopQueue;

/// Time that the machine has spent asleep since it started.
Seconds timeAsleep();

/// Says of each reading whether the machine slept since the one before.
class SleepGauge {
public:
    explicit SleepGauge(Seconds asleepSoFar) : asleep_(asleepSoFar) {}

    /// Shorter sleeps than this are differences between two reads.
    static constexpr Seconds shortest{0.5};

    bool slept(Seconds asleepSoFar);

private:
    Seconds asleep_;
};

class SuspendWatch {
public:
    /// `report` is called after each sleep that was noticed.
    SuspendWatch(LoopQueue& queue, std::function<void()> report);

private:
    void clockWasSet();
    bool arm() const;

    const std::function<void()> report_;
    SleepGauge gauge_;
    Descriptor timer_;
    Subscription watch_; // after the descriptor, so that it goes first
};

} // namespace kestrio
