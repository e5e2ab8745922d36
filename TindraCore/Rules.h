// What a person has said about each application: its tier, the tier it takes in certain hours, a temporary rule, and
// whether it must never be touched. Plain values, usable from any thread; clock and calendar are handed in as values.
#pragma once

#include "TindraCore/Date.h"
#include "TindraCore/UUID.h"

#include <array>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace tindra {

/// How much of an application must go on while nobody uses it.
enum class AppTier {
    alwaysOn,          // never frozen; may still be moved to efficiency cores
    checkPeriodically, // frozen when idle, woken on a period to fetch messages
    canWait,           // frozen when idle, stays frozen until opened
};
inline constexpr std::array allAppTiers{AppTier::alwaysOn, AppTier::checkPeriodically, AppTier::canWait};

std::string_view rawValue(AppTier tier);
/// Absent for a text that is not exactly one of the raw values.
std::optional<AppTier> appTier(std::string_view rawValue);
/// The words that a person reads.
std::string_view label(AppTier tier);

/// Tiers by bundle identifier.
using AppTiers = std::map<std::string, AppTier, std::less<>>;

/// A date as the person's calendar and clocks show it; what the calendar cannot tell is absent.
struct LocalTime {
    std::optional<int> weekday; // 1 for Sunday to 7 for Saturday
    std::optional<int> hour;    // 0 to 23
    std::optional<int> minute;  // 0 to 59

    friend bool operator==(const LocalTime&, const LocalTime&) = default;
};

/// A span of time in the week. The weekdays of a window that crosses midnight name the day on which it starts.
struct DailyWindow {
    int start = 0; // minutes since local midnight, the first one inside
    int end = 0;   // minutes since local midnight, the first one outside; equal to `start` for the whole day
    std::set<int> weekdays;

    bool crossesMidnight() const { return end < start; }
    /// False where the weekday is absent. An absent hour or minute counts as 0.
    bool contains(const LocalTime& time) const;

    friend bool operator==(const DailyWindow&, const DailyWindow&) = default;
};

/// A named exception to the usual tiers. It speaks only of the applications in its map.
struct Schedule {
    UUID id;
    std::string name;
    bool isEnabled = true; // a schedule can be kept but switched off
    DailyWindow window;
    AppTiers tiers;

    friend bool operator==(const Schedule&, const Schedule&) = default;
};

/// A temporary rule. It ends by itself: at `until` it no longer applies.
struct TierOverride {
    std::string appID;
    AppTier tier = AppTier::alwaysOn;
    Date until;

    friend bool operator==(const TierOverride&, const TierOverride&) = default;
};

/// Where an effective tier came from.
namespace source {
struct Override {
    Date until;
    friend bool operator==(const Override&, const Override&) = default;
};
struct Schedule {
    std::string name;
    friend bool operator==(const Schedule&, const Schedule&) = default;
};
struct Usual {
    friend bool operator==(const Usual&, const Usual&) = default;
};
struct Unchosen {
    friend bool operator==(const Unchosen&, const Unchosen&) = default;
};
} // namespace source

struct EffectiveTier;

/// All of it. The empty value stands for a person who has said nothing.
struct OptimizerRules {
    using Source = std::variant<source::Override, source::Schedule, source::Usual, source::Unchosen>;

    AppTiers tiers;                      // the usual rule of each application
    std::vector<Schedule> schedules;     // in the order that the person sees; the earlier of two that match wins
    std::vector<TierOverride> overrides; // oldest first; at most one per application
    std::set<std::string, std::less<>> neverTouch;

    /// The tier that is in force for the application at a date, and why. `time` is the same date in the person's
    /// calendar. An application that nobody classified is always on.
    EffectiveTier tier(std::string_view appID, Date date, const LocalTime& time) const;

    /// Puts the application under a temporary rule, in place of an earlier one.
    void setOverride(std::string_view appID, AppTier tier, Date until);
    void removeOverride(std::string_view appID);
    /// Removes the temporary rules that have ended; true when there were any.
    bool pruneOverrides(Date now);

    friend bool operator==(const OptimizerRules&, const OptimizerRules&) = default;
};

struct EffectiveTier {
    AppTier tier;
    OptimizerRules::Source source;

    friend bool operator==(const EffectiveTier&, const EffectiveTier&) = default;
};

/// Such as "schedule(Evening)": for tests and for looking at.
std::string toString(const OptimizerRules::Source& source);

} // namespace tindra

// With these the source as a whole, a variant, can be hashed too.
template <>
struct std::hash<tindra::source::Override> {
    std::size_t operator()(const tindra::source::Override& source) const noexcept;
};
template <>
struct std::hash<tindra::source::Schedule> {
    std::size_t operator()(const tindra::source::Schedule& source) const noexcept;
};
template <>
struct std::hash<tindra::source::Usual> {
    std::size_t operator()(const tindra::source::Usual& source) const noexcept;
};
template <>
struct std::hash<tindra::source::Unchosen> {
    std::size_t operator()(const tindra::source::Unchosen& source) const noexcept;
};
