// A serial executor: work handed to one queue runs one piece after the other, in order, never at the same time.
// State belongs to a queue, and that queue's work alone touches it; this takes the place of locks.
//
// Kinds: `WorkerQueue` (a thread of its own), `MainQueue` (the program's main loop), `VirtualQueue` (tests).
// All operations may be called from any thread.
#pragma once

#include "Kestrio/Base/Date.h"
#include "Kestrio/Base/Subscription.h"

#include <functional>
#include <optional>
#include <string>
#include <type_traits>

namespace kestrio {

/// When a repeating timer fires. Firings stay on the grid `first + n * interval` however late one was; firings that
/// were missed altogether are not made up for.
struct Pace {
    Seconds interval;
    /// Delay of the first firing; one interval when absent.
    std::optional<Seconds> first = {};
    /// How late a firing may come, so that the machine can wake once for several timers.
    Seconds tolerance = Seconds(0);
};

class Queue {
public:
    using Work = std::function<void()>;

    virtual ~Queue() = default;

    virtual const std::string& label() const = 0;

    /// True in work that this queue is running.
    virtual bool isCurrent() const = 0;

    /// Runs `work` later, after all that was handed over before.
    virtual void async(Work work) = 0;

    /// Runs `work` once, `delay` from now at the earliest. The queue's time is `Uptime`. Dropping the token calls it
    /// off.
    [[nodiscard]] virtual Subscription after(Seconds delay, Work work) = 0;

    /// Runs `work` again and again until the token is dropped.
    [[nodiscard]] virtual Subscription every(Pace pace, Work work) = 0;

    /// Runs `work` after all that was handed over before, waits for it and returns its result. The caller blocks for
    /// as long as the queue needs. Calling it from the queue's own work could only deadlock: it aborts with a message.
    template <class Function>
    std::invoke_result_t<Function&> sync(Function&& work) {
        using Result = std::invoke_result_t<Function&>;
        refuseCurrent();
        if constexpr (std::is_void_v<Result>) {
            runAndWait([&] { work(); });
        } else {
            std::optional<Result> result;
            runAndWait([&] { result.emplace(work()); });
            return std::move(*result);
        }
    }

protected:
    virtual void runAndWait(const Work& work) = 0;

private:
    void refuseCurrent() const;
};

} // namespace kestrio
