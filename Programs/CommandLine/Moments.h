// Moments and lengths of time as people type them. Pure functions.
#pragma once

#include "Kestrio/Base/Calendar.h"

#include <optional>
#include <string>
#include <string_view>

namespace kestrio {

/// "now", "today", "yesterday", "tomorrow", "14:30" (today), "2026-11-21", "2026-11-21 14:30[:05]" (also with "T"),
/// "2h ago", "-90m", or "@" and seconds since 1970. Absent for anything else, a date that does not exist included.
std::optional<Date> parseMoment(std::string_view text, Date now, const Calendar& calendar);

/// "90s", "30m", "1h", "1h30m", "2d": above 0. Absent for anything else.
std::optional<Seconds> parseLength(std::string_view text);

/// What `parseMoment` takes, for a message.
inline constexpr auto momentForms =
    "now, today, yesterday, 14:30, 2026-11-21, \"2026-11-21 14:30\", 2h ago or @SECONDS";

} // namespace kestrio
