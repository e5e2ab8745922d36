#include "Kestrio/Platform/Linux/BusMonitor.h"

#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Platform/Linux/BusAddress.h"
#include "Kestrio/Platform/Linux/BusConnection.h"

#include <systemd/sd-bus.h>
#include <utility>

namespace kestrio {
namespace {

struct DropMessage {
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
using Message = std::unique_ptr<sd_bus_message, DropMessage>;

std::uint64_t microseconds(Seconds span) {
    return static_cast<std::uint64_t>(span.count() * 1e6);
}

std::string textOf(const char* text) {
    return text ? text : "";
}

bool appendRules(sd_bus_message* request, const std::vector<std::string>& rules) {
    if (sd_bus_message_open_container(request, 'a', "s") < 0)
        return false;
    for (const auto& rule : rules)
        if (sd_bus_message_append_basic(request, 's', rule.c_str()) < 0)
            return false;
    constexpr std::uint32_t noFlags = 0;
    return sd_bus_message_close_container(request) >= 0 && sd_bus_message_append_basic(request, 'u', &noFlags) >= 0;
}

} // namespace

/// The bus library of the rest of the program answers every call that it sees and does not know, as is right for one
/// that is addressed to it. A monitor must say nothing. So this uses what lies beneath, which has a mode for it.
struct BusMonitor::Connection {
    sd_bus* bus = nullptr;

    Connection() = default;
    ~Connection() { sd_bus_close_unref(bus); }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    bool open(const std::string& address, const std::vector<std::string>& rules) {
        return sd_bus_new(&bus) >= 0 && sd_bus_set_address(bus, address.c_str()) >= 0 &&
               sd_bus_set_bus_client(bus, 1) >= 0 && sd_bus_set_monitor(bus, 1) >= 0 && sd_bus_start(bus) >= 0 &&
               becomeMonitor(rules);
    }

    bool becomeMonitor(const std::vector<std::string>& rules) {
        sd_bus_message* made = nullptr;
        if (sd_bus_message_new_method_call(bus, &made, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                           "org.freedesktop.DBus.Monitoring", "BecomeMonitor") < 0)
            return false;
        const Message request(made);
        return appendRules(request.get(), rules) &&
               sd_bus_call(bus, request.get(), microseconds(BusConnection::callDeadline), nullptr, nullptr) >= 0;
    }
};

std::unique_ptr<BusMonitor> BusMonitor::open(LoopQueue& queue, const std::string& address,
                                             const std::vector<std::string>& rules,
                                             std::function<void(const Call&)> seen, std::function<void()> ended) {
    const auto answering = answeringBus(address, BusConnection::callDeadline);
    auto connection = std::make_unique<Connection>();
    if (!answering || !connection->open(*answering, rules))
        return nullptr;
    const int descriptor = sd_bus_get_fd(connection->bus);
    if (descriptor < 0)
        return nullptr;
    std::unique_ptr<BusMonitor> monitor(new BusMonitor(std::move(connection), std::move(seen), std::move(ended)));
    monitor->watch_ = queue.watch(descriptor, [self = monitor.get()] { self->read(); });
    // What came along with the answer is in memory already; the descriptor would never tell of it.
    monitor->first_ = queue.after(Seconds(0), [self = monitor.get()] { self->read(); });
    return monitor;
}

BusMonitor::BusMonitor(std::unique_ptr<Connection> connection, std::function<void(const Call&)> seen,
                       std::function<void()> ended)
    : connection_(std::move(connection)), seen_(std::move(seen)), ended_(std::move(ended)) {}

BusMonitor::~BusMonitor() {
    watch_.cancel();
    first_.cancel();
}

void BusMonitor::read() {
    int result = 0;
    do {
        sd_bus_message* taken = nullptr;
        result = sd_bus_process(connection_->bus, &taken);
        const Message message(taken);
        if (message && sd_bus_message_is_method_call(message.get(), nullptr, nullptr) > 0)
            seen_({textOf(sd_bus_message_get_sender(message.get())),
                   textOf(sd_bus_message_get_interface(message.get())),
                   textOf(sd_bus_message_get_member(message.get()))});
    } while (result > 0);
    if (result >= 0)
        return;
    watch_.cancel();
    if (const auto ended = ended_)
        ended(); // may drop this
}

} // namespace kestrio
