// What the alongside detection stands on, in scripted form: tests say who makes sound, who keeps a display awake, what
// stands on the screens and what the browsers show.
#pragma once

#include "Kestrio/Activity/AlongsideDetection.h"
#include "Kestrio/Platform/Testing/ScriptedBrowserReader.h"
#include "Kestrio/Platform/Testing/ScriptedDesktop.h"

#include <fmt/format.h>

namespace kestrio {

inline BrowserTab tab(const std::string& url, const std::string& title) {
    return {url, title, false};
}

/// A window whose first tab is the active one.
inline BrowserWindow browserWindow(const Rectangle& bounds, std::vector<BrowserTab> tabs) {
    return {bounds, false, tabs.empty() ? BrowserTab() : tabs.front(), tabs};
}

inline BrowserWindow privateWindow(BrowserWindow window) {
    window.isPrivate = window.activeTab.isPrivate = true;
    for (auto& tab : window.tabs)
        tab.isPrivate = true;
    return window;
}

/// The windows in the text in which a browser tells of them.
inline std::string browserText(const std::vector<BrowserWindow>& windows) {
    std::string text;
    for (const auto& window : windows) {
        std::string urls, titles;
        for (const auto& tab : window.tabs) {
            const bool isFirst = &tab == &window.tabs.front();
            urls += (isFirst ? "" : "\x1D") + tab.url;
            titles += (isFirst ? "" : "\x1D") + tab.title;
        }
        text += fmt::format("{}{}\x1F{}\x1F{}\x1F{}\x1F{}\x1F{}\x1F{}\x1F{}\x1F{}", text.empty() ? "" : "\x1E",
                            window.bounds.x, window.bounds.y, window.bounds.x + window.bounds.width,
                            window.bounds.y + window.bounds.height, window.isPrivate ? "incognito" : "normal",
                            window.activeTab.url, window.activeTab.title, urls, titles);
    }
    return text;
}

inline std::string described(const ActivitySample& sample) {
    return fmt::format("{} {} ({}) \"{}\"{}{}", label(sample.kind), sample.bundleID, sample.appName, sample.title,
                       sample.url ? " " + *sample.url : "", sample.domain ? " of " + *sample.domain : "");
}

struct AlongsideBench {
    std::set<std::string> audio;
    std::set<std::string> video;
    std::vector<ScreenWindow> screen;
    ScriptedWorkspace& workspace;
    ScriptedWindowTitles& titles;
    ScriptedBrowserReader reader;
    BrowserInspector browsers;
    int audioQuestions = 0;
    int videoQuestions = 0;
    int screenQuestions = 0;
    AlongsideDetection detection{{workspace, titles, browsers,
                                  [this] {
                                      ++audioQuestions;
                                      return audio;
                                  },
                                  [this] {
                                      ++videoQuestions;
                                      return video;
                                  },
                                  [this] {
                                      ++screenQuestions;
                                      return screen;
                                  }}};

    /// All must outlive the bench. Firefox can be read here, beside the browsers that can be everywhere.
    AlongsideBench(const Clock& clock, ScriptedWorkspace& desktop, ScriptedWindowTitles& windowTitles)
        : workspace(desktop), titles(windowTitles), browsers(reader, clock, {"org.mozilla.firefox"}) {}

    void run(const std::string& id, const std::string& name, pid_t pid, const std::string& title = "") {
        workspace.running.push_back({id, name, pid});
        if (!title.empty())
            titles.titles[pid] = title;
    }

    void open(const std::string& browser, const std::vector<BrowserWindow>& windows) {
        reader.allWindows[browser] = browserText(windows);
    }

    RunningApplication running(const std::string& id) const {
        for (const auto& application : workspace.running)
            if (application.bundleIdentifier == id)
                return application;
        return {};
    }
};

} // namespace kestrio
