// What the names of browser windows tell of their privacy. Pure functions; any thread.
#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace kestrio {

enum class WindowPrivacy {
    ordinary,
    isPrivate,
    unknown, // the name does not tell: nothing that would be wrong of a private window may be said of it
};

/// The browsers of the Gecko family on this host, by bundle identifier.
const std::set<std::string, std::less<>>& geckoBrowsers();

/// By the title that the window system shows. Those of Gecko end in the browser's bare name for an ordinary window, and
/// in words of the person's language around it for a private one. Those of the Chromium family say nothing of an
/// incognito window (measured with Chromium 156 on X11: title, class, role, icon, hints are those of any other window),
/// save for a few that mark it in words; all others of that family are `unknown`.
WindowPrivacy privacyOfTitle(std::string_view title, std::string_view bundleIdentifier);

/// By the name of a window's accessible frame in a browser of the Chromium family, which ends in "(Incognito)" in the
/// person's language behind the application's name. `titles` are those of the application's windows in the window
/// system: a page may end in brackets too, but the title tells of it then. A guest's window ends in the same way and
/// counts as private.
bool isPrivateFrame(std::string_view name, std::string_view applicationName, const std::vector<std::string>& titles);

/// How well the name of an accessible frame goes with the title of a window in the window system.
enum class NameMatch {
    none,
    loose, // the frame's name says more in between: that the page plays sound, say
    exact, // the same, or with more at the end: a profile, "(Incognito)"
};
NameMatch matchNames(std::string_view frame, std::string_view title, std::string_view applicationName);

} // namespace kestrio
