// How the faces see the background: one object on the main queue that starts the recorders in their order, polls what
// they publish, and tells its observers only what changed.
#pragma once

#include "Kestrio/Activity/ActivityMonitor.h"
#include "Kestrio/Base/Observable.h"
#include "Kestrio/Base/Queue.h"
#include "Kestrio/Platform/LoginItem.h"
#include "Kestrio/Shell/BrowserAccess.h"

namespace kestrio {

class AppModel {
public:
    static constexpr Seconds pollInterval{2.0};
    static constexpr Seconds pollTolerance{0.5};

    /// All must outlive the model. `queue` is the main queue.
    struct Parts {
        const Clock& clock;
        Queue& queue;
        ActivityMonitor& monitor;
        KeyValueStore& settings;
        LoginItem& loginItem;
        /// Whether this copy of the program is one that stays, and so may start itself at login.
        bool isInstalled = false;
        /// Which browsers may be read; null where nothing reads them.
        BrowserAccess* browserAccess = nullptr;
    };

    explicit AppModel(Parts parts) : parts_(parts) {}

    /// Starts everything, in order. Only the first call does anything.
    void start();

    /// Takes over what the monitor published: every two seconds, and at once where a face cannot wait.
    void pollStatus();

    /// Pauses the recording for so long, or until somebody resumes it. The state answers at once.
    void pause(std::optional<Seconds> length);
    void resume();

    /// A failure is a line in the log and has no other effect.
    void setLaunchAtLogin(bool enabled);

    /// Reads anew whether each installed browser may be read. Does not wait.
    void refreshBrowserPermissions();

    /// Does what is needed to read a browser that the person picked. Does not wait.
    void requestBrowserAccess(const BrowserApp& browser);

    /// Open sessions are taken over only while somebody looks: each holder of the result is one who does.
    Subscription showLive();

    const Observable<TrackingState>& trackingState() const { return trackingState_; }
    const Observable<std::optional<Date>>& pausedUntil() const { return pausedUntil_; }
    const Observable<bool>& isAccessibilityGranted() const { return isAccessibilityGranted_; }
    const Observable<std::size_t>& unsaved() const { return unsaved_; }
    /// Empty before the first refresh.
    const Observable<std::vector<BrowserPermission>>& browserPermissions() const {
        return parts_.browserAccess ? parts_.browserAccess->permissions() : noBrowserPermissions_;
    }
    /// As they were when somebody last looked.
    const Observable<std::optional<LiveActivity>>& live() const { return live_; }
    const Observable<std::vector<LiveActivity>>& liveAlongside() const { return liveAlongside_; }

    const Clock& clock() const { return parts_.clock; }
    Queue& queue() const { return parts_.queue; }

private:
    void takeOver(ActivityMonitor::Published published);
    void enableLaunchAtLoginOnFirstInstall();

    const Parts parts_;
    bool started_ = false;
    bool polling_ = false;
    std::uint64_t pausesAsked_ = 0;
    Subscription statusTimer_;
    std::shared_ptr<int> lookers_ = std::make_shared<int>(0);

    Observable<TrackingState> trackingState_{TrackingState::tracking};
    Observable<std::optional<Date>> pausedUntil_;
    Observable<bool> isAccessibilityGranted_{false};
    Observable<std::size_t> unsaved_{0};
    Observable<std::optional<LiveActivity>> live_;
    Observable<std::vector<LiveActivity>> liveAlongside_;
    const Observable<std::vector<BrowserPermission>> noBrowserPermissions_;
};

} // namespace kestrio
