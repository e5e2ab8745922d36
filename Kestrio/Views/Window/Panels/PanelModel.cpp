#include "Kestrio/Views/Window/Panels/PanelModel.h"

#include "Kestrio/Pages/TodayPanel.h"
#include "Kestrio/Views/Values/Shown.h"

namespace kestrio {

void PanelModel::setPanel(QVariantMap panel) {
    if (panel == panel_)
        return;
    panel_ = std::move(panel);
    Q_EMIT changed();
}

void PanelModel::leaveFor(const std::function<void()>& open) {
    open();
    Q_EMIT closeRequested();
}

void PanelModel::openSettings() {
    leaveFor([this] { parts_.openSettings(std::nullopt); });
}

void PanelModel::act(std::function<Background::Failure(Background&)> action, std::function<void()> done) {
    parts_.window.agent.ask(std::move(action), [weak = std::weak_ptr(self_),
                                                done = std::move(done)](std::optional<Background::Failure> answer) {
        const auto self = weak.lock();
        if (!self)
            return;
        auto& model = **self;
        const auto failure = answer ? *answer : Background::Failure(TodayPanel::noAnswer);
        model.failure_ = failure ? shown(*failure) : QString();
        Q_EMIT model.failureChanged();
        if (!failure)
            done();
    });
}

} // namespace kestrio
