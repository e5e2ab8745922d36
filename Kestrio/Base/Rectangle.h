// A rectangle on the screens: in the window system's points, with the origin at the top left of all displays.
#pragma once

namespace kestrio {

struct Rectangle {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    friend bool operator==(const Rectangle&, const Rectangle&) = default;
};

} // namespace kestrio
