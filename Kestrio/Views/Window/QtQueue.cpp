#include "Kestrio/Views/Window/QtQueue.h"

#include "Kestrio/Base/Clock.h"
#include "Kestrio/Base/TimerSchedule.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QThread>
#include <QTimer>
#include <cmath>
#include <condition_variable>
#include <deque>
#include <mutex>

namespace kestrio {
namespace {

QEvent::Type wakeEvent() {
    static const auto type = static_cast<QEvent::Type>(QEvent::registerEventType());
    return type;
}

} // namespace

struct QtQueue::State {
    /// Has the server look at its lists soon. With the lock held.
    void wake() {
        if (server && !std::exchange(isWoken, true))
            QCoreApplication::postEvent(server, new QEvent(wakeEvent())); // the event loop owns it
    }

    const SystemClock clock{};
    std::mutex mutex; // guards all below; never held while work runs
    QObject* server = nullptr;
    bool isWoken = false;
    std::deque<Work> work;
    TimerSchedule timers;
};

/// Lives on the application's thread and serves the lists there.
class QtQueue::Server final : public QObject {
public:
    explicit Server(std::shared_ptr<State> state) : state_(std::move(state)) {
        timer_.setTimerType(Qt::PreciseTimer);
        timer_.setSingleShot(true);
        connect(&timer_, &QTimer::timeout, this, [this] { serve(); });
        const std::lock_guard guard(state_->mutex);
        state_->server = this;
    }
    ~Server() override {
        const std::lock_guard guard(state_->mutex);
        state_->server = nullptr;
    }

protected:
    bool event(QEvent* event) override {
        if (event->type() != wakeEvent())
            return QObject::event(event);
        serve();
        return true;
    }

private:
    void serve() {
        std::deque<Work> batch;
        {
            const std::lock_guard guard(state_->mutex);
            state_->isWoken = false;
            batch.swap(state_->work);
        }
        for (auto& work : batch)
            std::exchange(work, nullptr)();
        while (const auto due = takeDue())
            (*due)();
        sleep();
    }

    std::shared_ptr<const Work> takeDue() {
        const std::lock_guard guard(state_->mutex);
        return state_->timers.takeDue(state_->clock.uptime());
    }

    /// Until the next timer; what is handed over meanwhile wakes by an event.
    void sleep() {
        std::optional<Uptime> next;
        {
            const std::lock_guard guard(state_->mutex);
            next = state_->timers.nextWake();
        }
        if (!next)
            return timer_.stop();
        const Seconds patience = std::max(Seconds(0), *next - state_->clock.uptime());
        const auto milliseconds = std::min(std::ceil(patience.count() * 1000), 1e9);
        timer_.start(static_cast<int>(milliseconds));
    }

    const std::shared_ptr<State> state_;
    QTimer timer_;
};

QtQueue::QtQueue(std::string label)
    : label_(std::move(label)), state_(std::make_shared<State>()), server_(std::make_unique<Server>(state_)) {}

QtQueue::~QtQueue() = default;

bool QtQueue::isCurrent() const {
    return QThread::currentThread() == server_->thread();
}

void QtQueue::async(Work work) {
    const std::lock_guard guard(state_->mutex);
    state_->work.push_back(std::move(work));
    state_->wake();
}

Subscription QtQueue::after(Seconds delay, Work work) {
    const std::lock_guard guard(state_->mutex);
    const auto id = state_->timers.addOnce(state_->clock.uptime() + delay, std::move(work));
    state_->wake();
    return subscription(id);
}

Subscription QtQueue::every(Pace pace, Work work) {
    const std::lock_guard guard(state_->mutex);
    const auto id = state_->timers.addRepeating(state_->clock.uptime(), pace, std::move(work));
    state_->wake();
    return subscription(id);
}

Subscription QtQueue::subscription(std::uint64_t id) {
    return Subscription([state = state_, id] {
        const std::lock_guard guard(state->mutex);
        state->timers.cancel(id);
    });
}

void QtQueue::runAndWait(const Work& work) {
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

} // namespace kestrio
