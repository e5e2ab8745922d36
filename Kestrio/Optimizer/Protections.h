// Why an application must not be frozen now, and in which order the reasons are looked for. Pure values and functions;
// any thread.
#pragma once

#include "Kestrio/Base/Date.h"
#include "TindraCore/Decisions.h"

#include <functional>
#include <optional>
#include <set>
#include <string>

namespace kestrio {

using AppIDs = std::set<std::string, std::less<>>;

/// Which applications use sound and screen, by their bundle identifiers.
struct MediaUse {
    std::set<std::string> recording;        // take sound in
    std::set<std::string> playing;          // can be heard
    std::set<std::string> keepDisplayAwake; // hold a display assertion, or are watched alongside
    std::set<std::string> keepAwake;        // hold an assertion that keeps the machine from sleeping
};

/// The assertions that keep the machine, as opposed to its display, from sleeping.
const std::set<std::string>& sleepAssertionTypes();

/// Applications that are never frozen and never slowed by a rule, on any host: the desktop's own, and those that may
/// run long jobs unseen.
const AppIDs& builtInEssentials();

/// An application in its first two minutes is let alone.
inline constexpr Seconds launchGrace{120};

/// What the reasons are looked for in. All of it is of one moment.
struct ProtectionFacts {
    std::optional<std::string> front; // the bundle identifier of the application in front
    const AppIDs& essentials;         // this program among them
    const AppIDs& neverTouch;
    const MediaUse& media;
    Date now;
};

/// The first reason that holds; absent when none does.
std::optional<tindra::Protection> protectionOf(const std::string& appID, std::optional<Date> launched,
                                               const ProtectionFacts& facts);

} // namespace kestrio
