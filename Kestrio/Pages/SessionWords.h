// Small words that several pages use of one session. Pure functions.
#pragma once

#include "Kestrio/Base/Calendar.h"

#include <string>

namespace kestrio {

/// The title, or "Untitled window".
inline std::string titleOrUntitled(const std::string& title) {
    return title.empty() ? "Untitled window" : title;
}

/// The locale's hour and minute.
inline std::string shortTime(Date date, const Calendar& calendar) {
    return calendar.localized(date, "jmm");
}

} // namespace kestrio
