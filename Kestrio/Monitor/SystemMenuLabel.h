// What the second icon of the menu bar shows: an image, a figure, both or nothing. A pure function.
#pragma once

#include "Kestrio/Monitor/SystemInsight.h"

#include <optional>
#include <span>
#include <string>

namespace kestrio {

/// What the person wants to see of it. Neither: the icon is hidden.
struct SystemMenuParts {
    bool hasImage = true;
    bool hasFigure = true;

    friend bool operator==(const SystemMenuParts&, const SystemMenuParts&) = default;
};

struct SystemMenuLabel {
    std::optional<std::string> image = {}; // a symbol's name
    /// To be drawn in digits of one width.
    std::optional<std::string> figure = {};

    bool isHidden() const { return !image && !figure; }
    friend bool operator==(const SystemMenuLabel&, const SystemMenuLabel&) = default;
};

/// `cpu` is a share, 0 to 1.
SystemMenuLabel systemMenuLabel(SystemMenuParts parts, double cpu, std::span<const SystemInsight> insights);

/// " 5%", "42%", "100%": a figure of one digit has the blank of a digit before it, so that the width does not jump.
std::string menuFigure(double cpu);

} // namespace kestrio
