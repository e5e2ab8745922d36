#include "Fuzz/Fuzz.h"
#include "Kestrio/Activity/BrowserAlongside.h"
#include "Kestrio/Activity/BrowserTexts.h"
#include "Kestrio/Base/Text.h"

#include <algorithm>

namespace kestrio {
namespace {

/// Each window stands on the screen where the browser says, unless its title asks for another place.
std::vector<ScreenWindow> screenOf(const std::vector<BrowserWindow>& windows, pid_t pid) {
    std::vector<ScreenWindow> screen;
    for (const auto& window : windows) {
        auto bounds = window.bounds;
        bounds.x += static_cast<double>(window.activeTab.title.size() % 9);
        screen.push_back({pid, bounds, window.tabs.size() % 2 == 0});
    }
    return screen;
}

bool shows(const BrowserWindow& window, const std::string& url) {
    const auto isThere = [&](const BrowserTab& tab) { return text::prefix(tab.url, longestRecordedURL) == url; };
    return isThere(window.activeTab) || std::any_of(window.tabs.begin(), window.tabs.end(), isThere);
}

void check(const PlayingApplication& browser, const std::vector<BrowserWindow>& windows) {
    const auto found = browserAlongside(browser, windows, screenOf(windows, 7));
    if (!found)
        return;
    require(found->kind == SessionKind::watching ? browser.playsVideo : browser.playsAudio);
    require(text::characterCount(*found->url) <= longestRecordedURL);
    require(std::any_of(windows.begin(), windows.end(),
                        [&](const BrowserWindow& window) { return !window.isPrivate && shows(window, *found->url); }));
}

} // namespace
} // namespace kestrio

/// Whatever the windows of a browser are, what is told to play in it stands in one of them that is not private. In the
/// input "|", line ends and ";" stand for what separates fields, windows and tabs.
void kestrio::fuzz(std::string_view input) {
    std::string answer(input);
    std::replace(answer.begin(), answer.end(), '|', BrowserTexts::separator);
    std::replace(answer.begin(), answer.end(), '\n', BrowserTexts::betweenWindows);
    std::replace(answer.begin(), answer.end(), ';', BrowserTexts::betweenTabs);
    const auto windows = BrowserTexts::windows(answer);
    for (const bool isFocused : {false, true})
        for (const bool playsVideo : {false, true})
            for (const bool playsAudio : {false, true})
                check({"com.google.Chrome", "Google Chrome", 7, isFocused, playsVideo, playsAudio}, windows);
}
