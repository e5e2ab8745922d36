#include "Kestrio/Base/TimerSchedule.h"

#include "Kestrio/Base/Mistake.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace kestrio {
namespace {

std::shared_ptr<const Queue::Work> share(Queue::Work work) {
    return std::make_shared<const Queue::Work>(std::move(work));
}

/// The first point of the grid `deadline + n * interval`, n at least 1, that lies after `now`.
Uptime nextOnGrid(Uptime deadline, Seconds interval, Uptime now) {
    const double missed = std::floor((now - deadline) / interval);
    auto next = deadline + interval * (std::max(missed, 0.0) + 1);
    if (next <= now) // rounding
        next += interval;
    return next;
}

} // namespace

TimerSchedule::ID TimerSchedule::addOnce(Uptime deadline, Queue::Work work) {
    timers_.push_back({nextID_, deadline, std::nullopt, Seconds(0), share(std::move(work))});
    return nextID_++;
}

TimerSchedule::ID TimerSchedule::addRepeating(Uptime now, const Pace& pace, Queue::Work work) {
    if (!(pace.interval > Seconds(0)))
        programmersMistake("a repeating timer needs an interval above 0");
    const auto first = now + pace.first.value_or(pace.interval);
    timers_.push_back({nextID_, first, pace.interval, pace.tolerance, share(std::move(work))});
    return nextID_++;
}

void TimerSchedule::cancel(ID id) {
    std::erase_if(timers_, [id](const Timer& timer) { return timer.id == id; });
}

std::optional<Uptime> TimerSchedule::nextWake() const {
    std::optional<Uptime> wake;
    for (const auto& timer : timers_) {
        const auto latest = timer.deadline + timer.tolerance;
        if (!wake || latest < *wake)
            wake = latest;
    }
    return wake;
}

std::shared_ptr<const Queue::Work> TimerSchedule::takeDue(Uptime now) {
    const auto earliest = std::min_element(timers_.begin(), timers_.end(),
                                           [](const Timer& a, const Timer& b) { return a.deadline < b.deadline; });
    if (earliest == timers_.end() || earliest->deadline > now)
        return nullptr;
    auto work = earliest->work;
    if (earliest->interval)
        earliest->deadline = nextOnGrid(earliest->deadline, *earliest->interval, now);
    else
        timers_.erase(earliest);
    return work;
}

} // namespace kestrio
