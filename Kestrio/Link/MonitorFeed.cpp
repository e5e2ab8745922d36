#include "Kestrio/Link/MonitorFeed.h"

namespace kestrio {

MonitorFeed::MonitorFeed(Queue& main, const Clock& clock, SystemMonitor& monitor, Setup setup)
    : main_(main), clock_(clock), monitor_(monitor), setup_(std::move(setup)) {}

Subscription MonitorFeed::observe(Receiver receiver) {
    const auto held = std::make_shared<const Receiver>(std::move(receiver));
    if (states_.isActive())
        tellSoon(held); // others look already, and what they see is fresh
    else
        states_ = monitor_.observe([this](const auto&) { tell(); });
    auto token = std::make_shared<Subscription>(readings_.subscribe([held](const auto& reading) { (*held)(reading); }));
    monitor_.setPanelVisible(true);
    return Subscription([token, weak = std::weak_ptr(self_)] {
        token->cancel();
        if (const auto self = weak.lock())
            (*self)->noteLeaving();
    });
}

MonitorReading MonitorFeed::reading() const {
    return {.state = monitor_.state(),
            .chipName = monitor_.chipName(),
            .cores = setup_.cores,
            .uptime = clock_.uptime() - Uptime(0),
            .optimizer = setup_.optimizer()};
}

void MonitorFeed::tell() {
    readings_.emit(reading());
}

void MonitorFeed::tellSoon(std::weak_ptr<const Receiver> newcomer) {
    main_.async([weak = std::weak_ptr(self_), newcomer = std::move(newcomer)] {
        const auto self = weak.lock();
        const auto receiver = newcomer.lock();
        if (self && receiver && (*self)->monitor_.state().snapshot)
            (*receiver)((*self)->reading());
    });
}

void MonitorFeed::noteLeaving() {
    if (readings_.hasReceivers())
        return;
    states_.cancel();
    monitor_.setPanelVisible(false);
}

} // namespace kestrio
