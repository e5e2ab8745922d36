// The panel of the system monitor as QML reads it. The agent takes detailed readings for as long as the panel shows.
#pragma once

#include "Kestrio/Pages/SystemMonitorView.h"
#include "Kestrio/Views/Window/Panels/PanelModel.h"

namespace kestrio {

class SystemPanelModel final : public kestrio::PanelModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made with its panel.")

public:
    explicit SystemPanelModel(const PanelParts& parts);

    /// Once the first reading is there, or there is nobody to ask for one.
    bool isReady() const override;
    void setShown(bool isShown) override;

    /// How the applications are ranked, by its raw text; another text changes nothing.
    Q_INVOKABLE void rankBy(const QString& mode);
    /// Lets everything run again that the optimizer holds back.
    Q_INVOKABLE void resumeAll();
    /// The settings where the optimizer is switched on.
    Q_INVOKABLE void openOptimization();
    /// Does what the foot's button of this action is for.
    Q_INVOKABLE void perform(const QString& action);

private:
    MonitorSource source() const;
    void accept(const MonitorReading& reading);
    void refresh();

    TopAppsMode mode_ = TopAppsMode::memory;
    std::optional<SystemMonitorReading> reading_;
    std::vector<Subscription> tokens_;                                                    // while it is shown
    std::shared_ptr<SystemPanelModel*> self_ = std::make_shared<SystemPanelModel*>(this); // readings hold it weakly
};

} // namespace kestrio
