#include "TindraCore/Decisions.h"

#include "TindraCore/NumberText.h"
#include "TindraCore/RawValues.h"

#include <algorithm>

namespace tindra {
namespace {

constexpr double secondsPerMinute = 60;

/// In CPU cores. Whoever asks for focus wants the background quiet: two hundredths of a core is already noise, whatever
/// threshold is set for the balanced mode. There is no setting for it.
constexpr double focusEfficiencyThreshold = 0.02;

/// The protections of what a person sees, hears, speaks to or has told us to leave alone. The others, an inhibited
/// sleep and a recent launch, stop a freeze but not a move to efficiency cores: a download may go slower.
constexpr std::array keepsPerformanceCores{Protection::frontmost,       Protection::playingAudio,
                                           Protection::usingMicrophone, Protection::showingVideo,
                                           Protection::neverTouch,      Protection::essential};

bool isKeptOnPerformanceCores(const AppObservation& observation) {
    return observation.protection && std::find(keepsPerformanceCores.begin(), keepsPerformanceCores.end(),
                                               *observation.protection) != keepsPerformanceCores.end();
}

/// Gives an application back whole: it runs, and at its own priority.
std::vector<Decision> release(const AppObservation& observation, ThawReason reason) {
    std::vector<Decision> decisions;
    if (!std::holds_alternative<control::Running>(observation.control))
        decisions.push_back(decision::Thaw{reason});
    if (observation.isEfficient)
        decisions.push_back(decision::RestorePriority{});
    return decisions;
}

using OneOrNothing = std::optional<Decision>;
constexpr std::nullopt_t nothing = std::nullopt;

OneOrNothing restoredPriority(const AppObservation& observation) {
    return observation.isEfficient ? OneOrNothing(decision::RestorePriority{}) : nothing;
}

/// The table of an application in the background: one block per state, the first line that holds answers.
struct InBackground {
    const AppTier tier;
    const AppObservation& observation;
    const OptimizerTuning& tuning;
    const Date now;

    OneOrNothing operator()(const control::Frozen& frozen) const {
        if (tier == AppTier::alwaysOn)
            return decision::Thaw{ThawReason::alwaysOn};
        if (observation.protection)
            return decision::Thaw{ThawReason::protected_};
        if (tier == AppTier::canWait)
            return nothing;
        if (now - frozen.lastWake.value_or(frozen.since) >= tuning.checkEveryMinutes * secondsPerMinute)
            return decision::Wake{now + tuning.wakeSeconds};
        return nothing;
    }

    OneOrNothing operator()(const control::Waking& waking) const {
        if (tier == AppTier::alwaysOn)
            return decision::Thaw{ThawReason::alwaysOn};
        if (observation.protection)
            return decision::Thaw{ThawReason::protected_};
        if (now >= waking.until)
            return decision::Refreeze{};
        return nothing;
    }

    OneOrNothing operator()(const control::Running&) const {
        if (mayBeFrozen() && isIdleLongEnough())
            return decision::Freeze{};
        if (isKeptOnPerformanceCores(observation))
            return restoredPriority(observation);
        if (!tuning.useEfficiencyCores)
            return restoredPriority(observation);
        if (observation.isEfficient)
            return nothing; // once moved it stays moved, however quiet it becomes
        if (observation.cpu >= tuning.effectiveEfficiencyThreshold())
            return decision::MakeEfficient{};
        return nothing;
    }

    bool mayBeFrozen() const { return tier != AppTier::alwaysOn && !observation.protection; }

    /// One that was never seen active, and of whose launch nothing is known, is overdue at once.
    bool isIdleLongEnough() const {
        const Date reference =
            observation.lastActive ? *observation.lastActive : observation.launched.value_or(distantPast);
        return now - reference >= tuning.effectiveIdleMinutes() * secondsPerMinute;
    }
};

/// What a decision makes of a state; what is not listed stays as it is.
struct Transition {
    const Date now;

    template <class Action, class State>
    ControlState operator()(const Action&, const State& state) const {
        return state;
    }

