// The words of the events that the recorder writes. Pure functions; any thread, each with its own calendar, which gives
// the numbers the locale's form.
#pragma once

#include "Kestrio/Base/Calendar.h"
#include "Kestrio/Model/Models.h"
#include "Kestrio/Platform/KernelCounters.h"
#include "Kestrio/Resources/ResourceReading.h"
#include "Kestrio/Resources/ResourceRecords.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kestrio::resourceNotes {

/// "Active → Idle. No keyboard or mouse for 5 minutes."
std::string activityChanged(TrackingState from, TrackingState to, std::int64_t idleMinutes);

/// "Memory pressure high, 1 GB of swap in use. Most memory: Browser 3 GB, Editor 1 GB."
std::string pressureRose(const LiveResources& live, const Calendar& calendar);

/// "Heat rose to Serious." The codes are those of the context.
std::string thermalChanged(std::int64_t from, std::int64_t to);

/// "Plugged in." or "Running on battery (80%)."
std::string powerChanged(bool onAC, std::optional<std::int64_t> battery);

/// "Low Power Mode on."
std::string lowPowerChanged(bool on);

/// "The Mac stalled for 1.2 s, memory was critical. Most memory: Browser 3 GB. Busiest: Browser 1.5 cores."
std::string slowdown(const SystemMinute& minute, const std::vector<AppMinute>& apps, const Calendar& calendar);

/// "Woke after 8h 5m asleep."; how long is absent when nobody saw it fall asleep.
std::string woke(std::optional<Seconds> asleep);

} // namespace kestrio::resourceNotes
