#include "Kestrio/Base/VirtualQueue.h"

#include <algorithm>
#include <utility>

namespace kestrio {

VirtualTime::VirtualTime(Date start) : date_(start) {}

void VirtualTime::runPending() {
    // Round by round over the queues in order, one piece at a time, until nothing is ready anywhere.
    bool ran = true;
    while (ran) {
        ran = false;
        for (std::size_t i = 0; i < queues_.size(); ++i) // by index: work may make queues
            ran |= queues_[i]->runOne();
    }
}

void VirtualTime::advance(Seconds span) {
    const auto end = uptime_ + span;
    runPending();
    while (true) {
        std::optional<Uptime> next;
        for (const auto* queue : queues_)
            if (const auto wake = queue->timers_->nextWake(); wake && (!next || *wake < *next))
                next = wake;
        if (!next || *next > end)
            break;
        moveTo(*next);
        runPending();
    }
    moveTo(end);
    runPending();
}

void VirtualTime::moveTo(Uptime point) {
    if (point <= uptime_)
        return;
    date_ += point - uptime_;
    uptime_ = point;
}

VirtualQueue::VirtualQueue(VirtualTime& time, std::string label) : time_(time), label_(std::move(label)) {
    time_.queues_.push_back(this);
}

VirtualQueue::~VirtualQueue() {
    std::erase(time_.queues_, this);
}

void VirtualQueue::async(Work work) {
    work_.push_back(std::move(work));
}

Subscription VirtualQueue::after(Seconds delay, Work work) {
    return subscription(timers_->addOnce(time_.uptime() + delay, std::move(work)));
}

Subscription VirtualQueue::every(Pace pace, Work work) {
    return subscription(timers_->addRepeating(time_.uptime(), pace, std::move(work)));
}

Subscription VirtualQueue::subscription(TimerSchedule::ID id) {
    return Subscription([timers = timers_, id] { timers->cancel(id); });
}

void VirtualQueue::runAndWait(const Work& work) {
    while (!work_.empty()) {
        const auto earlier = std::move(work_.front());
        work_.pop_front();
        run(earlier);
    }
    run(work);
}

bool VirtualQueue::runOne() {
    if (!work_.empty()) {
        const auto work = std::move(work_.front());
        work_.pop_front();
        run(work);
        return true;
    }
    // Due timers run in deadline order, but only once the time has come for the queue to wake at all.
    const auto wake = timers_->nextWake();
    if (!awake_ && (!wake || *wake > time_.uptime()))
        return false;
    const auto due = timers_->takeDue(time_.uptime());
    awake_ = due != nullptr;
    if (!due)
        return false;
    run(*due);
    return true;
}

void VirtualQueue::run(const Work& work) {
    ++depth_;
    work();
    --depth_;
}

} // namespace kestrio
