#include "Kestrio/Activity/BrowserAlongside.h"

#include "Kestrio/Activity/MediaDomains.h"
#include "Kestrio/Base/Text.h"
#include "Kestrio/Classification/TextTools.h"

#include <algorithm>
#include <cmath>

namespace kestrio {
namespace {

/// Browsers and window systems do not agree to the point where a window's frame ends.
constexpr double boundsTolerance = 6.0;

bool areClose(double a, double b) {
    return std::abs(a - b) <= boundsTolerance;
}

bool areClose(const Rectangle& a, const Rectangle& b) {
    return areClose(a.x, b.x) && areClose(a.y, b.y) && areClose(a.width, b.width) && areClose(a.height, b.height);
}

using Windows = std::vector<const BrowserWindow*>;

Windows publicWindows(const std::vector<BrowserWindow>& windows) {
    Windows found;
    for (const auto& window : windows)
        if (!window.isPrivate)
            found.push_back(&window);
    return found;
}

/// The public windows less the one that the main line records.
Windows otherWindows(const PlayingApplication& browser, const std::vector<BrowserWindow>& windows) {
    auto others = publicWindows(windows);
    if (browser.isFocused)
        std::erase(others, &windows.front());
    return others;
}

/// The first entry of the screens that is this window; absent for one that is not in sight.
std::optional<ScreenWindow> onScreen(const PlayingApplication& browser, const BrowserWindow& window,
                                     const std::vector<ScreenWindow>& screen) {
    const auto found = std::find_if(screen.begin(), screen.end(), [&](const ScreenWindow& entry) {
        return browser.pid == entry.pid && areClose(entry.bounds, window.bounds);
    });
    return found == screen.end() ? std::nullopt : std::optional(*found);
}

/// How well the window fits a video that is watched; 0 for not at all.
int watchedScore(const PlayingApplication& browser, const BrowserWindow& window,
                 const std::vector<ScreenWindow>& screen) {
    const auto entry = onScreen(browser, window, screen);
    if (!entry)
        return 0;
    return (isMediaPage(window.activeTab.url) ? 2 : 0) + (entry->isFrontOnDisplay ? 1 : 0);
}

/// The tab that is watched: the active one of the best window, of equals the one in front.
const BrowserTab* watchedTab(const PlayingApplication& browser, const Windows& others,
                             const std::vector<ScreenWindow>& screen) {
    const BrowserTab* best = nullptr;
    int bestScore = 0;
    for (const auto* window : others)
        if (const int score = watchedScore(browser, *window, screen); score > bestScore) {
            best = &window->activeTab;
            bestScore = score;
        }
    return best;
}

/// The tab that most likely sounds among those of media sites: the first active one, else the first. The front page
/// of a focused browser is the main line's, in whichever window it is open.
const BrowserTab* soundingMediaTab(const Windows& windows, const BrowserTab* front) {
    const BrowserTab* first = nullptr;
    for (const auto* window : windows)
        for (const auto& tab : window->tabs) {
            if ((front && text::equivalent(tab.url, front->url)) || !isMediaPage(tab.url))
                continue;
            if (text::equivalent(tab.url, window->activeTab.url))
                return &tab;
            if (!first)
                first = &tab;
        }
    return first;
}

const BrowserTab* soundingTab(const PlayingApplication& browser, const std::vector<BrowserWindow>& windows,
                              const Windows& others) {
    const auto* front = browser.isFocused ? &windows.front().activeTab : nullptr;
    if (const auto* tab = soundingMediaTab(publicWindows(windows), front))
        return tab;
    // A browser in the background plays something, even on a site that nobody listed.
    return browser.isFocused || others.empty() ? nullptr : &others.front()->activeTab;
}

ActivitySample sample(const PlayingApplication& browser, const BrowserTab& tab, SessionKind kind) {
    ActivitySample made;
    made.bundleID = browser.bundleID;
    made.appName = browser.appName;
    made.title = TitleCleaner::clean(tab.title);
    made.url = text::prefix(tab.url, longestRecordedURL);
    made.domain = URLTools::domain(tab.url);
    made.kind = kind;
    return made;
}

} // namespace

std::optional<ActivitySample> browserAlongside(const PlayingApplication& browser,
                                               const std::vector<BrowserWindow>& windows,
                                               const std::vector<ScreenWindow>& screen) {
    if (windows.empty())
        return std::nullopt;
    const auto others = otherWindows(browser, windows);
    if (browser.playsVideo) {
        if (const auto* tab = watchedTab(browser, others, screen))
            return sample(browser, *tab, SessionKind::watching);
        if (browser.isFocused)
            return std::nullopt; // the video is taken to be the front tab
    }
    if (browser.playsAudio)
        if (const auto* tab = soundingTab(browser, windows, others))
            return sample(browser, *tab, SessionKind::listening);
    return std::nullopt;
}

} // namespace kestrio