    ControlState operator()(const decision::Freeze&, const control::Running&) const {
        return control::Frozen{now, std::nullopt};
    }
    ControlState operator()(const decision::Wake& wake, const control::Frozen& frozen) const {
        return control::Waking{wake.until, frozen.since};
    }
    ControlState operator()(const decision::Refreeze&, const control::Waking& waking) const {
        return control::Frozen{waking.frozenSince, now};
    }
    ControlState operator()(const decision::Thaw&, const control::Frozen&) const { return control::Running{}; }
    ControlState operator()(const decision::Thaw&, const control::Waking&) const { return control::Running{}; }
};

struct DecisionText {
    std::string operator()(const decision::Thaw& thaw) const {
        return "thaw(" + std::string(rawValue(thaw.reason)) + ")";
    }
    std::string operator()(const decision::Wake& wake) const {
        return "wake(until: " + numberText(wake.until.seconds) + ")";
    }
    std::string operator()(const decision::Freeze&) const { return "freeze"; }
    std::string operator()(const decision::Refreeze&) const { return "refreeze"; }
    std::string operator()(const decision::MakeEfficient&) const { return "makeEfficient"; }
    std::string operator()(const decision::RestorePriority&) const { return "restorePriority"; }
};

struct ControlText {
    std::string operator()(const control::Frozen& frozen) const {
        return "frozen(since: " + numberText(frozen.since.seconds) +
               ", lastWake: " + (frozen.lastWake ? numberText(frozen.lastWake->seconds) : "nil") + ")";
    }
    std::string operator()(const control::Waking& waking) const {
        return "waking(until: " + numberText(waking.until.seconds) +
               ", frozenSince: " + numberText(waking.frozenSince.seconds) + ")";
    }
    std::string operator()(const control::Running&) const { return "running"; }
};

} // namespace

std::string_view rawValue(OptimizerMode mode) {
    switch (mode) {
    case OptimizerMode::balanced: return "balanced";
    case OptimizerMode::focus: return "focus";
    }
    return {};
}

std::optional<OptimizerMode> optimizerMode(std::string_view rawValue) {
    return caseWithRawValue(rawValue, allOptimizerModes);
}

std::string_view label(OptimizerMode mode) {
    switch (mode) {
    case OptimizerMode::balanced: return "Balanced";
    case OptimizerMode::focus: return "Focus";
    }
    return {};
}

double OptimizerTuning::effectiveIdleMinutes() const {
    return mode == OptimizerMode::focus ? focusIdleMinutes : idleMinutes;
}

double OptimizerTuning::effectiveEfficiencyThreshold() const {
    return mode == OptimizerMode::focus ? focusEfficiencyThreshold : efficiencyThreshold;
}

std::string_view rawValue(Protection protection) {
    switch (protection) {
    case Protection::frontmost: return "frontmost";
    case Protection::playingAudio: return "playingAudio";
    case Protection::usingMicrophone: return "usingMicrophone";
    case Protection::showingVideo: return "showingVideo";
    case Protection::preventingSleep: return "preventingSleep";
    case Protection::recentlyLaunched: return "recentlyLaunched";
    case Protection::neverTouch: return "neverTouch";
    case Protection::essential: return "essential";
    }
    return {};
}

std::optional<Protection> protection(std::string_view rawValue) {
    return caseWithRawValue(rawValue, allProtections);
}

bool isFrozen(const ControlState& control) {
    return std::holds_alternative<control::Frozen>(control);
}

std::string_view rawValue(ThawReason reason) {
    switch (reason) {
    case ThawReason::opened: return "opened";
    case ThawReason::alwaysOn: return "alwaysOn";
    case ThawReason::protected_: return "protected";
    case ThawReason::optimizerOff: return "optimizerOff";
    }
    return {};
}

std::optional<ThawReason> thawReason(std::string_view rawValue) {
    return caseWithRawValue(rawValue, allThawReasons);
}

std::vector<Decision> decide(AppTier tier, const AppObservation& observation, const OptimizerTuning& tuning,
                             bool enabled, Date now) {
    if (!enabled)
        return release(observation, ThawReason::optimizerOff);
    if (observation.isFrontmost)
        return release(observation, ThawReason::opened);
    const auto answer = std::visit(InBackground{tier, observation, tuning, now}, observation.control);
    return answer ? std::vector{*answer} : std::vector<Decision>();
}

ControlState controlAfter(const Decision& decision, const ControlState& control, Date now) {
    return std::visit(Transition{now}, decision, control);
}

std::string toString(const Decision& decision) {
    return std::visit(DecisionText{}, decision);
}

std::string toString(const std::vector<Decision>& decisions) {
    std::string text;
    for (const auto& decision : decisions)
        text += (text.empty() ? "" : ", ") + toString(decision);
    return "[" + text + "]";
}

std::string toString(const ControlState& control) {
    return std::visit(ControlText{}, control);
}

} // namespace tindra
