#include "Kestrio/Activity/ScreenInspector.h"

#include <algorithm>
#include <cstddef>
#include <optional>

namespace kestrio {
namespace {

struct Place {
    std::size_t display;
    double area; // of the window's part on that display
};

double commonArea(const Rectangle& a, const Rectangle& b) {
    const double width = std::min(a.x + a.width, b.x + b.width) - std::max(a.x, b.x);
    const double height = std::min(a.y + a.height, b.y + b.height) - std::max(a.y, b.y);
    return std::max(width, 0.0) * std::max(height, 0.0);
}

bool isSomethingToLookAt(const StackedWindow& window) {
    return window.process && window.layer == 0 && window.alpha > ScreenInspector::mostInvisibleAlpha &&
           window.bounds.width >= ScreenInspector::leastWidth && window.bounds.height >= ScreenInspector::leastHeight;
}

/// The display with the largest part of the window, the first one of several. Absent when it is on none.
std::optional<Place> placeOf(const Rectangle& window, const std::vector<Rectangle>& displays) {
    std::optional<Place> place;
    for (std::size_t i = 0; i < displays.size(); ++i)
        if (const double area = commonArea(window, displays[i]); area > (place ? place->area : 0))
            place = {i, area};
    return place;
}

} // namespace

std::vector<ScreenWindow> ScreenInspector::visibleWindows(const ScreenLayout& layout) {
    std::vector<ScreenWindow> result;
    std::vector<bool> isClaimed(layout.displays.size(), false);
    for (const auto& window : layout.windows) {
        if (!isSomethingToLookAt(window))
            continue;
        const auto place = placeOf(window.bounds, layout.displays);
        if (!place)
            continue;
        const double wholeArea = window.bounds.width * window.bounds.height;
        const bool isFront = !isClaimed[place->display] && place->area >= leastShareToClaim * wholeArea;
        if (isFront)
            isClaimed[place->display] = true;
        result.push_back({*window.process, window.bounds, isFront});
    }
    return result;
}

} // namespace kestrio
