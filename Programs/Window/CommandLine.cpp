#include "Programs/Window/CommandLine.h"

#include "Kestrio/Pages/DashboardSection.h"
#include "Kestrio/Pages/Settings/SettingsWindow.h"
#include "Kestrio/Shell/AppInfo.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <iostream>

namespace kestrio {
namespace {

/// "X,Y" in pixels.
std::optional<ScreenPoint> screenPoint(std::string_view text) {
    ScreenPoint point;
    const auto* const end = text.data() + text.size();
    const auto x = std::from_chars(text.data(), end, point.x);
    if (x.ec != std::errc() || x.ptr == end || *x.ptr != ',')
        return std::nullopt;
    const auto y = std::from_chars(x.ptr + 1, end, point.y);
    return y.ec == std::errc() && y.ptr == end ? std::optional(point) : std::nullopt;
}

std::string sectionMistake(const std::string& text) {
    return dashboardSectionError(text).value_or("");
}

std::string tabMistake(const std::string& text) {
    return settingsTabError(text).value_or("");
}

std::string pointMistake(const std::string& text) {
    return screenPoint(text) ? "" : "a point is two whole numbers, as in 640,24";
}

struct Texts {
    std::optional<std::string> page, at, tab;
};

WindowRequest requestOf(const CLI::App& app, const Texts& texts) {
    const auto point = texts.at ? screenPoint(*texts.at) : std::nullopt;
    if (app.got_subcommand("today"))
        return PanelRequest{PanelKind::today, point};
    if (app.got_subcommand("system"))
        return PanelRequest{PanelKind::system, point};
    if (app.got_subcommand("settings"))
        return SettingsRequest{texts.tab};
    return DashboardRequest{texts.page};
}

} // namespace

std::variant<WindowRequest, int> parseWindowArguments(int count, const char* const* arguments) {
    CLI::App app("Shows the windows of Kestrio.", "kestrio-window");
    app.set_version_flag("--version", "Kestrio " + AppInfo::version());
    app.require_subcommand(0, 1);
    Texts texts;
    const auto addPage = [&](CLI::App& to) {
        to.add_option("--page", texts.page, "The page to show first")->check(sectionMistake);
    };
    addPage(app);
    addPage(*app.add_subcommand("dashboard", "The dashboard"));
    for (const auto* const panel : {"today", "system"})
        app.add_subcommand(panel, std::string("The panel of ") + panel)
            ->add_option("--at", texts.at, "The pixel beside which it opens, as X,Y")
            ->check(pointMistake);
    app.add_subcommand("settings", "The settings")
        ->add_option("--tab", texts.tab, "The tab to show first")
        ->check(tabMistake);
    try {
        app.parse(count, arguments);
    } catch (const CLI::Success& success) {
        return app.exit(success);
    } catch (const CLI::ParseError& error) {
        std::cerr << "kestrio-window: " << error.what() << ". Try kestrio-window --help.\n";
        return 2;
    }
    return requestOf(app, texts);
}

} // namespace kestrio
