// A queue that runs on a real thread as a loop over its work, its timers and watched file descriptors.
// The loop sleeps in the kernel until one of them is ready; an idle queue costs no wake-ups.
#pragma once

#include "Kestrio/Base/Clock.h"
#include "Kestrio/Base/Queue.h"
#include "Kestrio/Base/TimerSchedule.h"

#include <deque>
#include <memory>
#include <mutex>
#include <thread>

namespace kestrio {

class LoopQueue : public Queue {
public:
    const std::string& label() const override { return label_; }
    bool isCurrent() const override;
    void async(Work work) override;
    [[nodiscard]] Subscription after(Seconds delay, Work work) override;
    [[nodiscard]] Subscription every(Pace pace, Work work) override;

    /// Runs `whenReadable` on this queue whenever `descriptor` can be read without blocking, or has been closed by
    /// its other end or failed; the work must read until nothing is left, or drop the token. The descriptor stays
    /// the caller's, and the token is dropped before it is closed.
    [[nodiscard]] Subscription watch(int descriptor, Work whenReadable);

protected:
    explicit LoopQueue(std::string label);
    ~LoopQueue() override;

    /// Runs the loop on the calling thread until `finish`; work handed over before `finish` still runs.
    void loop();
    void finish();

    void runAndWait(const Work& work) override;

private:
    struct State;

    const std::string label_;
    // Shared with the tokens, which may outlive the queue.
    std::shared_ptr<State> state_;
};

/// A queue with a thread of its own, named by the label. The destructor finishes the work handed over so far.
/// The clock must outlive the queue.
class WorkerQueue final : public LoopQueue {
public:
    explicit WorkerQueue(std::string label);
    ~WorkerQueue() override;

private:
    std::thread thread_;
};

/// The loop of a program's main thread.
class MainQueue final : public LoopQueue {
public:
    MainQueue();

    /// Runs the loop on the calling thread until `stop`.
    void run();

    /// Ends `run` after the work handed over so far. Callable from any thread.
    void stop();
};

} // namespace kestrio
