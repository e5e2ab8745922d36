// Whether the displays went dark by themselves, for hosts that tell only when asked. X servers before DPMS 1.2, and the
// client library of this program's time with all of them, have no notice of it.
//
// Displays go dark after minutes without input. So it looks once a minute whether the person is there, which takes a
// round trip of some µs, and asks for the displays every ten seconds only while they have been away for a minute or
// the displays are off. A change is thus seen up to fifteen seconds late; fresh input tells of a wake sooner than this.
// Belongs to one queue; receivers are called there.
#pragma once

#include "Kestrio/Base/Queue.h"
#include "Kestrio/Base/Signal.h"
#include "Kestrio/Platform/InputIdle.h"
#include "Kestrio/Platform/SessionEvents.h"

#include <functional>
#include <optional>

namespace kestrio {

class X11Connection;

class DisplayPower {
public:
    /// Whether the displays are on. Absent where nobody knows: no such display, no server.
    using Reader = std::function<std::optional<bool>()>;

    /// All must outlive this. Nothing runs before somebody observes.
    DisplayPower(Queue& queue, InputIdle& idle, Reader displaysAreOn);

    /// `receiver` hears `displaysDidSleep` and `displaysDidWake`, no other events.
    Subscription observe(std::function<void(SessionEvent)> receiver);

private:
    enum class Watch { forAbsence, forChange };

    void lookAgain(Watch watch);
    void look();
    void tell(bool on);

    Queue& queue_;
    InputIdle& idle_;
    Reader displaysAreOn_;
    Signal<SessionEvent> events_;
    bool on_ = true; // as last told
    std::optional<Watch> watch_;
    Subscription timer_;
};

/// Reads the state from an X server's DPMS. The connection must outlive the reader.
DisplayPower::Reader x11DisplayPower(X11Connection& connection);

} // namespace kestrio
