// The readers of this host's desktop, made for one queue and living on it.
#pragma once

#include "Kestrio/Activity/ActivityMonitor.h"
#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Platform/Linux/ApplicationIdentity.h"
#include "Kestrio/Platform/Linux/CombinedSessionEvents.h"
#include "Kestrio/Platform/Linux/DesktopEntries.h"
#include "Kestrio/Platform/Linux/DisplayPower.h"
#include "Kestrio/Platform/Linux/Locations.h"
#include "Kestrio/Platform/Linux/LogindSessionEvents.h"
#include "Kestrio/Platform/Linux/X11Connection.h"
#include "Kestrio/Platform/Linux/X11InputIdle.h"
#include "Kestrio/Platform/Linux/X11WindowTitles.h"
#include "Kestrio/Platform/Linux/X11Windows.h"
#include "Kestrio/Platform/Linux/X11Workspace.h"

namespace kestrio {

class HostDesktop {
public:
    /// Made and dropped in the queue's work. Queue and clock must outlive this.
    HostDesktop(LoopQueue& queue, const Clock& clock, const Environment& environment)
        : entries(applicationFolders(environment), messageLocale(environment), clock),
          identity(entries, IdentityCatalogue::builtIn()),
          connection(queue, clock, environment("DISPLAY").value_or("")),
          windows(connection),
          workspace(queue, windows, identity),
          windowTitles(windows),
          inputIdle(connection),
          displayPower(queue, inputIdle, x11DisplayPower(connection)),
          logind(queue, LogindSessionEvents::setupOfThisSession()),
          sessionEvents({&logind}, {[this](auto receiver) { return displayPower.observe(std::move(receiver)); }}) {}

    /// What the catalogue adds to the built-in sets.
    static ActivityMonitor::HostApplications hostApplications() {
        const auto members = [](IdentityRole role) {
            const auto& all = IdentityCatalogue::builtIn().members(role);
            return std::set<std::string>(all.begin(), all.end());
        };
        return {members(IdentityRole::lockScreen), members(IdentityRole::prompt)};
    }

    DesktopEntries entries;
    ApplicationIdentity identity;
    X11Connection connection;
    X11Windows windows;
    X11Workspace workspace;
    X11WindowTitles windowTitles;
    X11InputIdle inputIdle;
    DisplayPower displayPower;
    LogindSessionEvents logind;
    CombinedSessionEvents sessionEvents;
};

} // namespace kestrio
