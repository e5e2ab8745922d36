#include "Kestrio/Base/LoopQueue.h"

#include "Kestrio/Base/Mistake.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cmath>
#include <condition_variable>
#include <cstring>
#include <ctime>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <unistd.h>
#include <vector>

namespace kestrio {

struct LoopQueue::State {
    struct Watch {
        std::uint64_t id;
        int descriptor;
        std::shared_ptr<const Work> whenReadable;
    };

    State() : wake(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
        if (wake < 0)
            programmersMistake(std::string("no descriptor left for a queue: ") + std::strerror(errno));
    }
    ~State() { close(wake); }
    State(const State&) = delete;
    State& operator=(const State&) = delete;

    /// Lets the loop look at its lists again. The loop itself always looks before it sleeps.
    void interrupt() const {
        if (thread.load() != std::this_thread::get_id())
            eventfd_write(wake, 1);
    }

    void resetWake() const {
        eventfd_t ignored = 0;
        eventfd_read(wake, &ignored);
    }

    const SystemClock clock;
    const int wake;
    std::atomic<std::thread::id> thread;

    std::mutex mutex; // guards all below; never held while work runs
    std::deque<Work> work;
    TimerSchedule timers;
    std::vector<Watch> watches;
    std::uint64_t nextWatch = 1;
    bool finished = false;
};

LoopQueue::LoopQueue(std::string label) : label_(std::move(label)), state_(std::make_shared<State>()) {}

LoopQueue::~LoopQueue() = default;

bool LoopQueue::isCurrent() const {
    return state_->thread.load() == std::this_thread::get_id();
}

void LoopQueue::async(Work work) {
    {
        const std::lock_guard guard(state_->mutex);
        state_->work.push_back(std::move(work));
    }
    state_->interrupt();
}

Subscription LoopQueue::after(Seconds delay, Work work) {
    TimerSchedule::ID id = 0;
    {
        const std::lock_guard guard(state_->mutex);
        id = state_->timers.addOnce(state_->clock.uptime() + delay, std::move(work));
    }
    state_->interrupt();
    return Subscription([state = state_, id] {
        const std::lock_guard guard(state->mutex);
        state->timers.cancel(id);
    });
}

Subscription LoopQueue::every(Pace pace, Work work) {
    TimerSchedule::ID id = 0;
    {
        const std::lock_guard guard(state_->mutex);
        id = state_->timers.addRepeating(state_->clock.uptime(), pace, std::move(work));
    }
    state_->interrupt();
    return Subscription([state = state_, id] {
        const std::lock_guard guard(state->mutex);
        state->timers.cancel(id);
    });
}

Subscription LoopQueue::watch(int descriptor, Work whenReadable) {
    std::uint64_t id = 0;
    {
        const std::lock_guard guard(state_->mutex);
        id = state_->nextWatch++;
        state_->watches.push_back({id, descriptor, std::make_shared<const Work>(std::move(whenReadable))});
    }
    state_->interrupt();
    return Subscription([state = state_, id] {
        {
            const std::lock_guard guard(state->mutex);
            std::erase_if(state->watches, [id](const State::Watch& watch) { return watch.id == id; });
        }
        state->interrupt();
    });
}

void LoopQueue::runAndWait(const Work& work) {
    std::mutex mutex;
    std::condition_variable finished;
    bool done = false;
    async([&] {
        work();
        // Notifying under the lock: the waiter owns the condition and destroys it as soon as it sees `done`.
        const std::lock_guard guard(mutex);
        done = true;
        finished.notify_one();
    });
    std::unique_lock guard(mutex);
    finished.wait(guard, [&] { return done; });
}

void LoopQueue::loop() {
    auto& state = *state_;
    state.thread = std::this_thread::get_id();
    std::vector<pollfd> descriptors;
    std::vector<std::uint64_t> watchIDs;
    std::deque<Work> batch;
    while (true) {
        {
            const std::lock_guard guard(state.mutex);
            batch.swap(state.work);
        }
        for (auto& work : batch)
            std::exchange(work, nullptr)();
        batch.clear();

        while (true) {
            std::shared_ptr<const Work> due;
            {
                const std::lock_guard guard(state.mutex);
                due = state.timers.takeDue(state.clock.uptime());
            }
            if (!due)
                break;
            (*due)();
        }

        std::optional<timespec> patience;
        {
            const std::lock_guard guard(state.mutex);
            if (!state.work.empty())
                patience.emplace();
            else if (state.finished)
                break;
            else if (const auto wake = state.timers.nextWake()) {
                const double seconds = std::max(0.0, (*wake - state.clock.uptime()).count());
                const double whole = std::floor(seconds);
                patience = timespec{static_cast<time_t>(whole), static_cast<long>((seconds - whole) * 1e9)};
            }
            descriptors.assign(1, pollfd{state.wake, POLLIN, 0});
            watchIDs.assign(1, 0);
            for (const auto& watch : state.watches) {
                descriptors.push_back({watch.descriptor, POLLIN, 0});
                watchIDs.push_back(watch.id);
            }
        }

        if (ppoll(descriptors.data(), descriptors.size(), patience ? &*patience : nullptr, nullptr) <= 0)
            continue; // a timer is due, or a signal came
        if (descriptors.front().revents != 0)
            state.resetWake();
        for (std::size_t i = 1; i < descriptors.size(); ++i) {
            if (descriptors[i].revents == 0)
                continue;
            std::shared_ptr<const Work> ready;
            {
                const std::lock_guard guard(state.mutex);
                for (const auto& watch : state.watches)
                    if (watch.id == watchIDs[i])
                        ready = watch.whenReadable;
            }
            if (ready)
                (*ready)();
        }
    }
    state.thread = std::thread::id();
}

void LoopQueue::finish() {
    {
        const std::lock_guard guard(state_->mutex);
        state_->finished = true;
    }
    eventfd_write(state_->wake, 1);
}

WorkerQueue::WorkerQueue(std::string label) : LoopQueue(std::move(label)), thread_([this] { loop(); }) {
    // The kernel shows at most 15 bytes of a thread's name.
    pthread_setname_np(thread_.native_handle(), this->label().substr(0, 15).c_str());
}

WorkerQueue::~WorkerQueue() {
    finish();
    thread_.join();
}

MainQueue::MainQueue() : LoopQueue("main") {}

void MainQueue::run() {
    loop();
}

void MainQueue::stop() {
    finish();
}

} // namespace kestrio
