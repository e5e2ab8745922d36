// What is worth saying about the machine, in plain words. Pure: a snapshot and the history give the same list always.
#pragma once

#include "Kestrio/Base/Calendar.h"
#include "Kestrio/Monitor/SystemSnapshot.h"

#include <span>
#include <string>
#include <vector>

namespace kestrio {

struct SystemInsight {
    enum class Level { good, info, warning, critical }; // the worse the greater

    std::string id;
    Level level = Level::good;
    std::string symbol;
    std::string text;

    /// The worst first; never empty. `cpuHistory` has the latest share last; `calendar` writes numbers.
    static std::vector<SystemInsight> make(const SystemSnapshot& from, std::span<const double> cpuHistory,
                                           const Calendar& calendar);

    friend bool operator==(const SystemInsight&, const SystemInsight&) = default;
};

/// `good` of none.
SystemInsight::Level highestLevel(std::span<const SystemInsight> insights);

/// The drive's room is about to be gone.
bool isAlmostFull(const DiskUsage& disk);
/// There is little left, or the drive is almost full.
bool isGettingFull(const DiskUsage& disk);

/// The bound, in percent, at which a battery that is not being charged is low.
inline constexpr std::int64_t lowBattery = 20;

} // namespace kestrio
