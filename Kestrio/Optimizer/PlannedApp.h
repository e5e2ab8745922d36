// What a pass of the optimizer would do with one application now, and why. A plain value.
#pragma once

#include "Kestrio/Base/Date.h"
#include "TindraCore/Decisions.h"
#include "TindraCore/Rules.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kestrio {

struct PlannedApp {
    std::string id; // the bundle identifier
    std::string name;
    tindra::AppTier tier = tindra::AppTier::alwaysOn;
    tindra::OptimizerRules::Source source = tindra::source::Unchosen{}; // where the tier comes from
    std::optional<tindra::Protection> protection = {};
    /// Why the host would not have it stopped, as a clause with its full stop. Looked for only where it would be
    /// frozen, or is.
    std::optional<std::string> refusal = {};
    tindra::ControlState control = tindra::control::Running{};
    bool isSlowed = false;
    bool isManual = false;            // the person acted by hand, and the rules stay off it
    std::optional<Seconds> idle = {}; // since the person left it, else since it was opened
    double cpu = 0;                   // cores
    std::uint64_t footprint = 0;      // bytes
    std::vector<tindra::Decision> decisions = {};

    friend bool operator==(const PlannedApp&, const PlannedApp&) = default;
};

} // namespace kestrio
