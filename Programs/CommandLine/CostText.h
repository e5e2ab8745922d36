// What the agent costs the machine, in words. Pure functions.
#pragma once

#include "Kestrio/Base/Calendar.h"
#include "Kestrio/Resources/OwnCost.h"

#include <string>

namespace kestrio {

/// "0.31% of a core, 14 MB of memory, 3.4 wake-ups and 1.2 KB written a second, over 10m".
std::string costText(const OwnCost& cost, const Calendar& calendar);

/// "minutes alone until 11:05: Kestrio itself took 0.80% of a core".
std::string loweredPaceText(const LoweredPace& lowered, const Calendar& calendar);

} // namespace kestrio
