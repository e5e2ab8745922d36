// Seam: what happens to the machine and the person's session as a whole.
//
// Belongs to one queue, on which receivers are called. Nothing here blocks for more than 0.4 s. A host may tell some of
// the events only, or none; an event may be told twice, and its counterpart may be lost.
#pragma once

#include "Kestrio/Base/Date.h"
#include "Kestrio/Base/Subscription.h"

#include <functional>
#include <memory>
#include <optional>

namespace kestrio {

enum class SessionEvent {
    willSleep,
    didWake,
    displaysDidSleep,
    displaysDidWake,
    sessionDidResignActive, // another person's session took the screen
    sessionDidBecomeActive,
    screenIsLocked,
    screenIsUnlocked,
};

struct SessionNotice {
    SessionEvent event;
    /// While a copy of this lives, the host holds back what is announced, as far as it can: a machine about to sleep
    /// waits for it. Keep it until the event has been acted upon, and no longer.
    std::shared_ptr<void> hold = {};
};

class SessionEvents {
public:
    virtual ~SessionEvents() = default;

    /// `receiver` hears each later event. A state in force at the time of subscribing (a locked screen, say) is
    /// announced soon after as if it had just begun.
    virtual Subscription observe(std::function<void(const SessionNotice&)> receiver) = 0;

    /// When the person's session began. Absent when the host does not tell.
    virtual std::optional<Date> sessionStart() = 0;
};

} // namespace kestrio
