// Reads the texts of fields in which browsers answer; `BrowserReader` says what they are made of. Pages choose part of
// what stands in them, so nothing is taken for granted. Pure functions; any thread.
#pragma once

#include "Kestrio/Activity/BrowserTab.h"

#include <optional>
#include <string_view>
#include <vector>

namespace kestrio::BrowserTexts {

inline constexpr char separator = '\x1F';
inline constexpr char betweenWindows = '\x1E';
inline constexpr char betweenTabs = '\x1D';

/// The tab of a text of two or three fields; further ones are ignored. Absent with fewer, or with an empty address.
std::optional<BrowserTab> frontTab(std::string_view text);

/// The windows of a text. A piece of fewer than nine fields is passed over, an edge that is not a number reads as 0,
/// and of addresses and titles of tabs the longer list loses its surplus.
std::vector<BrowserWindow> windows(std::string_view text);

} // namespace kestrio::BrowserTexts
