#include "Kestrio/Platform/Linux/TitledWindow.h"

#include "Kestrio/Platform/Linux/X11Windows.h"

#include <utility>

namespace kestrio {

TitledWindows titledWindows(X11Windows& windows, ApplicationOfProcess applicationOf) {
    return [&windows, applicationOf = std::move(applicationOf)](
               const std::string& bundleIdentifier) -> std::optional<std::vector<TitledWindow>> {
        auto placed = windows.placed([&](const X11Window& window) {
            return window.isRegular && window.process && applicationOf(*window.process) == bundleIdentifier;
        });
        if (!placed)
            return std::nullopt;
        std::vector<TitledWindow> result;
        for (auto& [window, title, bounds, extents, isActive] : *placed)
            result.push_back({window.id, window.process, std::move(title), bounds, extents, isActive});
        return result;
    };
}

} // namespace kestrio
