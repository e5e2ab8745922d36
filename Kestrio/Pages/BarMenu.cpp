#include "Kestrio/Pages/BarMenu.h"

#include "Kestrio/Base/Formatters.h"

namespace kestrio {
namespace {

BarMenuEntry settingsEntry() {
    return {"Settings", ShowSettings{}};
}

BarMenuEntry pauseOrResume(const PauseControl& control) {
    if (const auto* resume = std::get_if<ResumeButton>(&control))
        return {resume->title, ResumeTracking{}};
    const auto& menu = std::get<PauseMenu>(control);
    BarMenuEntry entry{menu.title};
    for (const auto& each : menu.entries)
        entry.entries.push_back({each.title, PauseTracking{each.length}});
    return entry;
}

std::optional<BarAction> actionAmong(const std::vector<BarMenuEntry>& entries, std::string_view text) {
    for (const auto& entry : entries) {
        if (entry.action && entry.text == text)
            return entry.action;
        if (const auto below = actionAmong(entry.entries, text))
            return below;
    }
    return std::nullopt;
}

} // namespace

BarMenu statusMenu(TrackingState state, const std::optional<Date>& pausedUntil, const Viewpoint& viewpoint) {
    return {{{stateWords(state).label}},
            {{"Show Today", ShowPanel{}},
             {"Open Dashboard", ShowDashboard{}},
             pauseOrResume(pauseControl(state, pausedUntil, viewpoint))},
            {settingsEntry()},
            {{"Quit Kestrio", QuitProgram{}}}};
}

BarMenu systemMenu(std::span<const SystemInsight> insights) {
    BarMenu menu;
    if (!insights.empty()) {
        auto& words = menu.emplace_back();
        for (const auto& insight : insights)
            words.push_back({insight.text});
    }
    const auto performance = DashboardSection::performance;
    menu.push_back(
        {{"Show System", ShowPanel{}}, {std::string(label(performance)), ShowDashboard{performance}}, settingsEntry()});
    return menu;
}

std::optional<BarAction> actionOf(const BarMenu& menu, std::string_view text) {
    for (const auto& group : menu)
        if (const auto action = actionAmong(group, text))
            return action;
    return std::nullopt;
}

BarTip statusTip(const MenuBarLabel& label, Seconds activeToday) {
    return {"Today: " + Fmt::menuBar(activeToday), label.accessibilityLabel};
}

BarTip systemTip(double cpu, std::span<const SystemInsight> insights) {
    std::string text;
    for (const auto& insight : insights)
        text += (text.empty() ? "" : "\n") + insight.text;
    return {"CPU " + Fmt::percent(cpu, 1), text};
}

} // namespace kestrio
