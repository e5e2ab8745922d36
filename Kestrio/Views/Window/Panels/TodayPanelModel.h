// The panel of today as QML reads it: today's report, what the agent is doing, and what a person can do about it.
#pragma once

#include "Kestrio/Views/Window/Panels/PanelModel.h"

namespace kestrio {

class TodayPanelModel final : public kestrio::PanelModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made with its panel.")

public:
    /// How often the day is loaded again while the panel shows.
    static constexpr Seconds refreshInterval{60.0};

    explicit TodayPanelModel(const PanelParts& parts);

    /// Once the agent was looked for and the day was read.
    bool isReady() const override;
    void setShown(bool isShown) override;

    Q_INVOKABLE void openDashboard();
    /// Pauses until somebody resumes, or resumes.
    Q_INVOKABLE void pauseOrResume();
    /// Says what can be done on this host to have titles recorded.
    Q_INVOKABLE void allowAccessibility();
    /// Ends the agent, and with it the recording.
    Q_INVOKABLE void quit();

private:
    /// Keeps the report of the day up to date.
    void followDay();
    void refresh();

    bool wasRead_ = false; // the day, since the panel was shown
    std::optional<std::string> advice_;
    std::vector<Subscription> tokens_; // while it is shown
};

} // namespace kestrio
