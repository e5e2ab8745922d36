#include "Kestrio/Platform/Linux/LogindSessionEvents.h"

#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Platform/Linux/BusConnection.h"
#include "Kestrio/Platform/Linux/Locations.h"
#include "Kestrio/Platform/Linux/LogindWatch.h"
#include "Kestrio/Platform/Linux/ScreenSaverWatch.h"
#include "Kestrio/Platform/Linux/SuspendWatch.h"

#include <utility>

namespace kestrio {

/// What logind's reports mean here.
struct LogindSessionEvents::Reports {
    LogindSessionEvents& events;

    void operator()(LogindReport report) const {
        switch (report) {
        case LogindReport::willSleep:
            events.tell(SessionEvent::willSleep, events.logind_ ? events.logind_->takeDelayLock() : nullptr);
            return;
        case LogindReport::didWake: events.tell(SessionEvent::didWake); return;
        case LogindReport::lockRequested: events.lockRequested(); return;
        case LogindReport::unlockRequested:
        case LogindReport::unlocked: setHint(false); return;
        case LogindReport::locked: setHint(true); return;
        case LogindReport::active: events.setActive(true); return;
        case LogindReport::inactive: events.setActive(false); return;
        case LogindReport::lost:
            setHint(false);
            events.setActive(true);
            return;
        }
    }

    void setHint(bool locked) const {
        events.lockRequested_ = false;
        events.lockHinted_ = locked;
        events.lockMayHaveChanged();
    }
};

LogindSessionEvents::Setup LogindSessionEvents::setupOfThisSession() {
    Setup setup;
    setup.systemBus = BusConnection::address(BusConnection::Bus::system);
    setup.sessionBus = BusConnection::address(BusConnection::Bus::session);
    setup.sessionIdentifier = processEnvironment("XDG_SESSION_ID");
    return setup;
}

LogindSessionEvents::LogindSessionEvents(LoopQueue& queue, Setup setup)
    : queue_(queue), lockConfirmation_(setup.lockConfirmation), self_(std::make_shared<LogindSessionEvents*>(this)) {
    if (setup.systemBus)
        logind_ = std::make_unique<LogindWatch>(
            queue, *setup.systemBus, SessionOwner{setup.process, setup.user, setup.sessionIdentifier}, Reports{*this});
    if (setup.sessionBus)
        screenSavers_ = std::make_unique<ScreenSaverWatch>(queue, *setup.sessionBus, [this](bool active) {
            lockRequested_ = false;
            screenSaverActive_ = active;
            lockMayHaveChanged();
        });
    suspend_ = std::make_unique<SuspendWatch>(queue, [this] { tell(SessionEvent::didWake); });
}

LogindSessionEvents::~LogindSessionEvents() = default;

Subscription LogindSessionEvents::observe(std::function<void(const SessionNotice&)> receiver) {
    using Receiver = std::function<void(const SessionNotice&)>;
    auto shared = std::make_shared<Receiver>(std::move(receiver));
    auto token =
        std::make_shared<Subscription>(happened_.subscribe([weak = std::weak_ptr(shared)](const SessionNotice& notice) {
            if (const auto listening = weak.lock())
                (*listening)(notice);
        }));
    armForReceivers();
    queue_.async([self = std::weak_ptr(self_), weak = std::weak_ptr(shared)] {
        if (const auto alive = self.lock())
            (*alive)->announceWhatIsInForce(weak);
    });
    return Subscription([self = std::weak_ptr(self_), shared, token]() mutable {
        token->cancel();
        shared.reset();
        if (const auto alive = self.lock())
            (*alive)->armForReceivers();
    });
}

std::optional<Date> LogindSessionEvents::sessionStart() {
    return logind_ ? logind_->sessionStart() : std::nullopt;
}

void LogindSessionEvents::armForReceivers() {
    if (logind_)
        logind_->setArmed(happened_.hasReceivers());
}

void LogindSessionEvents::announceWhatIsInForce(
    const std::weak_ptr<std::function<void(const SessionNotice&)>>& receiver) {
    const auto announce = [&](SessionEvent event) {
        if (const auto listening = receiver.lock())
            (*listening)({event});
    };
    if (inactive_)
        announce(SessionEvent::sessionDidResignActive);
    if (locked_)
        announce(SessionEvent::screenIsLocked);
}

void LogindSessionEvents::lockRequested() {
    if (lockHinted_ || screenSaverActive_)
        return;
    lockRequested_ = true;
    confirmation_ = queue_.after(lockConfirmation_, [this] {
        lockRequested_ = false;
        lockMayHaveChanged();
    });
    lockMayHaveChanged();
}

void LogindSessionEvents::lockMayHaveChanged() {
    if (!lockRequested_)
        confirmation_.cancel();
    const bool locked = lockRequested_ || lockHinted_ || screenSaverActive_;
    if (std::exchange(locked_, locked) != locked)
        tell(locked ? SessionEvent::screenIsLocked : SessionEvent::screenIsUnlocked);
}

void LogindSessionEvents::setActive(bool active) {
    if (std::exchange(inactive_, !active) == active)
        tell(active ? SessionEvent::sessionDidBecomeActive : SessionEvent::sessionDidResignActive);
}

void LogindSessionEvents::tell(SessionEvent event, std::shared_ptr<void> hold) {
    happened_.emit({event, std::move(hold)});
}

} // namespace kestrio
