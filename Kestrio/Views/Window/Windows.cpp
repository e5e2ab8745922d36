#include "Kestrio/Views/Window/Windows.h"

#include "Kestrio/Base/Log.h"
#include "Kestrio/Shell/Settings.h"
#include "Kestrio/Views/Design/Design.h"
#include "Kestrio/Views/Window/DashboardModel.h"

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
    delete dashboard_.release();
    delete dashboardModel_.release();
}

void Windows::show(const WindowRequest& request, const std::string& activationToken) {
    // Where the framework looks for it when a window asks for the front.
    if (!activationToken.empty())
        qputenv("XDG_ACTIVATION_TOKEN", QByteArray::fromStdString(activationToken));
    if (const auto* const panel = std::get_if<PanelRequest>(&request))
        return panels_.show(*panel);
    // The settings have no window yet; where they were asked for there is at least one.
    const auto* const dashboard = std::get_if<DashboardRequest>(&request);
    showDashboard(dashboard ? *dashboard : DashboardRequest{});
}

bool Windows::isAnyOpen() const {
    return dashboard_ || panels_.window();
}

void Windows::showDashboard(const DashboardRequest& request) {
    const bool isNew = !dashboard_;
    if (isNew)
        makeDashboard();
    if (!dashboard_)
        return;
    if (isNew || request.page)
        dashboardModel_->open(request.page);
    dashboard_->setWindowStates(dashboard_->windowStates() & ~Qt::WindowMinimized);
    dashboard_->show();
    dashboard_->raise();
    dashboard_->requestActivate();
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
    // What stands below the edge of a small screen is out of reach.
    window->resize(window->size().boundedTo(window->screen()->availableSize() - QSize(0, frameHeight)));
    connect(window, &QQuickWindow::visibleChanged, this, [this](bool isVisible) {
        if (isVisible)
            return;
        dashboard_.reset();
        dashboardModel_.reset();
    });
}

} // namespace kestrio
