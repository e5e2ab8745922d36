// Time and queues for tests: nothing happens until the test moves the time, and then everything happens in order.
//
// A `VirtualTime` is the clock that all virtual queues of a test share. It steps from deadline to deadline, running
// whatever is due on any queue in between, so that a simulated week takes milliseconds. Single-threaded.
#pragma once

#include "Kestrio/Base/Clock.h"
#include "Kestrio/Base/Queue.h"
#include "Kestrio/Base/TimerSchedule.h"

#include <deque>
#include <memory>
#include <vector>

namespace kestrio {

class VirtualQueue;

class VirtualTime final : public Clock {
public:
    explicit VirtualTime(Date start);

    Date now() const override { return date_; }
    Uptime uptime() const override { return uptime_; }

    /// Runs what is ready now on all queues, without moving the time.
    void runPending();

    /// Moves both scales forward by `span`, stepping from deadline to deadline and running what becomes due.
    void advance(Seconds span);

    /// Somebody sets the clock: wall time jumps by `span`, which may be negative; time awake does not move.
    void jumpWallClock(Seconds span) { date_ += span; }

    /// The machine sleeps for `span` and wakes: the same to the two scales as a forward jump, nothing runs meanwhile.
    void sleepMachine(Seconds span) { date_ += span; }

private:
    friend class VirtualQueue;

    void moveTo(Uptime point);

    Date date_;
    Uptime uptime_{1000};
    std::vector<VirtualQueue*> queues_; // in the order of making, which is the order of running
};

class VirtualQueue final : public Queue {
public:
    /// The time must outlive the queue.
    VirtualQueue(VirtualTime& time, std::string label);
    ~VirtualQueue() override;

    const std::string& label() const override { return label_; }
    bool isCurrent() const override { return depth_ > 0; }
    void async(Work work) override;
    [[nodiscard]] Subscription after(Seconds delay, Work work) override;
    [[nodiscard]] Subscription every(Pace pace, Work work) override;

protected:
    /// Runs what was handed over before and then the work, at once, as the waiting caller would see it.
    void runAndWait(const Work& work) override;

private:
    friend class VirtualTime;

    /// Runs one piece of ready work; false when there is none.
    bool runOne();
    void run(const Work& work);
    Subscription subscription(TimerSchedule::ID id);

    VirtualTime& time_;
    const std::string label_;
    int depth_ = 0;
    bool awake_ = false; // woken for one timer, the queue serves all that are due
    std::deque<Work> work_;
    std::shared_ptr<TimerSchedule> timers_ = std::make_shared<TimerSchedule>();
};

} // namespace kestrio
