#include "Kestrio/Views/Window/Settings/SettingsModel.h"

#include "Kestrio/Pages/Settings/SettingsWindow.h"
#include "Kestrio/Views/Values/Rows.h"
#include "Kestrio/Views/Window/Settings/AboutSettingsModel.h"
#include "Kestrio/Views/Window/Settings/CategorySettingsModel.h"
#include "Kestrio/Views/Window/Settings/DataSettingsModel.h"
#include "Kestrio/Views/Window/Settings/GeneralSettingsModel.h"
#include "Kestrio/Views/Window/Settings/OptimizationSettingsModel.h"
#include "Kestrio/Views/Window/Settings/PermissionsSettingsModel.h"
#include "Kestrio/Views/Window/Settings/ProjectSettingsModel.h"

#include <algorithm>

namespace kestrio {
namespace {

std::unique_ptr<SettingsTabModel> makeTab(SettingsTab tab, const WindowParts& parts) {
    switch (tab) {
    case SettingsTab::general: return std::make_unique<GeneralSettingsModel>(parts);
    case SettingsTab::categories: return std::make_unique<CategorySettingsModel>(parts);
    case SettingsTab::projects: return std::make_unique<ProjectSettingsModel>(parts);
    case SettingsTab::optimization: return std::make_unique<OptimizationSettingsModel>(parts);
    case SettingsTab::permissions: return std::make_unique<PermissionsSettingsModel>(parts);
    case SettingsTab::data: return std::make_unique<DataSettingsModel>(parts);
    case SettingsTab::about: return std::make_unique<AboutSettingsModel>(parts);
    }
    return nullptr;
}

} // namespace

SettingsModel::SettingsModel(const WindowParts& parts)
    : parts_(parts), presence_(parts.agent.presence().observe([this](auto) { Q_EMIT agentChanged(); })) {}

SettingsModel::~SettingsModel() = default;

QVariantList SettingsModel::tabs() {
    QVariantList all;
    for (const auto tab : allCases<SettingsTab>())
        all.append(Fields()
                       .text("rawValue", std::string_view(rawText(tab)))
                       .words("label", std::string_view(label(tab)))
                       .text("symbol", symbol(tab)));
    return all;
}

QString SettingsModel::tab() const {
    return plain(rawText(tab_));
}

QString SettingsModel::tabLabel() const {
    return shown(label(tab_));
}

QUrl SettingsModel::tabSource() const {
    return QUrl(
        QStringLiteral("qrc:/qt/qml/Kestrio/Window/Settings/Tabs/%1Tab.qml").arg(QLatin1StringView(label(tab_))));
}

QVariant SettingsModel::agentNotice() const {
    const bool isAbsent = parts_.agent.presence().value() == AgentLink::Presence::absent;
    return isAbsent ? toVariant(kestrio::agentNotice()) : QVariant();
}

QVariantMap SettingsModel::words() {
    return Fields()
        .words("windowTitle", std::string_view(SettingsWindow::title))
        .words("tabsName", std::string_view(SettingsWindow::tabsName));
}

void SettingsModel::open(const std::optional<std::string>& tab) {
    const auto opening = openingTab(tab, parts_.settings.get<std::string>(settingKey::settingsTab));
    if (!tabModel_ || opening != tab_)
        show(opening);
}

void SettingsModel::select(const QString& tab) {
    const auto known = settingsTab(tab.toStdString());
    if (!known || known == tab_)
        return;
    parts_.settings.set(settingKey::settingsTab, std::string(rawText(*known)));
    show(*known);
}

void SettingsModel::selectNeighbour(int step) {
    const auto last = static_cast<int>(allCases<SettingsTab>().size()) - 1;
    const auto next = std::clamp(static_cast<int>(tab_) + step, 0, last);
    select(plain(rawText(static_cast<SettingsTab>(next))));
}

void SettingsModel::startAgent() {
    parts_.host.startAgent();
}

void SettingsModel::show(SettingsTab tab) {
    // The tab's items read their model until they are gone, which is later than the signal.
    if (auto* const left = tabModel_.release())
        left->deleteLater();
    tab_ = tab;
    tabModel_ = makeTab(tab, parts_);
    Q_EMIT tabChanged();
}

} // namespace kestrio
