// Which page of a browser is the one that plays, told from its windows and from what stands on the screens. The
// evidence is indirect: nobody says which tab makes the sound. Pure; any thread.
#pragma once

#include "Kestrio/Activity/BrowserTab.h"
#include "Kestrio/Activity/ScreenWindow.h"
#include "Kestrio/Model/Models.h"

#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace kestrio {

/// An application that makes sound or keeps a display awake.
struct PlayingApplication {
    std::string bundleID;
    std::string appName;      // without invisible marks
    std::optional<pid_t> pid; // absent where the window system does not tell: then none of its windows is on a screen
    bool isFocused = false;   // its front window is what the main line records
    bool playsVideo = false;  // keeps a display awake
    bool playsAudio = false;
};

/// What plays in a browser beside the main line: a watched window before a tab that sounds, and nothing of a private
/// window. `windows` and `screen` are ordered front to back.
std::optional<ActivitySample> browserAlongside(const PlayingApplication& browser,
                                               const std::vector<BrowserWindow>& windows,
                                               const std::vector<ScreenWindow>& screen);

} // namespace kestrio
