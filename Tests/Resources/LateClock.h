// A clock of tests in which timers come late.
#pragma once

#include "Kestrio/Base/VirtualQueue.h"

namespace kestrio {

/// Runs ahead of the queue's own time, as a clock does while a machine does not get round to its timers.
class LateClock final : public Clock {
public:
    explicit LateClock(const VirtualTime& time) : time_(time) {}

    Date now() const override { return time_.now(); }
    Uptime uptime() const override { return time_.uptime() + late; }

    Seconds late{0};

private:
    const VirtualTime& time_;
};

} // namespace kestrio
