// Asks a running browser what its front tab is and what windows and tabs it has, and leaves one that refuses alone for
// a while. Also knows which applications are browsers, and how they sign the titles of their windows.
//
// Belongs to the monitor's queue and blocks as long as the reader does; the tables and `stripBrowserName` may be used
// from any thread. Every failure is an absent answer, and the caller goes by the window's title.
#pragma once

#include "Kestrio/Activity/BrowserTab.h"
#include "Kestrio/Base/Clock.h"
#include "Kestrio/Platform/BrowserReader.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace kestrio {

class BrowserInspector {
public:
    /// How long a browser that refused is not asked again: one failed question in half a minute, not one per tick.
    static constexpr Seconds retryInterval{30.0};

    /// The dialect in which a browser tells of itself.
    enum class Engine { chromium, arc, safari };

    /// The browsers that can be read, by bundle identifier.
    static const std::map<std::string, Engine, std::less<>>& scriptable();

    /// The browsers of which no more is known than the titles of their windows, unless this host can read them.
    static const std::set<std::string, std::less<>>& titleOnly();

    /// Whether the application is in either table.
    static bool isBrowser(std::string_view bundleID);

    /// `readableHere` names browsers beside `scriptable` that this host's reader can read. Reader and clock must
    /// outlive the inspector.
    BrowserInspector(BrowserReader& reader, const Clock& clock, std::set<std::string, std::less<>> readableHere = {});

    /// Whether the browser is asked at all: it is in `scriptable`, or this host can read it.
    bool isReadable(std::string_view bundleID) const;

    /// The active tab of the front window. Absent when the browser is not readable, is left alone after a refusal, or
    /// says nothing, and when the page has no address.
    std::optional<BrowserTab> activeTab(const std::string& bundleID);

    /// All windows, front to back. Absent under the same conditions, and for a browser without windows.
    std::optional<std::vector<BrowserWindow>> windows(const std::string& bundleID);

    /// The title of a window without the browser's name at its end, and without the profile's name behind that.
    /// `appName` is tried before the names that are known.
    static std::string stripBrowserName(std::string_view title, std::string_view appName);

private:
    using Question = BrowserAnswer (BrowserReader::*)(const std::string& bundleIdentifier);
    std::optional<std::string> ask(Question question, const std::string& bundleID);

    BrowserReader& reader_;
    const Clock& clock_;
    const std::set<std::string, std::less<>> readableHere_;
    std::map<std::string, Uptime> retryAfter_; // time awake: setting the clock back must not silence a browser for long
};

} // namespace kestrio
