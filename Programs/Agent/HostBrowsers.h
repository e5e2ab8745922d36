// What this host's browsers show: the readers, the best one first, and the inspector that asks them.
//
// Made, used and dropped on the monitor's queue. A reader that knows of a private window passes on no more than that it
// is one.
#pragma once

#include "Kestrio/Activity/BrowserInspector.h"
#include "Kestrio/Base/Signal.h"
#include "Kestrio/Link/Background.h"
#include "Kestrio/Platform/Linux/AccessibilityBrowserReader.h"
#include "Kestrio/Platform/Linux/BridgeBrowserReader.h"
#include "Kestrio/Platform/Linux/BusConnection.h"
#include "Kestrio/Platform/Linux/PreferringBrowserReader.h"
#include "Kestrio/Platform/Linux/ResponsibleProcess.h"
#include "Kestrio/Platform/Linux/TitledBrowserReader.h"
#include "Programs/Agent/HostDesktop.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace kestrio {

class HostBrowsers {
public:
    /// All must outlive this.
    HostBrowsers(LoopQueue& queue, const Clock& clock, HostDesktop& desktop, const TabBoard& board,
                 const Environment& environment)
        : desktop_(desktop),
          board_(board),
          bridge_(board, BridgeBrowserReader::focusPatience, titledWindows(desktop.windows, applicationOf_)),
          accessibility_(queue, clock,
                         {BusConnection::address(BusConnection::Bus::session).value_or(""),
                          environment("XDG_RUNTIME_DIR").value_or("")},
                         applicationOf_, titledWindows(desktop.windows, applicationOf_), [this] { settled_.emit(); }),
          inspector(chain_, clock, AccessibilityBrowserReader::readable()) {}

    /// The front tab, as the inspector answers; takes note of whether the browser's pages could be read without the
    /// extension.
    std::optional<BrowserTab> activeTab(const std::string& id) {
        auto tab = inspector.activeTab(id);
        const std::lock_guard guard(lock_);
        if (accessibility_.isReadable(id))
            accessible_.insert(id);
        else
            accessible_.erase(id);
        return tab;
    }

    /// Of each browser that is read in one way at least, in which. Any thread.
    std::vector<BrowserReading> readings() const {
        std::map<std::string, BrowserReading> all;
        for (const auto& id : board_.browsers())
            all[id].isConnected = true;
        {
            const std::lock_guard guard(lock_);
            for (const auto& id : accessible_)
                all[id].isAccessible = true;
        }
        std::vector<BrowserReading> readings;
        for (auto& [id, reading] : all) {
            reading.bundleIdentifier = id;
            readings.push_back(std::move(reading));
        }
        return readings;
    }

    /// Calls the receiver when a page that was uncertain at the last question has become certain.
    Subscription observe(std::function<void()> receiver) { return settled_.subscribe(std::move(receiver)); }

    /// Whether the browser sounds from tabs in the background alone, as far as it tells. Chromium keeps the display
    /// awake for those as it does for a video.
    bool soundsOutOfSight(const std::string& id) const {
        const auto windows = board_.windows(id);
        bool isAnyHeard = false;
        for (const auto& window : windows.value_or(TabBoard::Windows()))
            for (const auto& tab : window.tabs) {
                if (tab.isAudible && tab.isActive)
                    return false;
                isAnyHeard |= tab.isAudible;
            }
        return isAnyHeard;
    }

private:
    std::optional<std::string> applicationOf(pid_t process) {
        for (const auto& application : desktop_.workspace.runningApplications())
            if (application.processIdentifier == process)
                return application.bundleIdentifier;
        return desktop_.identity.identify({process, ""}).bundleIdentifier;
    }

    bool isConnected(const std::string& id) const {
        const auto connected = board_.browsers();
        return std::ranges::find(connected, id) != connected.end();
    }

    /// Whoever asks a browser that is stopped waits for nothing, as long as it may take.
    bool isStopped(const std::string& id) {
        for (const auto& application : desktop_.workspace.runningApplications())
            if (application.bundleIdentifier == id && application.processIdentifier &&
                isProcessStopped(*application.processIdentifier))
                return true;
        return false;
    }

    HostDesktop& desktop_;
    const TabBoard& board_;
    mutable std::mutex lock_; // guards `accessible_` alone
    std::set<std::string> accessible_;
    Signal<> settled_;
    const ApplicationOfProcess applicationOf_ = [this](pid_t process) { return applicationOf(process); };
    BridgeBrowserReader bridge_;
    AccessibilityBrowserReader accessibility_;
    TitledBrowserReader titled_{titledWindows(desktop_.windows, applicationOf_),
                                [this](const std::string& id) { return !accessibility_.knowsPrivacy(id); }};
    PreferringBrowserReader chain_{{{bridge_, [this](const std::string& id) { return isConnected(id); }},
                                    {accessibility_, [this](const std::string& id) { return !isStopped(id); }},
                                    {titled_}}};

public:
    BrowserInspector inspector;
};

} // namespace kestrio
