// The tab "Optimization": the switch, how the optimizer behaves, what it may do to each application and when, what it
// never touches, its alerts, and the log of how the machine performs. Pure.
//
// What is shown is what the settings hold; what the person does to it is worked out here and carried out by the agent,
// whose optimizer owns those values.
#pragma once

#include "Kestrio/Base/Calendar.h"
#include "Kestrio/Pages/Settings/SettingRow.h"
#include "Kestrio/Resources/ResourceStore.h"
#include "TindraCore/Decisions.h"
#include "TindraCore/Rules.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

namespace kestrio {

/// What the person told the optimizer, as it is stored.
struct OptimizerChoices {
    bool isEnabled = false;
    tindra::OptimizerTuning tuning = {};
    tindra::OptimizerRules rules = {};
    friend bool operator==(const OptimizerChoices&, const OptimizerChoices&) = default;
};

/// What cannot be read counts as never chosen.
OptimizerChoices storedOptimizerChoices(const KeyValueStore& settings);

/// An application that the person can choose for.
struct KnownApp {
    std::string id;
    std::string name;
    friend bool operator==(const KnownApp&, const KnownApp&) = default;
};

namespace OptimizationSettings {

/// The applications that run, and those that a rule, a schedule or the list speaks of, by name. `names` has those of
/// applications that do not run; one without a name goes by its identifier.
std::vector<KnownApp> knownApps(std::vector<KnownApp> running, const tindra::OptimizerRules& rules,
                                const std::map<std::string, std::string>& names, const std::string& locale);

// The rows that stand for no stored value of their own.
inline constexpr auto mode = "mode";
inline constexpr auto freezeAfter = "freezeAfter";
inline constexpr auto freezeAfterInFocus = "freezeAfterInFocus";
inline constexpr auto checkEvery = "checkEvery";
inline constexpr auto stayAwake = "stayAwake";
inline constexpr auto efficiencyCores = "efficiencyCores";
inline constexpr auto addNeverTouch = "addNeverTouch";
inline constexpr auto logSize = "logSize";
inline constexpr auto logFile = "logFile";

/// The file of the log, in the folder with the data.
inline constexpr auto resourceLogName = ResourceStore::fileName;

// The sections, in the order in which they stand.
SettingsSection mainSwitch(const OptimizerChoices& choices);
SettingsSection behaviour(const tindra::OptimizerTuning& tuning);
/// A row for each application, by its identifier.
SettingsSection eachApp(const std::vector<KnownApp>& apps, const tindra::OptimizerRules& rules);
/// Of the schedules the head alone.
SettingsSection schedules();
/// A row for each application on the list, by its identifier, and one that adds another.
SettingsSection neverTouch(const std::vector<KnownApp>& apps, const tindra::OptimizerRules& rules);
SettingsSection alerts(const KeyValueStore& settings);
/// `logBytes` is the size of the log; absent while there is none.
SettingsSection log(const KeyValueStore& settings, std::optional<std::uint64_t> logBytes, const Calendar& calendar);

inline constexpr auto addSchedule = "Add Schedule";
inline constexpr auto noApps = "Apps appear here while they run.";
inline constexpr std::size_t showLogButton = 0; // of the log file's row
inline constexpr std::size_t deleteLogButton = 1;
SettingsQuestion deleteLogQuestion();

/// A picker of the three tiers; an application that nobody chose for is always on.
SettingPicker tierPicker(tindra::AppTier current);

/// The tuning after its row of this identifier was set; unchanged for another identifier or a value of another kind.
tindra::OptimizerTuning changed(tindra::OptimizerTuning tuning, std::string_view row, const SettingValue& value);

} // namespace OptimizationSettings
} // namespace kestrio
