// What plays on this host: who sounds, who keeps a display awake, what stands on the screens, and what comes of it.
// Made, used and dropped on the monitor's queue.
#pragma once

#include "Kestrio/Activity/AlongsideDetection.h"
#include "Kestrio/Activity/MediaInspector.h"
#include "Kestrio/Activity/ScreenInspector.h"
#include "Kestrio/Optimizer/Protections.h"
#include "Kestrio/Platform/Linux/ApplicationOwners.h"
#include "Kestrio/Platform/Linux/LinuxSleepInhibitors.h"
#include "Kestrio/Platform/Linux/PulseAudioUse.h"
#include "Kestrio/Platform/Linux/X11Screens.h"
#include "Programs/Agent/Agent.h"
#include "Programs/Agent/HostBrowsers.h"
#include "Programs/Agent/HostDesktop.h"

namespace kestrio {

class HostMedia {
public:
    /// All must outlive this.
    HostMedia(LoopQueue& queue, const Clock& clock, HostDesktop& desktop, HostBrowsers& browsers)
        : inhibitors_(queue, clock, inhibitorSetup(desktop)),
          screens_(desktop.connection, desktop.windows),
          owners_(desktop.workspace, desktop.identity),
          alongside({desktop.workspace, desktop.windowTitles, browsers.inspector,
                     [this] { return inspector.appsPlayingAudio(); },
                     [this, &browsers] {
                         auto all = inspector.apps(MediaInspector::displayAssertionTypes());
                         std::erase_if(all, [&](const auto& id) { return browsers.soundsOutOfSight(id); });
                         return all;
                     },
                     [this] { return screenInspector_.visibleWindows(); }}) {}

    /// What the optimizer needs to know.
    MediaUse use() {
        return {.recording = inspector.appsRecordingAudio(),
                .playing = inspector.appsPlayingAudio(),
                .keepDisplayAwake = inspector.apps(MediaInspector::displayAssertionTypes()),
                .keepAwake = inspector.apps(sleepAssertionTypes())};
    }

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
