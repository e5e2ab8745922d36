#include "Kestrio/Link/WindowRequest.h"

#include <fmt/format.h>

namespace kestrio {
namespace {

std::vector<std::string> arguments(const DashboardRequest& request) {
    if (!request.page)
        return {"dashboard"};
    return {"dashboard", "--page", *request.page};
}

std::vector<std::string> arguments(const PanelRequest& request) {
    const std::string kind(rawValue(request.kind));
    if (!request.at)
        return {kind};
    // One word with an equals sign: a screen to the left of the first has negative places.
    return {kind, fmt::format("--at={},{}", request.at->x, request.at->y)};
}

std::vector<std::string> arguments(const SettingsRequest& request) {
    if (!request.tab)
        return {"settings"};
    return {"settings", "--tab", *request.tab};
}

} // namespace

std::string_view rawValue(PanelKind kind) {
    switch (kind) {
    case PanelKind::today: return "today";
    case PanelKind::system: return "system";
    }
    return {};
}

std::optional<PanelKind> panelKind(std::string_view raw) {
    for (const auto kind : {PanelKind::today, PanelKind::system})
        if (rawValue(kind) == raw)
            return kind;
    return std::nullopt;
}

std::vector<std::string> windowArguments(const WindowRequest& request) {
    return std::visit([](const auto& asked) { return arguments(asked); }, request);
}

} // namespace kestrio
