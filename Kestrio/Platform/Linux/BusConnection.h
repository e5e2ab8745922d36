// One connection to a message bus, served by a queue's loop.
//
// Belongs to that queue: opened, used and dropped in its work (or before its loop runs), never from within one of the
// connection's own callbacks. What arrives is handled in the queue's work; calls made through `perform` have a
// deadline, and what arrived while one of them waited is handled right after. Nothing throws.
//
// A bus that dies is told once; from then on every `perform` fails at once. Whoever owns the connection drops it then.
#pragma once

#include "Kestrio/Base/Date.h"
#include "Kestrio/Base/Subscription.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace sdbus {
class IConnection;
class Message;
} // namespace sdbus

namespace kestrio {

class LoopQueue;

class BusConnection {
public:
    enum class Bus { session, system };

    /// How long any call waits for its answer unless it says otherwise.
    static constexpr Seconds callDeadline{0.4};

    /// The address of the person's session bus or of the system bus, by the environment and the well-known places.
    static std::optional<std::string> address(Bus bus);

    /// Null when there is no bus there, or it does not answer within the deadline. The queue must outlive the answer.
    static std::unique_ptr<BusConnection> open(LoopQueue& queue, const std::string& address);
    static std::unique_ptr<BusConnection> open(LoopQueue& queue, Bus bus);

    ~BusConnection();
    BusConnection(const BusConnection&) = delete;
    BusConnection& operator=(const BusConnection&) = delete;

    bool isAlive() const;

    /// For making proxies and objects, which are dropped before this. Everything that sends goes through `perform`.
    sdbus::IConnection& connection();

    /// Runs work that calls or sends, and sees to what it left behind. False when it failed: an error of the other
    /// side, a deadline, a dead bus.
    bool perform(const std::function<void(sdbus::IConnection&)>& work);

    /// Calls `receiver` for each message of this rule until the token is dropped. Absent when the bus didn't take the
    /// rule. The receiver reads only what it expects; a message of another shape is passed over.
    std::optional<Subscription> match(const std::string& rule, std::function<void(sdbus::Message&)> receiver);

    /// Called once, in work of its own, after the bus died. Replaces the one before.
    void onDeath(std::function<void()> handler);

private:
    struct State;

    explicit BusConnection(std::shared_ptr<State> state);

    // Shared with work on the queue and with tokens.
    std::shared_ptr<State> state_;
};

} // namespace kestrio
