// A window that stands on a screen, large enough to be looked at.
#pragma once

#include "Kestrio/Base/Rectangle.h"

#include <sys/types.h>

namespace kestrio {

struct ScreenWindow {
    pid_t pid = 0;
    Rectangle bounds;              // the whole window, in screen points, the origin at the top left
    bool isFrontOnDisplay = false; // the frontmost of its display, and not with a mere sliver

    friend bool operator==(const ScreenWindow&, const ScreenWindow&) = default;
};

} // namespace kestrio
