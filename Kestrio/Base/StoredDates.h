// Dates as settings keep them: numbers of seconds since the start of 2001, as the first version of the program wrote
// them.
#pragma once

#include "Kestrio/Base/Date.h"

namespace kestrio {

inline constexpr Date originOfStoredDates{978'307'200};

} // namespace kestrio
