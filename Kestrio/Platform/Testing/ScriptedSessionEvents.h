// Session events that a test makes happen. Belongs to one queue, which in a test is most often virtual.
#pragma once

#include "Kestrio/Base/Queue.h"
#include "Kestrio/Base/Signal.h"
#include "Kestrio/Platform/SessionEvents.h"

#include <vector>

namespace kestrio {

class ScriptedSessionEvents final : public SessionEvents {
public:
    /// The queue must outlive this.
    explicit ScriptedSessionEvents(Queue& queue) : queue_(queue) {}

    Subscription observe(std::function<void(const SessionNotice&)> receiver) override;
    std::optional<Date> sessionStart() override { return sessionStart_; }

    /// Tells the event to everybody, at once.
    void happen(SessionEvent event);

    /// What is in force for those who subscribe from now on; they hear of it in their queue's next work.
    void setInForce(std::vector<SessionEvent> events) { inForce_ = std::move(events); }

    void setSessionStart(std::optional<Date> start) { sessionStart_ = start; }

    /// Whether anybody still holds back what was announced last.
    bool isHeldBack() const { return !hold_.expired(); }

private:
    Queue& queue_;
    Signal<SessionNotice> happened_;
    std::vector<SessionEvent> inForce_;
    std::optional<Date> sessionStart_;
    std::weak_ptr<void> hold_;
};

} // namespace kestrio
