#include "Kestrio/Optimizer/OptimizerWords.h"

#include "Kestrio/Base/Formatters.h"

#include <cmath>
#include <fmt/format.h>

namespace kestrio::OptimizerWords {
namespace {

std::string processCount(std::size_t count) {
    return fmt::format("{} process{}", count, count == 1 ? "" : "es");
}

std::string_view reasonText(tindra::ThawReason reason) {
    using enum tindra::ThawReason;
    switch (reason) {
    case opened: return "you opened it.";
    case alwaysOn: return "it's always on now.";
    case protected_: return "it started playing, recording or downloading.";
    case optimizerOff: break;
    }
    return "optimization was switched off.";
}

} // namespace

std::string frozen(Seconds idle, std::size_t processes) {
    return fmt::format("Idle for {}. {}.", Fmt::duration(idle), processCount(processes));
}

std::string resumed(tindra::ThawReason reason) {
    return resumed(reasonText(reason));
}

std::string resumed(std::string_view reason) {
    return fmt::format("Resumed: {}", reason);
}

std::string checking(double wakeSeconds) {
    return fmt::format("Checking for new messages for {:.0f} s.", std::trunc(wakeSeconds));
}

std::string slowed(double cores, const Calendar& calendar) {
    return fmt::format("Using {} in the background.", Fmt::cores(cores, calendar));
}

std::string overridden(tindra::AppTier tier, Date until, const Calendar& calendar) {
    return fmt::format("{} until {}.", label(tier), calendar.localized(until, "jmm"));
}

std::string switchedOn(tindra::OptimizerMode mode) {
    return fmt::format("{} mode.", label(mode));
}

std::string recovered(std::size_t processes) {
    return fmt::format("Resumed {} an earlier run had left frozen or slowed.", processCount(processes));
}

} // namespace kestrio::OptimizerWords
