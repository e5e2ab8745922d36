// Finds out what plays while the person does something else: a video on another screen, music in a tab out of sight.
// Turns what makes sound, what keeps a display awake, what stands on the screens and what the browsers show into at
// most one answer per application.
//
// Belongs to the monitor's queue, and holds it as long as the readers do. With nothing playing it asks for the sound
// and the displays kept awake, and for no more.
#pragma once

#include "Kestrio/Activity/AlongsideEvidence.h"
#include "Kestrio/Activity/BrowserAlongside.h"
#include "Kestrio/Activity/BrowserInspector.h"
#include "Kestrio/Platform/WindowTitles.h"
#include "Kestrio/Platform/Workspace.h"

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace kestrio {

class AlongsideDetection {
public:
    /// Where the facts come from; any of them may answer nothing. What is referred to must outlive the detection.
    struct Readers {
        Workspace& workspace;
        WindowTitles& windowTitles;
        BrowserInspector& browsers;
        std::function<std::set<std::string>()> appsPlayingAudio;        // bundle identifiers
        std::function<std::set<std::string>()> appsKeepingDisplayAwake; // bundle identifiers
        std::function<std::vector<ScreenWindow>()> visibleWindows;      // front to back
    };

    explicit AlongsideDetection(Readers readers) : readers_(std::move(readers)) {}

    /// What plays now. With `allowWatching` false only sound counts, and nobody is asked for anything else: the screen
    /// is locked or dark. `frontmost` is absent where nothing is in front, or nothing that the person can see.
    AlongsideEvidence evidence(const std::optional<RunningApplication>& frontmost, bool allowWatching);

    /// What of these applications' sound and video is not the main line's already, by the order of identifiers.
    std::vector<ActivitySample> detectAlongside(const std::optional<RunningApplication>& frontmost,
                                                const std::set<std::string>& audio, const std::set<std::string>& video);

private:
    std::optional<ActivitySample> ofBrowser(const PlayingApplication& browser, const std::vector<ScreenWindow>& screen);
    std::optional<ActivitySample> ofApplication(const PlayingApplication& application,
                                                const std::vector<ScreenWindow>& screen);

    Readers readers_;
};

} // namespace kestrio
