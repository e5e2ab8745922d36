// The whole agent: the one place that wires the host's readers to the concerns, starts them in their order, and stops
// them so that nothing is lost.
#pragma once

#include "Kestrio/Link/Background.h"
#include "Kestrio/Platform/Linux/Locations.h"
#include "Programs/Agent/WrapSignals.h"

#include <functional>
#include <string>
#include <vector>

namespace kestrio {

/// What the bundle is called on hosts that have bundles; the name that settings are kept under.
inline constexpr auto bundleIdentifier = "dev.haldorvinter.Kestrio";

struct AgentOptions {
    /// The login item's mark on the command line.
    bool isLoginItem = false;
    /// Hears of every published change; for recording in the foreground.
    std::function<void(const AgentStatus&)> onChange = {};
    /// For tests that let the agent die at a chosen moment.
    WrapSignals wrapSignals = {};
};

/// Runs the agent on the calling thread, the program's first and so far only one, until SIGTERM, SIGINT or the end of
/// the session. Returns the exit status: 0 after an orderly stop and where an agent runs already, 1 when the sessions
/// store cannot be opened or there is no place to keep anything, each with a line on standard error.
int runAgent(const AgentOptions& options);

} // namespace kestrio
