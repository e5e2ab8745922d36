// What the desktop asks of how all programs look. A plain value, which hosts report and the views follow.
#pragma once

#include <optional>

namespace kestrio {

/// Everything that the desktop does not tell has the value here.
struct DesktopAppearance {
    std::optional<bool> isDark = {}; // absent: no preference
    bool isHighContrast = false;
    bool reducesMotion = false;
    double textScale = 1; // how much larger than usual text is wanted

    friend bool operator==(const DesktopAppearance&, const DesktopAppearance&) = default;
};

} // namespace kestrio
