// What the process with the windows can be asked to show: over the bus when one runs, on its command line when one has
// to be started. Plain values.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace kestrio {

/// The dashboard; without a page the one that was open last.
struct DashboardRequest {
    std::optional<std::string> page = {}; // by the raw text under which it is stored
    friend bool operator==(const DashboardRequest&, const DashboardRequest&) = default;
};

enum class PanelKind { today, system };

/// A pixel of the screens, from the top left of all of them together.
struct ScreenPoint {
    int x = 0;
    int y = 0;
    friend bool operator==(const ScreenPoint&, const ScreenPoint&) = default;
};

/// A panel beside the point of a click. The one that is open already closes.
struct PanelRequest {
    PanelKind kind = PanelKind::today;
    std::optional<ScreenPoint> at = {}; // absent: wherever the windows' process thinks fit
    friend bool operator==(const PanelRequest&, const PanelRequest&) = default;
};

/// The settings; without a tab the one that was open last.
struct SettingsRequest {
    std::optional<std::string> tab = {};
    friend bool operator==(const SettingsRequest&, const SettingsRequest&) = default;
};

using WindowRequest = std::variant<DashboardRequest, PanelRequest, SettingsRequest>;

/// "today", "system".
std::string_view rawValue(PanelKind kind);
/// Absent for any other text.
std::optional<PanelKind> panelKind(std::string_view rawValue);

/// The arguments by which `kestrio-window` is asked for it as it starts.
std::vector<std::string> windowArguments(const WindowRequest& request);

} // namespace kestrio
