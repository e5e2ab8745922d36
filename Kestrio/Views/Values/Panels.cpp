#include "Kestrio/Views/Values/Panels.h"

namespace kestrio {
namespace {

QVariantMap focusValue(const StateWords& words) {
    auto map = toVariant(words).toMap();
    map.insert(QStringLiteral("kind"), QStringLiteral("state"));
    return map;
}

QVariantMap focusValue(const LiveActivityRow::Line& line) {
    auto map = toVariant(line).toMap();
    map.insert(QStringLiteral("kind"), QStringLiteral("session"));
    return map;
}

} // namespace

QVariant toVariant(const LiveActivityRow::Line& line) {
    return Fields()
        .add("icon", toVariant(AppIcon{line.bundleID}))
        .text("appName", line.appName)
        .text("title", line.title)
        .add("badge", toVariant(line.badge))
        .add("thumbnail", toVariant(line.thumbnail));
}

QVariant toVariant(const LiveActivityRow& row) {
    return Fields()
        .add("focus", std::visit([](const auto& focus) { return focusValue(focus); }, row.focus))
        .add("alongside", toVariants(row.alongside));
}

QVariant toVariant(const PanelWarning& warning) {
    return Fields()
        .text("symbol", warning.symbol)
        .words("text", warning.text)
        .words("button", warning.button)
        .words("advice", warning.advice);
}

QVariantMap toVariant(const TodayPanel& panel) {
    return Fields()
        .words("title", std::string_view(TodayPanel::title))
        .words("activeTime", panel.activeTime)
        .words("productive", panel.productive)
        .words("switches", panel.switches)
        .add("banner", toVariant(panel.banner))
        .add("live", toVariant(panel.live))
        .text("historyNotice", panel.historyNotice)
        .add("accessibilityHint", toVariant(panel.accessibilityHint))
        .words("topAppsTitle", std::string_view(TodayPanel::topAppsTitle))
        .add("topApps", toVariants(panel.topApps))
        .words("topWebsitesTitle", std::string_view(TodayPanel::topWebsitesTitle))
        .add("topWebsites", toVariants(panel.topWebsites))
        .add("dashboard", toVariant(panel.dashboard))
        .add("pauseOrResume", toVariant(panel.pauseOrResume))
        .add("settings", toVariant(panel.settings))
        .add("quit", toVariant(panel.quit));
}

QVariant toVariant(const SystemHeader& header) {
    return Fields()
        .words("title", header.title)
        .text("chip", header.chip)
        .words("uptime", header.uptime)
        .words("status", header.status)
        .text("tone", rawValue(header.tone));
}

QVariant toVariant(const SystemTile& tile) {
    return Fields()
        .words("title", tile.title)
        .text("symbol", tile.symbol)
        .words("value", tile.value)
        .words("detail", tile.detail)
        .text("tone", rawValue(tile.tone))
        .add("trend", QVariantList(tile.trend.begin(), tile.trend.end()));
}

QVariant toVariant(const SystemMonitorView::Insight& insight) {
    return Fields()
        .text("id", insight.id)
        .text("symbol", insight.symbol)
        .words("text", insight.text)
        .text("tone", rawValue(insight.tone));
}

QVariant toVariant(const SystemMonitorView::Mode& mode) {
    return Fields().text("mode", rawValue(mode.mode)).words("title", mode.title).add("isCurrent", mode.isCurrent);
}

QVariant toVariant(const BatteryRow& row) {
    return Fields()
        .text("symbol", row.symbol)
        .words("figure", row.figure)
        .words("words", row.words)
        .text("tone", rawValue(row.tone));
}

QVariant toVariant(const TopAppRow& row) {
    return Fields()
        .text("id", row.id)
        .add("icon", toVariant(AppIcon{row.id}))
        .text("name", row.name)
        .words("figure", row.figure)
        .words("tip", row.tip);
}

QVariant toVariant(const TopApps& apps) {
    return Fields()
        .words("title", std::string_view(TopApps::title))
        .words("picker", std::string_view(TopApps::picker))
        .words("help", std::string_view(TopApps::help))
        .add("rows", toVariants(apps.rows))
        .words("emptyText", apps.emptyText)
        .words("pickerHelp", apps.pickerHelp);
}

QVariant toVariant(const OptimizerLine& line) {
    QStringList details;
    for (const auto& detail : line.details)
        details.append(shown(detail));
    return Fields()
        .words("text", line.text)
        .add("details", details)
        .add("hasResumeAll", line.hasResumeAll)
        .words("resumeAll", std::string_view(OptimizerLine::resumeAll))
        .words("resumeAllHelp", std::string_view(SystemMonitorView::resumeAllHelp))
        .add("leadsToSettings", line.leadsToSettings);
}

QVariant toVariant(const SystemPanelButton& button) {
    return Fields()
        .text("action", rawValue(button.action))
        .words("title", button.title)
        .text("symbol", button.symbol)
        .words("tip", button.tip);
}

QVariantMap toVariant(const SystemMonitorView& view) {
    return Fields()
        .add("header", toVariant(view.header))
        .add("tiles", toVariants(view.tiles))
        .add("insights", toVariants(view.insights))
        .add("battery", toVariant(view.battery))
        .add("modes", toVariants(view.modes))
        .add("topApps", toVariant(view.topApps))
        .add("optimizer", toVariant(view.optimizer))
        .add("buttons", toVariants(view.buttons))
        .words("message", view.message);
}

} // namespace kestrio
