// What plays on this host: who sounds, who keeps a display awake, what stands on the screens, and what comes of it.
// Made, used and dropped on the monitor's queue.
#pragma once

#include "Kestrio/Activity/AlongsideDetection.h"
#include "Kestrio/Activity/MediaInspector.h"
#include "Kestrio/Activity/ScreenInspector.h"
#include "Kestrio/Platform/Linux/ApplicationOwners.h"
#include "Kestrio/Platform/Linux/LinuxSleepInhibitors.h"
#include "Kestrio/Platform/Linux/PulseAudioUse.h"
#include "Kestrio/Platform/Linux/X11Screens.h"
#include "Kestrio/Shell/Launch.h"
#include "Programs/Agent/HostDesktop.h"

namespace kestrio {

class HostMedia {
public:
    /// All must outlive this.
    HostMedia(LoopQueue& queue, const Clock& clock, HostDesktop& desktop, BrowserInspector& browsers)
        : inhibitors_(queue, clock, inhibitorSetup(desktop)),
          screens_(desktop.connection, desktop.windows),
          owners_(desktop.workspace, desktop.identity),
          alongside({desktop.workspace, desktop.windowTitles, browsers, [this] { return inspector.appsPlayingAudio(); },
                     [this] { return inspector.apps(MediaInspector::displayAssertionTypes()); },
                     [this] { return screenInspector_.visibleWindows(); }}) {}

private:
    LinuxSleepInhibitors::Setup inhibitorSetup(HostDesktop& desktop) {
        auto setup = LinuxSleepInhibitors::setupOfThisSession();
        setup.x11 = &desktop.connection;
        setup.isAnythingPlaying = [this] { return !audio_.playing().empty(); };
        return setup;
    }

    PulseAudioUse audio_{{}};
    LinuxSleepInhibitors inhibitors_;
    X11Screens screens_;
    ScreenInspector screenInspector_{screens_};
    ApplicationOwners owners_;

public:
    MediaInspector inspector{audio_, inhibitors_,
                             [this](const ApplicationTrace& trace) { return owners_.bundleIdentifier(trace); },
                             bundleIdentifier};
    AlongsideDetection alongside;
};

} // namespace kestrio
