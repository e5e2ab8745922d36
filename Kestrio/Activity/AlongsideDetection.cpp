#include "Kestrio/Activity/AlongsideDetection.h"

#include "Kestrio/Base/Text.h"
#include "Kestrio/Classification/TextTools.h"

#include <algorithm>

namespace kestrio {
namespace {

std::set<std::string> united(std::set<std::string> a, const std::set<std::string>& b) {
    a.insert(b.begin(), b.end());
    return a;
}

std::optional<RunningApplication> firstOf(const std::string& bundleID, const std::vector<RunningApplication>& running) {
    const auto found = std::find_if(running.begin(), running.end(),
                                    [&](const auto& application) { return application.bundleIdentifier == bundleID; });
    return found == running.end() ? std::nullopt : std::optional(*found);
}

bool isInFront(const RunningApplication& application, const std::optional<RunningApplication>& frontmost) {
    if (!frontmost)
        return false;
    if (application.processIdentifier && frontmost->processIdentifier)
        return application.processIdentifier == frontmost->processIdentifier;
    return application.bundleIdentifier == frontmost->bundleIdentifier; // not every window system tells of processes
}

/// A window in sight that keeps the display awake is watched, a sound from anywhere is heard; absent for neither.
std::optional<SessionKind> kind(const PlayingApplication& application, const std::vector<ScreenWindow>& screen) {
    const bool isVisible =
        std::any_of(screen.begin(), screen.end(), [&](const auto& window) { return application.pid == window.pid; });
    if (isVisible && application.playsVideo)
        return SessionKind::watching;
    return application.playsAudio ? std::optional(SessionKind::listening) : std::nullopt;
}

} // namespace

AlongsideEvidence AlongsideDetection::evidence(const std::optional<RunningApplication>& frontmost, bool allowWatching) {
    const auto audio = readers_.appsPlayingAudio();
    AlongsideEvidence found;
    if (allowWatching)
        found.appsPlayingVideo = readers_.appsKeepingDisplayAwake();
    found.detected = detectAlongside(frontmost, audio, found.appsPlayingVideo);
    return found;
}

std::vector<ActivitySample> AlongsideDetection::detectAlongside(const std::optional<RunningApplication>& frontmost,
                                                                const std::set<std::string>& audio,
                                                                const std::set<std::string>& video) {
    const auto candidates = united(audio, video);
    if (candidates.empty())
        return {};
    const auto screen = video.empty() ? std::vector<ScreenWindow>() : readers_.visibleWindows();
    const auto running = readers_.workspace.runningApplications();
    std::vector<ActivitySample> detected;
    for (const auto& bundleID : candidates) {
        const auto application = firstOf(bundleID, running);
        if (!application)
            continue;
        const PlayingApplication playing{
            bundleID,
            text::withoutInvisibleMarks(application->localizedName.value_or(bundleID)),
            application->processIdentifier,
            isInFront(*application, frontmost),
            video.contains(bundleID),
            audio.contains(bundleID),
        };
        const bool isBrowser = readers_.browsers.isReadable(bundleID);
        if (auto sample = isBrowser ? ofBrowser(playing, screen) : ofApplication(playing, screen))
            detected.push_back(std::move(*sample));
    }
    return detected;
}

std::optional<ActivitySample> AlongsideDetection::ofBrowser(const PlayingApplication& browser,
                                                            const std::vector<ScreenWindow>& screen) {
    const auto windows = readers_.browsers.windows(browser.bundleID);
    return windows ? browserAlongside(browser, *windows, screen) : std::nullopt;
}

std::optional<ActivitySample> AlongsideDetection::ofApplication(const PlayingApplication& application,
                                                                const std::vector<ScreenWindow>& screen) {
    if (application.isFocused)
        return std::nullopt; // the main line's business
    const auto playing = kind(application, screen);
    if (!playing)
        return std::nullopt;
    const auto title = application.pid ? readers_.windowTitles.focusedWindowTitle(*application.pid) : std::nullopt;
    ActivitySample made;
    made.bundleID = application.bundleID;
    made.appName = application.appName;
    made.title = TitleCleaner::removingAppName(TitleCleaner::clean(title.value_or("")), application.appName);
    if (text::equivalent(made.title, made.appName))
        made.title.clear();
    made.kind = *playing;
    return made;
}

} // namespace kestrio
