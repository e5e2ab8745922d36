// The texts of fields in which readers of browsers answer; `BrowserReader` says what they are made of. Titles and
// addresses come from pages and lose the characters that separate fields. Pure functions; any thread.
#pragma once

#include "Kestrio/Base/Rectangle.h"
#include "Kestrio/Platform/Linux/SettledPage.h"

#include <string>
#include <vector>

namespace kestrio {

/// The front tab of an ordinary window, and of a private one.
std::string tabText(const BrowserPage& page);
std::string privateTabText();

/// A window's piece of the text of windows. The address of a tab may be empty: then only its title is known.
std::string windowText(const Rectangle& bounds, const BrowserPage& activeTab, const std::vector<BrowserPage>& tabs);
std::string privateWindowText(const Rectangle& bounds);

/// The pieces as one text.
std::string windowsText(const std::vector<std::string>& pieces);

} // namespace kestrio
