#include "Kestrio/Shell/AppModel.h"

#include "Kestrio/Base/Log.h"

namespace kestrio {

void AppModel::start() {
    if (std::exchange(started_, true))
        return;
    parts_.monitor.start();
    enableLaunchAtLoginOnFirstInstall();
    statusTimer_ = parts_.queue.every({.interval = pollInterval, .tolerance = pollTolerance}, [this] { pollStatus(); });
}

void AppModel::pollStatus() {
    if (std::exchange(polling_, true))
        return; // an observer asks in the middle of being told
    takeOver(parts_.monitor.published());
    polling_ = false;
}

void AppModel::takeOver(ActivityMonitor::Published published) {
    isAccessibilityGranted_.set(published.windowTitlesGranted);
    // What was published before the monitor heard of a pause would undo what the person was just told.
    if (published.pausesTaken >= pausesAsked_) {
        trackingState_.set(published.state);
        pausedUntil_.set(published.pausedUntil);
    }
    unsaved_.set(published.unsaved);
    if (*lookers_ == 0)
        return;
    live_.set(std::move(published.live));
    liveAlongside_.set(std::move(published.alongside));
}

void AppModel::pause(std::optional<Seconds> length) {
    const auto end = length ? parts_.clock.now() + *length : distantFuture;
    ++pausesAsked_;
    parts_.monitor.pause(end);
    trackingState_.set(TrackingState::paused);
    pausedUntil_.set(end);
}

void AppModel::resume() {
    // Which state follows is for the monitor to say, at its next publishing.
    ++pausesAsked_;
    parts_.monitor.pause(std::nullopt);
    pausedUntil_.set(std::nullopt);
}

void AppModel::setLaunchAtLogin(bool enabled) {
    if (const auto failure = enabled ? parts_.loginItem.enable() : parts_.loginItem.disable())
        logLine("Kestrio: launch at login change failed: " + *failure);
}

void AppModel::refreshBrowserPermissions() {
    if (parts_.browserAccess)
        parts_.browserAccess->refresh();
}

void AppModel::requestBrowserAccess(const BrowserApp& browser) {
    if (parts_.browserAccess)
        parts_.browserAccess->request(browser);
}

Subscription AppModel::showLive() {
    ++*lookers_;
    pollStatus();
    return Subscription([lookers = lookers_] { --*lookers; });
}

void AppModel::enableLaunchAtLoginOnFirstInstall() {
    // Once per person, ever, so that their later choice stands. A copy on trial does not even take note.
    constexpr auto key = "didConfigureLaunchAtLogin";
    if (!parts_.isInstalled || parts_.settings.boolean(key))
        return;
    parts_.settings.set(key, true);
    setLaunchAtLogin(true);
}

} // namespace kestrio
