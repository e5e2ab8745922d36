// What the windows are made over: made once in the program's wiring, and handed on to every model. All of it belongs to
// the main queue and outlives the windows.
#pragma once

#include "Kestrio/Base/Calendar.h"
#include "Kestrio/Base/Clock.h"
#include "Kestrio/Link/AgentLink.h"
#include "Kestrio/Pages/Viewpoint.h"
#include "Kestrio/Platform/KeyValueStore.h"
#include "Kestrio/Reports/ReportStore.h"
#include "Kestrio/Shell/BrowserAccess.h"
#include "Kestrio/Shell/ClassificationSettings.h"

#include <functional>

namespace kestrio {

/// What the windows have the host do.
struct WindowHost {
    /// Starts the agent, which then says of itself that it runs. False when it cannot be started.
    std::function<bool()> startAgent = [] { return false; };
    /// Leads the person to where access to window titles is given, or says what to do.
    std::function<void()> grantAccessibility = [] {};
};

struct WindowParts {
    const Clock& clock;
    Queue& queue;
    const Calendar& calendar;
    KeyValueStore& settings; // tells of changes on the main queue
    ClassificationSettings& classification;
    AgentLink& agent;
    ReportStore& dashboard; // of the range that the dashboard shows
    BrowserAccess* browserAccess = nullptr;
    WindowHost host = {};

    Viewpoint viewpoint() const { return {clock.now(), calendar}; }
};

} // namespace kestrio
