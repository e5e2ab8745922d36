// The words in which the optimizer's events tell what it did. Pure functions; any thread, each with its own calendar.
#pragma once

#include "Kestrio/Base/Calendar.h"
#include "Kestrio/Base/Date.h"
#include "TindraCore/Decisions.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace kestrio::OptimizerWords {

/// "Idle for 12m. 3 processes."
std::string frozen(Seconds idle, std::size_t processes);
/// "Resumed: you opened it."
std::string resumed(tindra::ThawReason reason);
/// "Resumed: {reason}", where the reason is a clause of its own with its full stop.
std::string resumed(std::string_view reason);
/// "Checking for new messages for 45 s.", the seconds cut to whole ones.
std::string checking(double wakeSeconds);
/// "Using 1.5 cores in the background."
std::string slowed(double cores, const Calendar& calendar);
/// "Can wait until 17:30."
std::string overridden(tindra::AppTier tier, Date until, const Calendar& calendar);
/// "Focus mode."
std::string switchedOn(tindra::OptimizerMode mode);
/// "Resumed 2 processes an earlier run had left frozen or slowed."
std::string recovered(std::size_t processes);

inline constexpr std::string_view frozenByHand = "Frozen by hand; it wakes up when you open it.";
inline constexpr std::string_view slowedByHand = "Moved by hand; it gets full speed back when you open it.";
inline constexpr std::string_view resumedByHand = "Resumed by hand.";
inline constexpr std::string_view quit = "Quit from Kestrio.";
inline constexpr std::string_view released = "Resumed: optimization was switched off or the app quit.";
inline constexpr std::string_view switchedOff = "Everything was put back.";

} // namespace kestrio::OptimizerWords
