#include "Kestrio/Platform/Testing/ScriptedSessionEvents.h"

namespace kestrio {

Subscription ScriptedSessionEvents::observe(std::function<void(const SessionNotice&)> receiver) {
    // The subscription owns the shared receiver; work that is still waiting finds out by it that nobody listens.
    auto shared = std::make_shared<std::function<void(const SessionNotice&)>>(std::move(receiver));
    for (const auto event : inForce_)
        queue_.async([weak = std::weak_ptr(shared), event] {
            if (const auto listening = weak.lock())
                (*listening)({event});
        });
    auto token =
        std::make_shared<Subscription>(happened_.subscribe([weak = std::weak_ptr(shared)](const SessionNotice& notice) {
            if (const auto listening = weak.lock())
                (*listening)(notice);
        }));
    return Subscription([shared, token]() mutable {
        token->cancel();
        shared.reset();
    });
}

void ScriptedSessionEvents::happen(SessionEvent event) {
    const std::shared_ptr<void> hold = std::make_shared<int>();
    hold_ = hold;
    happened_.emit({event, hold});
}

} // namespace kestrio
