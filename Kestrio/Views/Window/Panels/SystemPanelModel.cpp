#include "Kestrio/Views/Window/Panels/SystemPanelModel.h"

#include "Kestrio/Link/OptimizerLink.h"
#include "Kestrio/Shell/Settings.h"
#include "Kestrio/Views/Values/Panels.h"

namespace kestrio {

SystemPanelModel::SystemPanelModel(const PanelParts& parts) : PanelModel(parts) {
    refresh();
}

MonitorSource SystemPanelModel::source() const {
    const bool isAbsent = parts().window.agent.presence().value() == AgentLink::Presence::absent;
    return isAbsent ? MonitorSource::missing : MonitorSource::running;
}

bool SystemPanelModel::isReady() const {
    const bool hasReading = reading_ && reading_->state.snapshot;
    return hasReading || source() == MonitorSource::missing;
}

void SystemPanelModel::setShown(bool isShown) {
    tokens_.clear();
    if (!isShown)
        return;
    auto& agent = parts().window.agent;
    tokens_.push_back(agent.presence().observe([this](auto) {
        reading_.reset(); // of another agent
        refresh();
    }));
    // Readings arrive on the link's own queue.
    const auto take = [weak = std::weak_ptr(self_), &main = parts().window.queue](const MonitorReading& reading) {
        main.async([weak, reading] {
            if (const auto self = weak.lock())
                (*self)->accept(reading);
        });
    };
    tokens_.push_back(agent.keep([take](Background& background) { return background.observeMonitor(take); }));
}

void SystemPanelModel::accept(const MonitorReading& reading) {
    if (tokens_.empty())
        return; // on the way while the panel was closed
    reading_ = {.state = reading.state,
                .chipName = reading.chipName,
                .cores = reading.cores,
                .uptime = reading.uptime,
                .optimizer = reading.optimizer};
    refresh();
}

void SystemPanelModel::refresh() {
    const auto app =
        parts().window.host.openActivityMonitor ? ActivityMonitorApp::installed : ActivityMonitorApp::missing;
    setPanel(toVariant(systemMonitorView(reading_, source(), mode_, app, parts().window.calendar)));
}

void SystemPanelModel::rankBy(const QString& mode) {
    mode_ = topAppsMode(mode.toStdString()).value_or(mode_);
    refresh();
}

void SystemPanelModel::resumeAll() {
    act([](Background& agent) {
        auto* const optimizer = agent.optimizer();
        return optimizer ? optimizer->resumeAll() : std::nullopt;
    });
}

void SystemPanelModel::openOptimization() {
    leaveFor([this] { parts().openSettings(std::string(rawText(SettingsTab::optimization))); });
}

void SystemPanelModel::perform(const QString& action) {
    if (action == plain(rawValue(SystemPanelAction::openActivityMonitor)))
        leaveFor(parts().window.host.openActivityMonitor);
    else if (action == plain(rawValue(SystemPanelAction::openPerformance)))
        leaveFor([this] { parts().openDashboard(std::string(rawValue(DashboardSection::performance))); });
    else if (action == plain(rawValue(SystemPanelAction::openSettings)))
        openSettings();
}

} // namespace kestrio
