#include "Kestrio/Monitor/SystemMenuLabel.h"

#include "Kestrio/Monitor/WholeNumbers.h"

#include <fmt/format.h>

namespace kestrio {

std::string menuFigure(double cpu) {
    constexpr const char* digitBlank = "\u2007";
    const auto percent = roundedToWhole(cpu * 100);
    return fmt::format("{}{}%", percent <= 9 ? digitBlank : "", percent);
}

SystemMenuLabel systemMenuLabel(SystemMenuParts parts, double cpu, std::span<const SystemInsight> insights) {
    SystemMenuLabel label;
    if (parts.hasImage)
        label.image = highestLevel(insights) >= SystemInsight::Level::warning ? "exclamationmark.triangle.fill" : "cpu";
    if (parts.hasFigure)
        label.figure = menuFigure(cpu);
    return label;
}

} // namespace kestrio
