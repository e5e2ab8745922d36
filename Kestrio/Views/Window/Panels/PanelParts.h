// What the panels are made over, beside what all windows are. All of it belongs to the main queue and outlives them.
#pragma once

#include "Kestrio/Views/Window/WindowParts.h"

#include <functional>
#include <optional>
#include <string>

namespace kestrio {

struct PanelParts {
    const WindowParts& window;
    // Other windows of this process.
    /// The dashboard at a page by its raw text, or as it was.
    std::function<void(const std::optional<std::string>& page)> openDashboard = [](const auto&) {};
    /// The settings at a tab by its raw text, or as they were.
    std::function<void(const std::optional<std::string>& tab)> openSettings = [](const auto&) {};
};

} // namespace kestrio
