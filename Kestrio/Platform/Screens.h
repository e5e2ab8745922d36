// Seam: the displays, and the windows that stand on them.
//
// Used on one queue, the one that the implementation was made for, and only while something is to be explained by it.
// Answers within 0.4 s. An empty answer is valid: there is no window system, or it does not tell where windows are.
#pragma once

#include "Kestrio/Base/Rectangle.h"

#include <optional>
#include <sys/types.h>
#include <vector>

namespace kestrio {

/// A window that the person can see, or could if no other covered it.
struct StackedWindow {
    std::optional<pid_t> process; // absent when the window system does not know it
    Rectangle bounds;             // in screen points, without shadows, the origin at the top left
    double alpha = 1;             // from 0, invisible, to 1
    int layer = 0;                // 0: normal windows and dialogs; others: utilities, menus, notifications

    friend bool operator==(const StackedWindow&, const StackedWindow&) = default;
};

struct ScreenLayout {
    std::vector<Rectangle> displays;    // the main one first
    std::vector<StackedWindow> windows; // front to back, without panels and the desktop's own

    friend bool operator==(const ScreenLayout&, const ScreenLayout&) = default;
};

class Screens {
public:
    virtual ~Screens() = default;

    /// How it all stands at this moment.
    virtual ScreenLayout layout() = 0;
};

} // namespace kestrio
