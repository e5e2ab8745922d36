// The one place that time comes from. Everything that needs the present moment is handed a `Clock`, so that tests
// can run a month in a second. Both reads are callable from any thread and never block.
#pragma once

#include "Kestrio/Base/Date.h"

namespace kestrio {

class Clock {
public:
    virtual ~Clock() = default;

    /// Wall-clock time. May go backwards between two reads.
    virtual Date now() const = 0;

    /// Time awake. Never goes backwards, and stands still while the machine sleeps.
    virtual Uptime uptime() const = 0;
};

/// The system's clocks.
class SystemClock final : public Clock {
public:
    Date now() const override;
    Uptime uptime() const override;
};

} // namespace kestrio
