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
#include "Kestrio/Platform/Linux/BrowserProcess.h"
#include "Kestrio/Platform/Linux/Browsers.h"
#include "Kestrio/Platform/Linux/BusConnection.h"
#include "Kestrio/Platform/Linux/PreferringBrowserReader.h"
#include "Kestrio/Platform/Linux/ResponsibleProcess.h"
#include "Kestrio/Platform/Linux/TitledBrowserReader.h"
#include "Programs/Agent/HostDesktop.h"

#include <algorithm>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace kestrio {

class HostBrowsers {
public:
    /// All must outlive this. `changed` is called on the queue when `readings` has become another answer.
    HostBrowsers(LoopQueue& queue, const Clock& clock, HostDesktop& desktop, const TabBoard& board,
                 const Environment& environment, std::function<void()> changed)
        : desktop_(desktop),
          board_(board),
          isWayland_(environment("WAYLAND_DISPLAY").has_value()),
          changed_(std::move(changed)),
          bridge_(board, BridgeBrowserReader::focusPatience, titledWindows(desktop.windows, applicationOf_)),
          accessibility_(queue, clock,
                         {BusConnection::address(BusConnection::Bus::session).value_or(""),
                          environment("XDG_RUNTIME_DIR").value_or("")},
                         applicationOf_, titledWindows(desktop.windows, applicationOf_), [this] { settled_.emit(); }),
          inspector(chain_, clock, AccessibilityBrowserReader::readable()) {
        tokens_.push_back(desktop.workspace.observe([this](WorkspaceNotice notice) {
            if (notice != WorkspaceNotice::activated)
                look();
        }));
        tokens_.push_back(board.observeBrowsers([&queue, weak = std::weak_ptr(self_)] {
            queue.async([weak] {
                if (const auto self = weak.lock())
                    (*self)->look();
            });
        }));
        look();
    }

    /// The front tab, as the inspector answers; takes note of whether the browser's pages could be read without the
    /// extension.
    std::optional<BrowserTab> activeTab(const std::string& id) {
        auto tab = inspector.activeTab(id);
        if (!knownBrowser(id))
            return tab;
        const bool isReadable = accessibility_.isReadable(id);
        const auto known = isAccessible_.find(id);
        if (known == isAccessible_.end() || known->second != isReadable) {
            isAccessible_[id] = isReadable;
            look();
        }
        return tab;
    }

    /// How each browser that runs is read, as it was last looked at. Any thread.
    std::vector<BrowserReading> readings() const {
        const std::lock_guard guard(lock_);
        return readings_;
    }

    /// Looks at all that run, also at those that were never in front since they do.
    void examine() {
        look();
        for (const auto& reading : readings())
            if (!reading.isConnected && !isAccessible_.contains(reading.bundleIdentifier))
                activeTab(reading.bundleIdentifier);
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
    /// The browsers that have a window. Where a window system tells of none or not of all, those that have a process.
    std::set<std::string> inUse() {
        std::set<std::string> found;
        if (isWayland_ || !desktop_.windows.hasServer())
            found = runningBrowsers(desktop_.identity);
        for (const auto& application : desktop_.workspace.runningApplications())
            if (application.bundleIdentifier && knownBrowser(*application.bundleIdentifier))
                found.insert(*application.bundleIdentifier);
        return found;
    }

    void look() {
        const auto connected = board_.browsers();
        auto running = inUse();
        running.insert(connected.begin(), connected.end());
        std::erase_if(isAccessible_, [&](const auto& entry) { return !running.contains(entry.first); });
        std::vector<BrowserReading> found;
        for (const auto& id : running)
            found.push_back({id, name(id), std::ranges::find(connected, id) != connected.end(), isAccessible(id)});
        {
            const std::lock_guard guard(lock_);
            if (std::exchange(readings_, found) == found)
                return;
        }
        changed_();
    }

    std::string name(const std::string& id) {
        if (auto installed = desktop_.identity.name(id))
            return *installed;
        const auto* const known = knownBrowser(id);
        return known ? std::string(known->name) : id;
    }

    bool isAccessible(const std::string& id) const {
        const auto found = isAccessible_.find(id);
        return found != isAccessible_.end() && found->second;
    }

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
    const bool isWayland_;
    const std::function<void()> changed_;
    std::map<std::string, bool> isAccessible_; // of those that run, as far as they were looked at
    mutable std::mutex lock_;                  // guards `readings_` alone
    std::vector<BrowserReading> readings_;
    std::vector<Subscription> tokens_;
    std::shared_ptr<HostBrowsers*> self_ = std::make_shared<HostBrowsers*>(this); // work on the way holds it weakly
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
