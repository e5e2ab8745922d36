#include "Kestrio/Optimizer/Protections.h"

#include "Kestrio/Platform/SleepInhibitors.h"

namespace kestrio {

using tindra::Protection;

const std::set<std::string>& sleepAssertionTypes() {
    static const std::set<std::string> types{assertion::preventUserIdleSystemSleep, assertion::preventSystemSleep,
                                             assertion::noIdleSleep};
    return types;
}

const AppIDs& builtInEssentials() {
    static const AppIDs essentials{
        "com.apple.finder",
        "com.apple.dock",
        "com.apple.systemuiserver",
        "com.apple.controlcenter",
        "com.apple.notificationcenterui",
        "com.apple.Spotlight",
        "com.apple.systempreferences",
        "com.apple.ActivityMonitor",
        "com.apple.loginwindow",
        "com.apple.screencaptureui",
        // Terminals and development tools, which may be running long jobs unseen.
        "com.apple.Terminal",
        "com.googlecode.iterm2",
        "dev.warp.Warp-Stable",
        "com.mitchellh.ghostty",
        "io.alacritty",
        "net.kovidgoyal.kitty",
        "com.github.wez.wezterm",
        "com.docker.docker",
        "com.apple.dt.Xcode",
    };
    return essentials;
}

std::optional<Protection> protectionOf(const std::string& appID, std::optional<Date> launched,
                                       const ProtectionFacts& facts) {
    if (facts.front && *facts.front == appID)
        return Protection::frontmost;
    if (facts.essentials.contains(appID))
        return Protection::essential;
    if (facts.neverTouch.contains(appID))
        return Protection::neverTouch;
    if (facts.media.recording.contains(appID))
        return Protection::usingMicrophone;
    if (facts.media.playing.contains(appID))
        return Protection::playingAudio;
    if (facts.media.keepDisplayAwake.contains(appID))
        return Protection::showingVideo;
    if (facts.media.keepAwake.contains(appID))
        return Protection::preventingSleep;
    if (launched && facts.now - *launched < launchGrace)
        return Protection::recentlyLaunched;
    return std::nullopt;
}

} // namespace kestrio
