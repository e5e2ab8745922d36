// Durations and shares in words, the same everywhere. Pure functions; any thread.
#pragma once

#include "Kestrio/Base/Date.h"

#include <string>

namespace kestrio::Fmt {

/// "45s", "12m", "2h", "2h 5m": rounded to whole seconds, halves away from zero, then cut to the two largest units.
std::string duration(Seconds length);

} // namespace kestrio::Fmt
