// What must be done to one application now: `decide`, and the values that it takes and answers.
//
// Pure: no clock, no system, no state. The same arguments always give the same answer, for any arguments at all, on
// any thread. Whoever carries the decisions out brings the observation and applies `controlAfter`.
#pragma once

#include "TindraCore/Date.h"
#include "TindraCore/Rules.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace tindra {

enum class OptimizerMode { balanced, focus };
inline constexpr std::array allOptimizerModes{OptimizerMode::balanced, OptimizerMode::focus};

std::string_view rawValue(OptimizerMode mode);
/// Absent for a text that is not exactly one of the raw values.
std::optional<OptimizerMode> optimizerMode(std::string_view rawValue);
/// The words that a person reads.
std::string_view label(OptimizerMode mode);

/// The knobs of the optimizer. Nothing here is clamped; limits belong to the controls that set them.
struct OptimizerTuning {
    OptimizerMode mode = OptimizerMode::balanced; // selects the idle time and the efficiency threshold that count
    double idleMinutes = 10;                      // in the background before freezing, in `balanced` mode
    double focusIdleMinutes = 3;                  // the same in `focus` mode
    double checkEveryMinutes = 15;                // how long a `checkPeriodically` application stays frozen
    double wakeSeconds = 45;                      // how long it then runs
    bool useEfficiencyCores = true;               // whether busy background applications are moved at all
    double efficiencyThreshold = 0.1;             // in CPU cores, from which on one is moved in `balanced` mode

    double effectiveIdleMinutes() const;
    /// In CPU cores. `focus` mode has a fixed threshold of its own.
    double effectiveEfficiencyThreshold() const;

    friend bool operator==(const OptimizerTuning&, const OptimizerTuning&) = default;
};

/// Why an application must not be frozen now. The order is not that in which the reasons are looked for.
enum class Protection {
    frontmost,        // it is the application in front
    playingAudio,     // it plays sound
    usingMicrophone,  // it records sound
    showingVideo,     // it keeps the display from sleeping
    preventingSleep,  // it keeps the system from sleeping
    recentlyLaunched, // it started less than two minutes ago
    neverTouch,       // the person put it on the never-touch list
    essential,        // it is on the list of essential applications, or is this program
};
inline constexpr std::array allProtections{
    Protection::frontmost,       Protection::playingAudio,     Protection::usingMicrophone, Protection::showingVideo,
    Protection::preventingSleep, Protection::recentlyLaunched, Protection::neverTouch,      Protection::essential,
};

std::string_view rawValue(Protection protection);
/// Absent for a text that is not exactly one of the raw values.
std::optional<Protection> protection(std::string_view rawValue);

/// What the optimizer has done to an application.
namespace control {
/// Stopped.
struct Frozen {
    Date since;                   // when the freeze began; survives wakes
    std::optional<Date> lastWake; // when the latest wake ended; absent before the first
    friend bool operator==(const Frozen&, const Frozen&) = default;
};
/// Briefly running, to be stopped again.
struct Waking {
    Date until;
    Date frozenSince; // `since` of the freeze that this wake interrupts
    friend bool operator==(const Waking&, const Waking&) = default;
};
/// Not stopped.
struct Running {
    friend bool operator==(const Running&, const Running&) = default;
};
} // namespace control
using ControlState = std::variant<control::Frozen, control::Waking, control::Running>;

/// An application in a wake does not count as frozen.
bool isFrozen(const ControlState& control);

/// One application as seen at one tick.
struct AppObservation {
    std::string appID; // the bundle identifier
    bool isFrontmost = false;
    std::optional<Date> lastActive; // when the person last had it in front
    std::optional<Date> launched;
    std::optional<Protection> protection; // the first that applied
    ControlState control = control::Running{};
    bool isEfficient = false; // at least one of its processes has been moved to efficiency cores
    double cpu = 0;           // use of all its processes together, in cores fully busy

    friend bool operator==(const AppObservation&, const AppObservation&) = default;
};

/// Why a stopped application is resumed.
enum class ThawReason {
    opened,       // the person brought it to the front
    alwaysOn,     // its rule says that it must always run
    protected_,   // something now protects it; the raw value is "protected", which C++ keeps for itself
    optimizerOff, // the optimizer was switched off
};
inline constexpr std::array allThawReasons{ThawReason::opened, ThawReason::alwaysOn, ThawReason::protected_,
                                           ThawReason::optimizerOff};

std::string_view rawValue(ThawReason reason);
/// Absent for a text that is not exactly one of the raw values.
std::optional<ThawReason> thawReason(std::string_view rawValue);

/// One thing to do to an application.
namespace decision {
struct Thaw {
    ThawReason reason;
    friend bool operator==(const Thaw&, const Thaw&) = default;
};
struct Wake {
    Date until;
    friend bool operator==(const Wake&, const Wake&) = default;
};
struct Freeze {
    friend bool operator==(const Freeze&, const Freeze&) = default;
};
struct Refreeze {
    friend bool operator==(const Refreeze&, const Refreeze&) = default;
};
struct MakeEfficient {
    friend bool operator==(const MakeEfficient&, const MakeEfficient&) = default;
};
struct RestorePriority {
    friend bool operator==(const RestorePriority&, const RestorePriority&) = default;
};
} // namespace decision
using Decision = std::variant<decision::Thaw, decision::Wake, decision::Freeze, decision::Refreeze,
                              decision::MakeEfficient, decision::RestorePriority>;

/// What must be done to the application, in this order: two things at most, most often nothing, and that without
/// allocating. A value that reaches its threshold acts; a NaN never does.
std::vector<Decision> decide(AppTier tier, const AppObservation& observation, const OptimizerTuning& tuning,
                             bool enabled, Date now);

/// The state that an application is in once the decision has been carried out at `now`. A decision that does not
/// concern a state, such as a wake of an application that runs, leaves it as it is.
ControlState controlAfter(const Decision& decision, const ControlState& control, Date now);

/// Such as "[thaw(opened), restorePriority]" and "frozen(since: 0, lastWake: nil)": for tests and for looking at.
std::string toString(const Decision& decision);
std::string toString(const std::vector<Decision>& decisions);
std::string toString(const ControlState& control);

} // namespace tindra
