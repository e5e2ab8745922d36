// Moments as ISO 8601 writes them for the internet: "2026-11-21T14:30:05.250+01:00". Pure functions; any thread.
#pragma once

#include "Kestrio/Base/Date.h"

#include <optional>
#include <string>
#include <string_view>

namespace kestrio {

/// The moment to the nearest millisecond, as clocks show it that are so many seconds ahead of UTC, with their offset;
/// "Z" for none. Years before 1 and after 9999 have no such form: the nearest moment that has one is written.
std::string isoDateTime(Date date, int secondsFromUTC);

/// The moment that such a text names, to the millisecond; further digits are cut. The fraction may be missing. The
/// offset is "Z" or as in "+01:00", "+0100", "+01", "+01:00:30". Absent for anything else, what no calendar and no
/// clock shows included.
std::optional<Date> parseISODateTime(std::string_view text);

} // namespace kestrio
