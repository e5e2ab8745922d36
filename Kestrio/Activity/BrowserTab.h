// What a browser shows. Values; any thread.
#pragma once

#include "Kestrio/Base/Rectangle.h"

#include <cstddef>
#include <string>
#include <vector>

namespace kestrio {

/// Addresses are recorded up to so many characters.
inline constexpr std::size_t longestRecordedURL = 2048;

/// A page as a browser tells it. Nothing of a private one may be kept.
struct BrowserTab {
    std::string url;
    std::string title;
    bool isPrivate = false;

    friend bool operator==(const BrowserTab&, const BrowserTab&) = default;
};

struct BrowserWindow {
    Rectangle bounds;
    bool isPrivate = false;
    BrowserTab activeTab;
    std::vector<BrowserTab> tabs;

    friend bool operator==(const BrowserWindow&, const BrowserWindow&) = default;
};

} // namespace kestrio
