// What a face may ask of the running agent's optimizer: how it stands, what it would do, and the person's actions.
//
// A part of `Background`; served by the agent on the session bus, and answered within this process for tests. Every
// call ends within `Background::callDeadline`, and may fail at any time. Applications are named by their bundle
// identifiers.
#pragma once

#include "Kestrio/Optimizer/PlannedApp.h"

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace kestrio {

/// An application under control.
struct HeldApp {
    std::string id;
    std::string name;
    pid_t pid = 0; // the main process
    tindra::ControlState control = tindra::control::Running{};
    std::int64_t frozen = 0;     // processes
    std::int64_t slowed = 0;     // processes
    std::uint64_t footprint = 0; // bytes held when it was frozen
    bool isManual = false;       // the person acted by hand, and the rules stay off it

    friend bool operator==(const HeldApp&, const HeldApp&) = default;
};

struct OptimizerStatus {
    bool isEnabled = false;
    tindra::OptimizerTuning tuning = {};
    tindra::OptimizerRules rules = {};
    std::vector<HeldApp> held = {}; // by bundle identifier

    friend bool operator==(const OptimizerStatus&, const OptimizerStatus&) = default;
};

nlohmann::ordered_json toJSON(const OptimizerStatus& status);
/// Absent when a field is missing or of another type: the agent is of another version.
std::optional<OptimizerStatus> optimizerStatusFromJSON(const nlohmann::ordered_json& json);

nlohmann::ordered_json toJSON(const std::vector<PlannedApp>& plan);
std::optional<std::vector<PlannedApp>> optimizerPlanFromJSON(const nlohmann::ordered_json& json);

class OptimizerLink {
public:
    /// Why an action could not be done, in words for the person; absent when it was done.
    using Failure = std::optional<std::string>;

    virtual ~OptimizerLink() = default;

    /// Absent when the agent does not answer.
    virtual std::optional<OptimizerStatus> status() = 0;
    /// What a pass would do now with each application; also while the optimizer is off.
    virtual std::optional<std::vector<PlannedApp>> plan() = 0;

    virtual Failure setEnabled(bool enabled) = 0;
    virtual Failure setTuning(const tindra::OptimizerTuning& tuning) = 0;
    /// All of them at once. For schedules and the never-touch list; takes effect at the next pass.
    virtual Failure setRules(const tindra::OptimizerRules& rules) = 0;

    /// An absent tier means that the person says nothing about the application any more.
    virtual Failure setTier(const std::string& appID, std::optional<tindra::AppTier> tier) = 0;
    /// For so many hours from now.
    virtual Failure setOverride(const std::string& appID, tindra::AppTier tier, double hours) = 0;
    virtual Failure removeOverride(const std::string& appID) = 0;

    // By hand.
    virtual Failure freeze(const std::string& appID) = 0;
    virtual Failure slow(const std::string& appID) = 0;
    virtual Failure resume(const std::string& appID) = 0;
    virtual Failure quit(const std::string& appID) = 0;
    virtual Failure resumeAll() = 0;
};

} // namespace kestrio
