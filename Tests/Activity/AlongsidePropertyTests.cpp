// What holds for any desktop: whatever stands on the screens, is open in the browsers, sounds and plays.
#include "Kestrio/Activity/MediaDomains.h"
#include "Kestrio/Base/VirtualQueue.h"
#include "Tests/Activity/AlongsideBench.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <rapidcheck/gtest.h>

namespace kestrio {
namespace {

const std::vector<std::string> browserIDs{"com.brave.Browser", "com.google.Chrome", "org.mozilla.firefox"};
const std::vector<std::string> otherIDs{"app.zen-browser.zen", "com.spotify.client", "org.videolan.vlc"};

const std::string secret = "secret";

bool chance(int percent) {
    return *rc::gen::inRange(0, 100) < percent;
}

/// Few places, some of them almost the same, so that windows and screens meet and miss each other.
Rectangle place() {
    const double left = *rc::gen::element(0.0, 1920.0);
    const double off = *rc::gen::element(0.0, 0.0, 5.0, 6.0, 6.5, -6.0, -7.0);
    return {left + off, 0, 1920, 1080 + off};
}

BrowserTab page(int number, bool isPrivate) {
    const auto site = *rc::gen::element<std::string>("https://www.youtube.com/watch?v=", "https://www.netflix.com/",
                                                     "https://mail.example/", "about:", "");
    const auto mark = isPrivate ? secret : "page";
    const auto ending = chance(80) ? mark + std::to_string(number) : mark;
    return {site + ending, mark + " " + std::to_string(number), isPrivate};
}

struct Desktop {
    VirtualTime time{Date(1'700'000'000)};
    ScriptedWorkspace workspace;
    ScriptedWindowTitles titles;
    AlongsideBench bench{time, workspace, titles};
    std::map<std::string, std::vector<BrowserWindow>> windows;
    std::optional<RunningApplication> frontmost;

    Desktop() {
        pid_t pid = 10;
        for (const auto& ids : {browserIDs, otherIDs})
            for (const auto& id : ids) {
                if (chance(15))
                    continue;
                bench.run(id, id + " name", ++pid, *rc::gen::element<std::string>("", "A title", id + " name"));
                if (chance(50))
                    bench.audio.insert(id);
                if (chance(50))
                    bench.video.insert(id);
            }
        for (const auto& id : browserIDs)
            open(id);
        for (int i = *rc::gen::inRange(0, 8); i > 0; --i)
            bench.screen.push_back({*rc::gen::inRange<pid_t>(10, 18), place(), chance(40)});
        if (!workspace.running.empty() && chance(80))
            frontmost = *rc::gen::elementOf(workspace.running);
    }

    void open(const std::string& id) {
        int number = 0;
        for (int i = *rc::gen::inRange(0, 4); i > 0; --i) {
            const bool isPrivate = chance(30);
            std::vector<BrowserTab> tabs;
            for (int j = *rc::gen::inRange(1, 5); j > 0; --j)
                tabs.push_back(page(++number, isPrivate));
            auto window = browserWindow(place(), tabs);
            window.isPrivate = isPrivate;
            window.activeTab = *rc::gen::elementOf(tabs);
            windows[id].push_back(window);
        }
        bench.open(id, windows[id]);
    }

    std::vector<ActivitySample> detected(const std::set<std::string>& audio, const std::set<std::string>& video) {
        return bench.detection.detectAlongside(frontmost, audio, video);
    }
    std::vector<ActivitySample> detected() { return detected(bench.audio, bench.video); }

    bool isFocused(const std::string& id) const { return frontmost && frontmost->bundleIdentifier == id; }

    /// Those of the browser's windows that show what the sample tells, in the active tab or in any.
    std::vector<std::size_t> windowsWith(const ActivitySample& sample, bool onlyActive) const {
        std::vector<std::size_t> found;
        const auto& all = windows.at(sample.bundleID);
        for (std::size_t at = 0; at < all.size(); ++at) {
            const auto shows = [&](const BrowserTab& tab) {
                return tab.url == sample.url && tab.title == sample.title;
            };
            const bool showsActive = shows(all[at].activeTab);
            const bool showsAny = std::any_of(all[at].tabs.begin(), all[at].tabs.end(), shows);
            if (onlyActive ? showsActive : showsAny)
                found.push_back(at);
        }
        return found;
    }
};

bool isBrowser(const std::string& id) {
    return std::find(browserIDs.begin(), browserIDs.end(), id) != browserIDs.end();
}

template <class Set>
Set only(const Set& all, const std::string& id) {
    return all.contains(id) ? Set{id} : Set{};
}

RC_GTEST_PROP(AlongsideProperties, atMostOneSampleForEachApplicationAndInOrder, ()) {
    Desktop desktop;
    const auto samples = desktop.detected();
    for (std::size_t i = 1; i < samples.size(); ++i)
        RC_ASSERT(samples[i - 1].bundleID < samples[i].bundleID);
}

RC_GTEST_PROP(AlongsideProperties, nothingOfAPrivateWindowIsTold, ()) {
    Desktop desktop;
    for (const auto& sample : desktop.detected()) {
        RC_ASSERT(sample.title.find(secret) == std::string::npos);
        RC_ASSERT(sample.url.value_or("").find(secret) == std::string::npos);
    }
}

RC_GTEST_PROP(AlongsideProperties, everySampleHasItsEvidence, ()) {
    Desktop desktop;
    for (const auto& sample : desktop.detected()) {
        const bool isWatching = sample.kind == SessionKind::watching;
        RC_ASSERT((isWatching ? desktop.bench.video : desktop.bench.audio).contains(sample.bundleID));
        RC_ASSERT(isWatching || sample.kind == SessionKind::listening);
        RC_ASSERT(!sample.project);
        if (!isBrowser(sample.bundleID)) {
            RC_ASSERT(!desktop.isFocused(sample.bundleID));
            RC_ASSERT(!sample.url && !sample.domain);
            RC_ASSERT(sample.title != sample.appName);
        }
    }
}

RC_GTEST_PROP(AlongsideProperties, applicationsHaveNoInfluenceOnEachOther, ()) {
    Desktop desktop;
    std::vector<ActivitySample> apart;
    for (const auto& ids : {browserIDs, otherIDs})
        for (const auto& id : ids)
            for (const auto& sample : desktop.detected(only(desktop.bench.audio, id), only(desktop.bench.video, id)))
                apart.push_back(sample);
    std::sort(apart.begin(), apart.end(), [](const auto& a, const auto& b) { return a.bundleID < b.bundleID; });
    RC_ASSERT(desktop.detected() == apart);
}

RC_GTEST_PROP(AlongsideProperties, theOrderInWhichApplicationsAndScreensOfDifferentOnesStandDoesNotMatter, ()) {
    Desktop desktop;
    const auto before = desktop.detected();
    std::reverse(desktop.workspace.running.begin(), desktop.workspace.running.end());
    // Which application stands in front of which does not matter; the order of each one's own windows does.
    std::stable_sort(desktop.bench.screen.begin(), desktop.bench.screen.end(),
                     [](const auto& a, const auto& b) { return a.pid > b.pid; });
    RC_ASSERT(desktop.detected() == before);
    RC_ASSERT(desktop.detected() == before);
}

RC_GTEST_PROP(AlongsideProperties, aWatchedPageIsActiveInAWindowInSightThatIsNotTheMainLines, ()) {
    Desktop desktop;
    for (const auto& sample : desktop.detected()) {
        if (sample.kind != SessionKind::watching || !isBrowser(sample.bundleID))
            continue;
        const auto pid = desktop.bench.running(sample.bundleID).processIdentifier;
        const auto candidates = desktop.windowsWith(sample, true);
        RC_ASSERT(std::any_of(candidates.begin(), candidates.end(), [&](std::size_t at) {
            const auto& bounds = desktop.windows.at(sample.bundleID)[at].bounds;
            const bool isInSight =
                std::any_of(desktop.bench.screen.begin(), desktop.bench.screen.end(), [&](const auto& entry) {
                    return entry.pid == pid && std::abs(entry.bounds.x - bounds.x) <= 6 &&
                           std::abs(entry.bounds.height - bounds.height) <= 6;
                });
            return isInSight && !(at == 0 && desktop.isFocused(sample.bundleID));
        }));
    }
}

RC_GTEST_PROP(AlongsideProperties, whatAFocusedBrowserIsHeardPlayingIsAMediaPageThatIsNotInFront, ()) {
    Desktop desktop;
    for (const auto& sample : desktop.detected()) {
        if (sample.kind != SessionKind::listening || !isBrowser(sample.bundleID))
            continue;
        RC_ASSERT(!desktop.windowsWith(sample, false).empty());
        if (!desktop.isFocused(sample.bundleID))
            continue;
        RC_ASSERT(isMediaPage(sample.url.value_or("")));
        RC_ASSERT(sample.url != desktop.windows.at(sample.bundleID).front().activeTab.url);
        RC_ASSERT(!desktop.bench.video.contains(sample.bundleID));
    }
}

RC_GTEST_PROP(AlongsideProperties, aBrowserBehindThatSoundsIsSilentHereOnlyWithoutAPublicWindow, ()) {
    Desktop desktop;
    const auto samples = desktop.detected();
    for (const auto& [id, windows] : desktop.windows) {
        const bool runs = desktop.bench.running(id).processIdentifier.has_value();
        if (!runs || !desktop.bench.audio.contains(id) || desktop.isFocused(id))
            continue;
        const bool isTold = std::any_of(samples.begin(), samples.end(),
                                        [&id = id](const auto& sample) { return sample.bundleID == id; });
        const bool hasPublicWindow =
            std::any_of(windows.begin(), windows.end(), [](const auto& window) { return !window.isPrivate; });
        RC_ASSERT(isTold == hasPublicWindow);
    }
}

} // namespace
} // namespace kestrio
