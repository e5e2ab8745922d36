// What a browser's extension tells: all its windows and their tabs, in one message of JSON each time something changed.
//
//   {"version": 1, "windows": [{"id": 7, "type": "normal", "state": "normal", "focused": true,
//     "left": 0, "top": 0, "width": 1280, "height": 800,
//     "tabs": [{"url": "…", "title": "…", "active": true, "audible": false, "muted": false}]}]}
//
// Private windows are not among them. An address and a title in one message belong together. Values; any thread.
#pragma once

#include "Kestrio/Base/Rectangle.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrio {

struct BridgedTab {
    std::string url;
    std::string title; // empty while the page has not told one
    bool isActive = false;
    bool isAudible = false; // plays sound, or would if it were not muted
    bool isMuted = false;

    friend bool operator==(const BridgedTab&, const BridgedTab&) = default;
};

struct BridgedWindow {
    std::int64_t id = 0; // of the browser's own
    bool isTool = false; // shows no page: the developer's tools in a window of their own
    bool isMinimized = false;
    bool isFocused = false;
    Rectangle bounds;
    std::vector<BridgedTab> tabs;

    /// Null when none is active.
    const BridgedTab* activeTab() const;

    friend bool operator==(const BridgedWindow&, const BridgedWindow&) = default;
};

/// Bounds on what a message may hold. The extension keeps within them.
namespace tabLimits {
inline constexpr std::size_t windows = 200;
inline constexpr std::size_t tabs = 4000; // of all windows together
inline constexpr std::size_t urlBytes = 8192;
inline constexpr std::size_t titleBytes = 4096;
inline constexpr std::size_t depth = 8; // of brackets
} // namespace tabLimits

/// The windows that a message tells. Absent for anything else than such a message within the limits; fields that a
/// later version may add are passed over. The texts are valid UTF-8 without U+0000 and U+001C to U+001F.
std::optional<std::vector<BridgedWindow>> bridgedWindows(std::string_view message);

} // namespace kestrio
