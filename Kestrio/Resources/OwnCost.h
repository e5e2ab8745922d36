// Watches what the program itself costs and decides when that is too much: the log of what burdens the machine must not
// be a burden.
//
// A value of the recorder; belongs to the recorder's queue. Reads no clock.
#pragma once

#include "Kestrio/Base/Date.h"
#include "Kestrio/Platform/OwnUse.h"

#include <cstdint>
#include <deque>
#include <optional>

namespace kestrio {

/// What the program took over a while.
struct OwnCost {
    Seconds span = Seconds(0); // that was measured, awake
    double cores = 0;          // CPU time over it; 1 is one core, fully used
    std::uint64_t memory = 0;  // bytes, at its end
    double wakeupsPerSecond = 0;
    double bytesWrittenPerSecond = 0;

    friend bool operator==(const OwnCost&, const OwnCost&) = default;
};

/// The program took too much of the machine and records minutes alone for a while.
struct LoweredPace {
    Date since;
    Date until;   // as it looks; a person who changes the pace ends it
    OwnCost cost; // that was too much

    friend bool operator==(const LoweredPace&, const LoweredPace&) = default;
};

class OwnCostWatch {
public:
    /// The most that the program may take, of one core.
    static constexpr double budget = 0.005;
    /// Over how long: a single import or export is no reason.
    static constexpr Seconds window{600};
    /// A reading is cheap, but not worth more than this.
    static constexpr Seconds readingInterval{60};

    bool isReadingDue(Uptime now) const;
    void add(const OwnUse& use, Uptime now);

    /// Over the last window at most; absent before there are two readings.
    std::optional<OwnCost> cost() const;

    /// Whether a whole window went by above the budget.
    bool isOverBudget() const;

    /// The pace has changed, and with it the cost.
    void beginAnew() { readings_.clear(); }

private:
    struct Reading {
        OwnUse use;
        Uptime at;
    };
    std::deque<Reading> readings_; // those of the last window, and the one before them
};

} // namespace kestrio
