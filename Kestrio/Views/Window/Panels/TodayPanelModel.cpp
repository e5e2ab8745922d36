#include "Kestrio/Views/Window/Panels/TodayPanelModel.h"

#include "Kestrio/Shell/Settings.h"
#include "Kestrio/Views/Values/Panels.h"

namespace kestrio {
namespace {

Seconds idleLimit(const KeyValueStore& settings) {
    const auto minutes = std::max<std::int64_t>(settings.integer(settingKey::idleMinutes), 1);
    return Seconds(static_cast<double>(minutes) * 60);
}

} // namespace

TodayPanelModel::TodayPanelModel(const PanelParts& parts) : PanelModel(parts) {
    refresh();
}

bool TodayPanelModel::isReady() const {
    return wasRead_ && parts().window.agent.presence().value() != AgentLink::Presence::unknown;
}

void TodayPanelModel::setShown(bool isShown) {
    auto& today = parts().window.today;
    today.setOnScreen(isShown);
    tokens_.clear();
    if (!isShown)
        return;
    followDay();
    const auto look = [this](const auto&) { refresh(); };
    tokens_.push_back(parts().window.agent.status().observe(look));
    tokens_.push_back(parts().window.agent.presence().observe(look));
    tokens_.push_back(parts().window.settings.observe(look));
    tokens_.push_back(today.trouble().observe(look));
    today.reload();
    refresh();
}

void TodayPanelModel::followDay() {
    auto& window = parts().window;
    auto& today = window.today;
    tokens_.push_back(today.report().observe([this](const auto&) { refresh(); }));
    tokens_.push_back(today.isLoading().observe([this](bool isLoading) {
        wasRead_ = wasRead_ || !isLoading;
        Q_EMIT changed();
    }));
    const auto reload = [&today] { today.reload(); };
    tokens_.push_back(window.queue.every({.interval = refreshInterval, .tolerance = refreshInterval / 5}, reload));
    tokens_.push_back(window.agent.observeData(reload));
    tokens_.push_back(window.classification.categorizer().observe(reload));
}

void TodayPanelModel::refresh() {
    const auto& window = parts().window;
    const auto& status = window.agent.status().value();
    PanelState state{.isAgentRunning = window.agent.presence().value() != AgentLink::Presence::absent,
                     .accessibilityAdvice = advice_,
                     .idleLimit = idleLimit(window.settings),
                     .thumbnails =
                         window.settings.boolean(settingKey::showYouTubeThumbnails) ? Thumbnails::on : Thumbnails::off};
    if (const auto& trouble = window.today.trouble().value()) {
        const bool isEmpty = window.today.report().value().sessions.empty();
        state.historyNotice = historyNotice(*trouble, window.host.historyFile.string(),
                                            isEmpty ? HistoryShown::nothing : HistoryShown::earlier);
    }
    if (status) {
        state.state = status->state;
        state.pausedUntil = status->pausedUntil;
        state.live = status->live;
        state.alongside = status->alongside;
        state.isAccessibilityGranted = status->isAccessibilityGranted;
        if (status->live)
            state.appName = status->live->sample.appName;
    }
    setPanel(toVariant(todayPanel(parts().window.today.report().value(), state, window.calendar)));
    Q_EMIT changed();
}

void TodayPanelModel::openDashboard() {
    leaveFor([this] { parts().openDashboard(std::nullopt); });
}

void TodayPanelModel::pauseOrResume() {
    const auto& status = parts().window.agent.status().value();
    const bool isPaused = status && status->state == TrackingState::paused;
    act([isPaused](Background& agent) { return isPaused ? agent.resume() : agent.pause(std::nullopt); });
}

void TodayPanelModel::allowAccessibility() {
    advice_ = parts().window.host.privacyAdvice(Permissions::accessibilityPane);
    refresh();
}

void TodayPanelModel::quit() {
    act([](Background& agent) { return agent.quit(); }, [this] { Q_EMIT closeRequested(); });
}

} // namespace kestrio
