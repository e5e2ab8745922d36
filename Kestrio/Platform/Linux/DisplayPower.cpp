#include "Kestrio/Platform/Linux/DisplayPower.h"

#include "Kestrio/Platform/Linux/X11Connection.h"

#include <xcb/dpms.h>

namespace kestrio {
namespace {

constexpr Seconds away{60};
constexpr Pace paceForAbsence{.interval = Seconds(60), .tolerance = Seconds(15)};
constexpr Pace paceForChange{.interval = Seconds(10), .tolerance = Seconds(5)};

} // namespace

DisplayPower::DisplayPower(Queue& queue, InputIdle& idle, Reader displaysAreOn)
    : queue_(queue), idle_(idle), displaysAreOn_(std::move(displaysAreOn)) {}

Subscription DisplayPower::observe(std::function<void(SessionEvent)> receiver) {
    if (!watch_)
        lookAgain(Watch::forAbsence);
    return events_.subscribe(std::move(receiver));
}

void DisplayPower::lookAgain(Watch watch) {
    if (watch_ == watch)
        return;
    watch_ = watch;
    timer_ = queue_.every(watch == Watch::forAbsence ? paceForAbsence : paceForChange, [this] { look(); });
}

void DisplayPower::look() {
    if (!events_.hasReceivers()) {
        watch_.reset();
        timer_.cancel();
        return;
    }
    const auto idle = idle_.sinceLastInput();
    if (on_ && idle && *idle < away) {
        lookAgain(Watch::forAbsence);
        return;
    }
    const auto displays = displaysAreOn_();
    if (displays)
        tell(*displays);
    else if (!on_) // whoever turned them off is gone; nobody would ever tell that they are on again
        tell(true);
    lookAgain(displays ? Watch::forChange : Watch::forAbsence);
}

void DisplayPower::tell(bool on) {
    if (on == on_)
        return;
    on_ = on;
    events_.emit(on ? SessionEvent::displaysDidWake : SessionEvent::displaysDidSleep);
}

DisplayPower::Reader x11DisplayPower(X11Connection& connection) {
    return [&connection]() -> std::optional<bool> {
        X11Connection::Operation operation(connection);
        if (!operation || !operation.server().hasDisplayPower)
            return std::nullopt;
        const auto info = operation.reply<xcb_dpms_info_reply_t>(xcb_dpms_info(operation.xcb()));
        if (!info)
            return std::nullopt;
        return !info->state || info->power_level == XCB_DPMS_DPMS_MODE_ON;
    };
}

} // namespace kestrio
