// All windows of the program: each is made when it is asked for and goes when it is closed; only what is stored stays.
//
// Belongs to the main queue. The parts outlive it.
#pragma once

#include "Kestrio/Link/WindowRequest.h"
#include "Kestrio/Views/Window/Panels/Panels.h"
#include "Kestrio/Views/Window/WindowParts.h"

#include <QObject>
#include <QQmlEngine>
#include <memory>

class QQuickWindow;

namespace kestrio {

class DashboardModel;
class SettingsModel;

class Windows final : public QObject {
    Q_OBJECT

public:
    explicit Windows(const WindowParts& parts);
    ~Windows() override;

    /// Opens a window, or brings it forward. `activationToken` is the desktop's leave to take the front, empty where
    /// there is none.
    void show(const WindowRequest& request, const std::string& activationToken = {});

    bool isAnyOpen() const;

    /// Null while it is not open.
    QQuickWindow* dashboard() const { return dashboard_.get(); }
    /// Null while it is not open.
    QQuickWindow* settings() const { return settings_.get(); }
    /// Null while none is open.
    QQuickWindow* panel() const { return panels_.window(); }

private:
    struct Later {
        void operator()(QObject* object) const { object->deleteLater(); }
    };

    void showDashboard(const DashboardRequest& request);
    void makeDashboard();
    void showSettings(const SettingsRequest& request);
    void makeSettings();

    const WindowParts& parts_;
    QQmlEngine engine_;
    std::vector<Subscription> tokens_;
    const PanelParts panelParts_;
    Panels panels_{engine_, panelParts_};
    std::unique_ptr<DashboardModel, Later> dashboardModel_;
    std::unique_ptr<QQuickWindow, Later> dashboard_;
    std::unique_ptr<SettingsModel, Later> settingsModel_;
    std::unique_ptr<QQuickWindow, Later> settings_;
};

} // namespace kestrio
