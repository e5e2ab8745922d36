// One application that the optimizer has under control. A plain value.
#pragma once

#include "Kestrio/Platform/ProcessTable.h"
#include "TindraCore/Decisions.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace kestrio {

struct ManagedApp {
    std::string id;   // the bundle identifier
    std::string name; // what the person reads
    pid_t pid = 0;    // the main process
    tindra::ControlState control = tindra::control::Running{};
    std::vector<ProcessKey> frozen;    // the processes that this program stopped
    std::vector<ProcessKey> slowed;    // the processes that it moved to the efficiency cores
    std::uint64_t frozenFootprint = 0; // bytes held when it was frozen
    bool isManual = false;             // the person acted by hand, and the automatic rules stay off it

    bool isRunning() const { return std::holds_alternative<tindra::control::Running>(control); }
    bool isFrozen() const { return tindra::isFrozen(control); }
    /// Stopped, about to be stopped again, or slowed.
    bool isHeld() const { return !isRunning() || !slowed.empty(); }

    friend bool operator==(const ManagedApp&, const ManagedApp&) = default;
};

/// By bundle identifier.
using ManagedApps = std::map<std::string, ManagedApp, std::less<>>;

} // namespace kestrio
