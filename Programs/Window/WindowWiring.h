// What the windows look at, wired to this host: the settings, the recorded sessions, the agent. Made on the main queue
// before the first window and dropped after the last.
#pragma once

#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Platform/Linux/AutostartLoginItem.h"
#include "Kestrio/Platform/Linux/Locations.h"
#include "Kestrio/Views/Window/WindowParts.h"
#include "Programs/Window/HostBrowserAccess.h"
#include "Programs/Window/SettingsRelay.h"
#include "Programs/Window/StoredArchive.h"
#include "Programs/Window/StoredHistory.h"
#include "Programs/Window/ZoneWatch.h"

#include <optional>

namespace kestrio {

class WindowWiring {
public:
    /// The queue must outlive the wiring. `busAddress` is that of the session bus; absent where there is none.
    WindowWiring(Queue& main, const Locations& locations, const std::optional<std::string>& busAddress);

    const WindowParts& parts() const { return parts_; }

private:
    static bool startAgent();
    void showInFiles(const std::optional<std::string>& busAddress, const std::filesystem::path& file);
    WindowHost host(Queue& main, const Locations& locations, const std::optional<std::string>& busAddress);
    ReportStore::Parts storeParts(Queue& main);
    void followTimeZone();

    const SystemClock clock_;
    ZoneWatch zone_;
    Calendar calendar_ = Calendar::current();
    SettingsRelay settings_;
    ClassificationSettings classification_;
    WorkerQueue agentQueue_{"Kestrio.agent"};
    AgentLink agent_;
    HostBrowserAccess browsers_;
    StoredHistory history_;
    StoredArchive archive_;
    WorkerQueue loadingQueue_{"Kestrio.reports"}; // dropped before what its work uses
    ReportStore dashboard_;
    ReportStore today_;
    AutostartLoginItem loginItem_;
    ArchiveLink archiveLink_;
    const WindowParts parts_;
    Subscription zoneLooks_;
};

} // namespace kestrio
