// Seam: who keeps the display or the machine awake.
//
// Used on one queue, the one that the implementation was made for, at each check of what plays alongside. Answers from
// what notices told wherever there are any, and never waits for more than 0.4 s. An empty answer is valid.
#pragma once

#include "Kestrio/Platform/ApplicationTrace.h"

#include <string>
#include <vector>

namespace kestrio {

/// The names of what can be held. A host uses those that fit what it knows.
namespace assertion {
inline constexpr auto preventUserIdleDisplaySleep = "PreventUserIdleDisplaySleep";
inline constexpr auto noDisplaySleep = "NoDisplaySleepAssertion";
inline constexpr auto preventUserIdleSystemSleep = "PreventUserIdleSystemSleep";
inline constexpr auto preventSystemSleep = "PreventSystemSleep";
inline constexpr auto noIdleSleep = "NoIdleSleepAssertion";
} // namespace assertion

struct SleepInhibitor {
    ApplicationTrace holder;
    std::string type; // one of `assertion`

    friend auto operator<=>(const SleepInhibitor&, const SleepInhibitor&) = default;
};

class SleepInhibitors {
public:
    virtual ~SleepInhibitors() = default;

    /// All that are held now, in no particular order; one that two services tell of may be there twice.
    virtual std::vector<SleepInhibitor> held() = 0;
};

} // namespace kestrio
