// Which windows on the screens are something to look at, and which one is in front on each display. Belongs to the
// queue of the screens; the rule itself is a pure function.
#pragma once

#include "Kestrio/Activity/ScreenWindow.h"
#include "Kestrio/Platform/Screens.h"

#include <vector>

namespace kestrio {

class ScreenInspector {
public:
    /// What is smaller or more transparent is a tool or an overlay, and nothing to look at.
    static constexpr double leastWidth = 200;
    static constexpr double leastHeight = 150;
    static constexpr double mostInvisibleAlpha = 0.1;
    /// A window with less of itself on a display does not claim that display.
    static constexpr double leastShareToClaim = 0.2;

    /// Front to back. Windows that are on no display, and those of unknown processes, are left out.
    static std::vector<ScreenWindow> visibleWindows(const ScreenLayout& layout);

    /// The screens must outlive the inspector.
    explicit ScreenInspector(Screens& screens) : screens_(screens) {}

    std::vector<ScreenWindow> visibleWindows() { return visibleWindows(screens_.layout()); }

private:
    Screens& screens_;
};

} // namespace kestrio
