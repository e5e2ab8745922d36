// The readers of real browsers as the agent has them without the tab bridge, before the display and the session bus
// that the environment names. Made, used and dropped on their queue.
#pragma once

#include "Kestrio/Platform/Linux/AccessibilityBrowserReader.h"
#include "Kestrio/Platform/Linux/ApplicationIdentity.h"
#include "Kestrio/Platform/Linux/Locations.h"
#include "Kestrio/Platform/Linux/PreferringBrowserReader.h"
#include "Kestrio/Platform/Linux/TitledBrowserReader.h"
#include "Kestrio/Platform/Linux/X11Windows.h"
#include "Kestrio/Platform/Linux/X11Workspace.h"

#include <optional>
#include <string>

namespace kestrio {

struct RealBrowserReaders {
    explicit RealBrowserReaders(LoopQueue& queue)
        : connection(queue, clock, processEnvironment("DISPLAY").value_or("")),
          workspace(queue, windows, identity),
          accessibility(queue, clock, places, applicationOf, titledWindows(windows, applicationOf),
                        [this] { ++settled; }) {}

    const SystemClock clock;
    int settled = 0; // pages that became certain after a question
    DesktopEntries entries{applicationFolders(processEnvironment), "en_US", clock};
    ApplicationIdentity identity{entries, IdentityCatalogue::builtIn()};
    X11Connection connection;
    X11Windows windows{connection};
    X11Workspace workspace;
    ApplicationOfProcess applicationOf = [this](pid_t process) -> std::optional<std::string> {
        for (const auto& application : workspace.runningApplications())
            if (application.processIdentifier == process)
                return application.bundleIdentifier;
        return identity.identify({process, ""}).bundleIdentifier;
    };
    const AccessibilityBrowserReader::Places places{BusConnection::address(BusConnection::Bus::session).value_or(""),
                                                    processEnvironment("XDG_RUNTIME_DIR").value_or("")};
    AccessibilityBrowserReader accessibility;
    TitledBrowserReader titled{titledWindows(windows, applicationOf)};
    TitledBrowserReader titledBehindAccessibility{titledWindows(windows, applicationOf), [this](const std::string& id) {
                                                      return !accessibility.knowsPrivacy(id);
                                                  }};
    PreferringBrowserReader chain{{{accessibility}, {titledBehindAccessibility}}};
};

} // namespace kestrio
