// Durations, shares, times, sizes and CPU figures in words, the same everywhere. Pure functions; any thread, each with
// its own calendar.
#pragma once

#include "Kestrio/Base/Calendar.h"
#include "Kestrio/Base/Date.h"

#include <cstdint>
#include <optional>
#include <string>

namespace kestrio::Fmt {

/// "45s", "12m", "2h", "2h 5m": rounded to whole seconds, halves away from zero, then cut to the two largest units.
std::string duration(Seconds length);

/// "12m", "2h 0m": cut to whole minutes. Unlike `duration` it keeps the minutes of a full hour, so that the text in the
/// bar does not jump in width.
std::string menuBar(Seconds length);

/// "33%": the share of `part` in `total`, rounded. "0%" of nothing.
std::string percent(double part, double total);

/// "1h 5m focused · 20m alongside", or "20m alongside" when less than a second was focused. Absent when less than a
/// second was alongside: nothing is then to be told apart.
std::optional<std::string> split(Seconds focused, Seconds alongside);

/// "9:05 AM – 5:30 PM": both as the locale's short times.
std::string timeRange(Date a, Date b, const Calendar& calendar);

/// "Today", "Yesterday", or as in "Saturday, 21 Nov" in the locale's words and order.
std::string relativeDay(Date date, Date now, const Calendar& calendar);

/// The locale's short time of a moment of today, else as in "21 Nov, 17:30".
std::string lastSeen(Date date, Date now, const Calendar& calendar);

/// "50% of a core", "1.5 cores": a CPU load in cores, the decimal as the locale writes it.
std::string cores(double value, const Calendar& calendar);

/// "0.3 s", "12 s": up to ten seconds with one decimal as the locale writes it, from there whole seconds, cut.
std::string seconds(std::int64_t milliseconds, const Calendar& calendar);

/// "512 MB", "1.5 GB": memory, in powers of 1,024; megabytes with up to one decimal as the locale writes it, from
/// gigabytes on up to two. Below a kilobyte "{n} bytes".
std::string memory(std::uint64_t bytes, const Calendar& calendar);

/// The same for files and drives, in powers of 1,000.
std::string fileSize(std::uint64_t bytes, const Calendar& calendar);

/// "1.5 GB/s": bytes per second in powers of 1,000, as drives and memory are rated.
std::string speed(double bytesPerSecond, const Calendar& calendar);

} // namespace kestrio::Fmt
