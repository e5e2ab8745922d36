#include "Programs/CommandLine/CostText.h"

#include "Kestrio/Base/Formatters.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace kestrio {
namespace {

std::string shareOfCore(double cores, const Calendar& calendar) {
    return calendar.decimal(cores * 100, 2) + "% of a core";
}

std::uint64_t wholeBytes(double bytes) {
    return static_cast<std::uint64_t>(std::llround(std::max(bytes, 0.0)));
}

} // namespace

std::string costText(const OwnCost& cost, const Calendar& calendar) {
    return fmt::format("{}, {} of memory, {} wake-ups and {} written a second, over {}",
                       shareOfCore(cost.cores, calendar), Fmt::memory(cost.memory, calendar),
                       calendar.decimal(cost.wakeupsPerSecond, 1),
                       Fmt::fileSize(wholeBytes(cost.bytesWrittenPerSecond), calendar), Fmt::duration(cost.span));
}

std::string loweredPaceText(const LoweredPace& lowered, const Calendar& calendar) {
    return fmt::format("minutes alone until {}: Kestrio itself took {}", calendar.localized(lowered.until, "jmm"),
                       shareOfCore(lowered.cost.cores, calendar));
}

} // namespace kestrio
