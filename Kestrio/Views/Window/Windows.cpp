#include "Kestrio/Views/Window/Windows.h"

#include "Kestrio/Base/Log.h"
#include "Kestrio/Shell/Settings.h"
#include "Kestrio/Views/Design/Design.h"
#include "Kestrio/Views/Window/DashboardModel.h"
#include "Kestrio/Views/Window/Settings/SettingsModel.h"

#include <QQmlComponent>
#include <QQmlExtensionPlugin>
#include <QQuickWindow>
#include <QScreen>

Q_IMPORT_QML_PLUGIN(Kestrio_ChartsPlugin)
Q_IMPORT_QML_PLUGIN(Kestrio_DesignPlugin)

/// Registers this module's types; made by the build.
void qml_register_types_Kestrio_Window();

namespace kestrio {
namespace {

/// What a window's frame may take of the screen's height, in points.
constexpr int frameHeight = 40;

void bringForward(QQuickWindow& window) {
    window.setWindowStates(window.windowStates() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    window.requestActivate();
}

/// What stands below the edge of a small screen is out of reach.
void fitToScreen(QQuickWindow& window) {
    window.resize(window.size().boundedTo(window.screen()->availableSize() - QSize(0, frameHeight)));
}

/// Null, with lines in the log, for one that is not as it should be.
std::unique_ptr<QObject> create(QQmlComponent& component, const QVariantMap& properties) {
    std::unique_ptr<QObject> made(component.isReady() ? component.createWithInitialProperties(properties) : nullptr);
    for (const auto& error : component.errors())
        logLine("Kestrio: " + error.toString().toStdString());
    return made;
}

} // namespace

Windows::Windows(const WindowParts& parts)
    : parts_(parts),
      panelParts_{.window = parts,
                  .openDashboard = [this](const auto& page) { showDashboard({page}); },
                  .openSettings = [this](const auto& tab) { show(SettingsRequest{tab}); }} {
    // Naming it has the linker take the registration along.
    [[maybe_unused]] const volatile auto registration = &qml_register_types_Kestrio_Window;
    installDesign(engine_, parts.host.iconFile)
        .setMode(choice<AppearanceMode>(parts.settings, settingKey::appearanceMode));
    tokens_.push_back(parts.settings.observe([this](const std::string& key) {
        if (key == settingKey::appearanceMode)
            appearance(engine_).setMode(choice<AppearanceMode>(parts_.settings, key));
    }));
    tokens_.push_back(parts.host.observeDesktop(
        [this](const DesktopAppearance& desktop) { appearance(engine_).setDesktop(desktop); }));
}

Windows::~Windows() {
    panels_.close();
    // Items read their models to the end.
    delete settings_.release();
    delete settingsModel_.release();
    delete dashboard_.release();
    delete dashboardModel_.release();
}

void Windows::show(const WindowRequest& request, const std::string& activationToken) {
    // Where the framework looks for it when a window asks for the front.
    if (!activationToken.empty())
        qputenv("XDG_ACTIVATION_TOKEN", QByteArray::fromStdString(activationToken));
    if (const auto* const panel = std::get_if<PanelRequest>(&request))
        return panels_.show(*panel);
    if (const auto* const settings = std::get_if<SettingsRequest>(&request))
        return showSettings(*settings);
    showDashboard(std::get<DashboardRequest>(request));
}

bool Windows::isAnyOpen() const {
    return dashboard_ || settings_ || panels_.window();
}

void Windows::showDashboard(const DashboardRequest& request) {
    const bool isNew = !dashboard_;
    if (isNew)
        makeDashboard();
    if (!dashboard_)
        return;
    if (isNew || request.page)
        dashboardModel_->open(request.page);
    bringForward(*dashboard_);
}

void Windows::makeDashboard() {
    dashboardModel_.reset(new DashboardModel(parts_));
    QQmlComponent component(&engine_, QUrl(QStringLiteral("qrc:/qt/qml/Kestrio/Window/DashboardWindow.qml")));
    auto made = create(component, {{"model", QVariant::fromValue(dashboardModel_.get())}});
    auto* const window = qobject_cast<QQuickWindow*>(made.get());
    if (!window)
        return;
    (void)made.release();
    dashboard_.reset(window);
    fitToScreen(*window);
    connect(dashboardModel_.get(), &DashboardModel::settingsRequested, this, [this] { showSettings({}); });
    connect(window, &QQuickWindow::visibleChanged, this, [this](bool isVisible) {
        if (isVisible)
            return;
        dashboard_.reset();
        dashboardModel_.reset();
    });
}

void Windows::showSettings(const SettingsRequest& request) {
    if (!settingsModel_)
        settingsModel_.reset(new SettingsModel(parts_));
    settingsModel_->open(request.tab);
    if (!settings_)
        makeSettings();
    if (settings_)
        bringForward(*settings_);
}

void Windows::makeSettings() {
    QQmlComponent component(&engine_, QUrl(QStringLiteral("qrc:/qt/qml/Kestrio/Window/Settings/SettingsWindow.qml")));
    auto made = create(component, {{"model", QVariant::fromValue(settingsModel_.get())}});
    auto* const window = qobject_cast<QQuickWindow*>(made.get());
    if (!window)
        return;
    (void)made.release();
    settings_.reset(window);
    fitToScreen(*window);
    connect(window, &QQuickWindow::visibleChanged, this, [this](bool isVisible) {
        if (isVisible)
            return;
        settings_.reset();
        settingsModel_.reset();
    });
}

} // namespace kestrio
