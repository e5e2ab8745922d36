#include "Kestrio/Views/Window/Windows.h"

#include "Kestrio/Base/Log.h"
#include "Kestrio/Shell/Settings.h"
#include "Kestrio/Views/Design/Design.h"
#include "Kestrio/Views/Window/DashboardModel.h"

#include <QQmlComponent>
#include <QQmlExtensionPlugin>
#include <QQuickWindow>

Q_IMPORT_QML_PLUGIN(Kestrio_ChartsPlugin)
Q_IMPORT_QML_PLUGIN(Kestrio_DesignPlugin)

/// Registers this module's types; made by the build.
void qml_register_types_Kestrio_Window();

namespace kestrio {
namespace {

/// Null, with lines in the log, for one that is not as it should be.
std::unique_ptr<QObject> create(QQmlComponent& component, const QVariantMap& properties) {
    std::unique_ptr<QObject> made(component.isReady() ? component.createWithInitialProperties(properties) : nullptr);
    for (const auto& error : component.errors())
        logLine("Kestrio: " + error.toString().toStdString());
    return made;
}

} // namespace

Windows::Windows(const WindowParts& parts) : parts_(parts) {
    // Naming it has the linker take the registration along.
    [[maybe_unused]] const volatile auto registration = &qml_register_types_Kestrio_Window;
    // The second form of the same place is the one by which Qt 6.4 tells the module that a file belongs to, and so finds
    // the types that it may use without an import.
    engine_.setImportPathList(engine_.importPathList()
                              << QStringLiteral("qrc:/qt/qml") << QStringLiteral("file::/qt/qml"));
    installDesign(engine_, parts.host.iconFile)
        .setMode(choice<AppearanceMode>(parts.settings, settingKey::appearanceMode));
    appearance_ = parts.settings.observe([this](const std::string& key) {
        if (key == settingKey::appearanceMode)
            appearance(engine_).setMode(choice<AppearanceMode>(parts_.settings, key));
    });
}

Windows::~Windows() {
    // Items read their models to the end.
    delete dashboard_.release();
    delete dashboardModel_.release();
}

void Windows::show(const WindowRequest& request, const std::string& activationToken) {
    // Where the framework looks for it when a window asks for the front.
    if (!activationToken.empty())
        qputenv("XDG_ACTIVATION_TOKEN", QByteArray::fromStdString(activationToken));
    const auto* const dashboard = std::get_if<DashboardRequest>(&request);
    showDashboard(dashboard ? *dashboard : DashboardRequest{});
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
    connect(window, &QQuickWindow::visibleChanged, this, [this](bool isVisible) {
        if (isVisible)
            return;
        dashboard_.reset();
        dashboardModel_.reset();
    });
}

} // namespace kestrio
