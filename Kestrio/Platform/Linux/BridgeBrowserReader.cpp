#include "Kestrio/Platform/Linux/BridgeBrowserReader.h"

#include <fmt/format.h>

namespace kestrio {
namespace {

constexpr char betweenFields = '\x1F';
constexpr char betweenWindows = '\x1E';
constexpr char betweenTabs = '\x1D';

std::string joinedTabs(const BridgedWindow& window, std::string BridgedTab::*text) {
    std::string joined;
    for (const auto& tab : window.tabs) {
        if (&tab != &window.tabs.front())
            joined += betweenTabs;
        joined += tab.*text;
    }
    return joined;
}

std::string fields(const BridgedWindow& window, const BridgedTab& active) {
    const auto& bounds = window.bounds;
    return fmt::format("{1}{0}{2}{0}{3}{0}{4}{0}normal{0}{5}{0}{6}{0}{7}{0}{8}", betweenFields, bounds.x, bounds.y,
                       bounds.x + bounds.width, bounds.y + bounds.height, active.url, active.title,
                       joinedTabs(window, &BridgedTab::url), joinedTabs(window, &BridgedTab::title));
}

} // namespace

BridgeBrowserReader::BridgeBrowserReader(const TabBoard& board, Seconds patience)
    : board_(board), patience_(patience) {}

BrowserAnswer BridgeBrowserReader::frontTab(const std::string& bundleIdentifier) {
    const auto window = board_.focusedWindow(bundleIdentifier, patience_);
    if (!window)
        return board_.isConnected(bundleIdentifier) ? fmt::format("{1}{0}{0}incognito", betweenFields, privateAddress)
                                                    : std::string();
    const auto* tab = window->isTool ? nullptr : window->activeTab();
    return tab ? fmt::format("{1}{0}{2}{0}normal", betweenFields, tab->url, tab->title) : std::string();
}

BrowserAnswer BridgeBrowserReader::windows(const std::string& bundleIdentifier) {
    const auto windows = board_.windows(bundleIdentifier);
    std::string text;
    if (!windows)
        return text;
    for (const auto& window : *windows)
        if (const auto* active = window.isTool ? nullptr : window.activeTab()) {
            if (!text.empty())
                text += betweenWindows;
            text += fields(window, *active);
        }
    return text;
}

} // namespace kestrio
