// How the setting of the second icon's form maps to what it shows.
#pragma once

#include "Kestrio/Monitor/SystemMenuLabel.h"
#include "Kestrio/Shell/Settings.h"

namespace kestrio {

constexpr SystemMenuParts systemMenuParts(SystemMenuStyle style) {
    switch (style) {
    case SystemMenuStyle::iconAndPercent: return {.hasImage = true, .hasFigure = true};
    case SystemMenuStyle::icon: return {.hasImage = true, .hasFigure = false};
    case SystemMenuStyle::percent: return {.hasImage = false, .hasFigure = true};
    case SystemMenuStyle::hidden: break;
    }
    return {.hasImage = false, .hasFigure = false};
}

} // namespace kestrio
