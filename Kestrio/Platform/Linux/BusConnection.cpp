#include "Kestrio/Platform/Linux/BusConnection.h"

#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Platform/Linux/BusAddress.h"
#include "Kestrio/Platform/Linux/Locations.h"

#include <algorithm>
#include <poll.h>
#include <sdbus-c++/sdbus-c++.h>
#include <vector>

namespace kestrio {
namespace {

/// The loop wakes for what can be read only. While a bus takes nothing more, sending is tried again at this pace.
constexpr Seconds sendAgain{0.05};

} // namespace

struct BusConnection::State : std::enable_shared_from_this<State> {
    explicit State(LoopQueue& loop) : queue(loop) {}

    void begin();
    void drain();
    void drainSoon();
    void armTimeout();
    void die();

    struct Match {
        sdbus::Slot slot;
        // A rule that was dropped while the bus is being served goes only after that, since it may be its own receiver
        // that dropped it.
        std::shared_ptr<bool> wanted;
    };

    void removeUnwantedMatches();

    LoopQueue& queue;
    std::unique_ptr<sdbus::IConnection> bus;
    std::vector<Match> matches; // after the bus, so that they go first
    bool alive = true;
    bool draining = false;
    bool drainAsked = false;
    std::function<void()> deathHandler;
    Subscription watch;
    Subscription timeout;
};

std::optional<std::string> BusConnection::address(Bus bus) {
    if (bus == Bus::system)
        return processEnvironment("DBUS_SYSTEM_BUS_ADDRESS").value_or("unix:path=/run/dbus/system_bus_socket");
    if (auto address = processEnvironment("DBUS_SESSION_BUS_ADDRESS"))
        return address;
    const auto runtime = processEnvironment("XDG_RUNTIME_DIR");
    return runtime ? std::optional("unix:path=" + *runtime + "/bus") : std::nullopt;
}

std::unique_ptr<BusConnection> BusConnection::open(LoopQueue& queue, const std::string& address) {
    const auto answering = answeringBus(address, callDeadline);
    if (!answering)
        return nullptr;
    const auto state = std::make_shared<State>(queue);
    try {
        state->bus = sdbus::createSessionBusConnectionWithAddress(*answering);
        state->bus->setMethodCallTimeout(std::chrono::duration_cast<std::chrono::microseconds>(callDeadline));
        state->begin();
    } catch (const sdbus::Error&) {
        return nullptr;
    }
    return std::unique_ptr<BusConnection>(new BusConnection(state));
}

std::unique_ptr<BusConnection> BusConnection::open(LoopQueue& queue, Bus bus) {
    const auto found = address(bus);
    return found ? open(queue, *found) : nullptr;
}

BusConnection::BusConnection(std::shared_ptr<State> state) : state_(std::move(state)) {}

BusConnection::~BusConnection() {
    state_->alive = false;
    state_->deathHandler = nullptr;
    state_->watch.cancel();
    state_->timeout.cancel();
    // Work on the queue may still hold the state; the connection itself closes now.
    state_->matches.clear();
    state_->bus.reset();
}

bool BusConnection::isAlive() const {
    return state_->alive;
}

sdbus::IConnection& BusConnection::connection() {
    return *state_->bus;
}

bool BusConnection::perform(const std::function<void(sdbus::IConnection&)>& work) {
    if (!state_->alive)
        return false;
    bool worked = true;
    try {
        work(*state_->bus);
    } catch (const sdbus::Error&) {
        worked = false;
    }
    // Not at once: callbacks never run inside the caller.
    state_->drainSoon();
    return worked;
}

std::optional<Subscription> BusConnection::match(const std::string& rule,
                                                 std::function<void(sdbus::Message&)> receiver) {
    const auto wanted = std::make_shared<bool>(true);
    auto guarded = [receiver = std::move(receiver), wanted](sdbus::Message& message) {
        try {
            if (*wanted)
                receiver(message);
        } catch (const sdbus::Error&) {
            // A message of another shape than its interface promises is nobody's news.
        }
    };
    const bool taken = perform([&](sdbus::IConnection& bus) {
        state_->matches.push_back({bus.addMatch(rule, guarded), wanted});
    });
    if (!taken)
        return std::nullopt;
    return Subscription([wanted, weak = std::weak_ptr(state_)] {
        *wanted = false;
        const auto state = weak.lock();
        if (state && state->alive)
            state->drainSoon();
    });
}

void BusConnection::onDeath(std::function<void()> handler) {
    state_->deathHandler = std::move(handler);
}

void BusConnection::State::begin() {
    watch = queue.watch(bus->getEventLoopPollData().fd, [weak = weak_from_this()] {
        if (const auto state = weak.lock())
            state->drain();
    });
    drainSoon();
}

void BusConnection::State::drainSoon() {
    if (std::exchange(drainAsked, true))
        return;
    queue.async([weak = weak_from_this()] {
        if (const auto state = weak.lock()) {
            state->drainAsked = false;
            state->drain();
        }
    });
}

void BusConnection::State::drain() {
    // Not within itself: a callback that calls leaves what arrived meanwhile to the drain that runs it.
    if (!alive || draining)
        return;
    removeUnwantedMatches();
    draining = true;
    try {
        while (alive && bus->processPendingRequest()) {
        }
        draining = false;
        if (alive)
            armTimeout();
    } catch (const sdbus::Error&) {
        draining = false;
        die();
    }
}

void BusConnection::State::removeUnwantedMatches() {
    std::erase_if(matches, [](const Match& match) { return !*match.wanted; });
}

void BusConnection::State::armTimeout() {
    const auto pending = bus->getEventLoopPollData();
    std::optional<Seconds> wait;
    if (const auto relative = pending.getRelativeTimeout())
        wait = std::max(Seconds(0), Seconds(*relative));
    if ((pending.events & POLLOUT) != 0)
        wait = std::min(wait.value_or(sendAgain), sendAgain);
    timeout.cancel();
    if (!wait)
        return;
    timeout = queue.after(*wait, [weak = weak_from_this()] {
        if (const auto state = weak.lock())
            state->drain();
    });
}

void BusConnection::State::die() {
    if (!std::exchange(alive, false))
        return;
    watch.cancel();
    timeout.cancel();
    queue.async([weak = weak_from_this()] {
        const auto state = weak.lock();
        if (!state)
            return;
        if (const auto handler = std::exchange(state->deathHandler, nullptr))
            handler();
    });
}

} // namespace kestrio
