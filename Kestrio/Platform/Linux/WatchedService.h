// A service on a bus as somebody follows it who never waits for it: when it appears, announces a change or goes, that
// is heard. A service that starts later is found, and none is started by asking.
//
// Belongs to the queue of its bus.
#pragma once

#include "Kestrio/Base/Subscription.h"

#include <functional>
#include <memory>
#include <string>

namespace sdbus {
class IProxy;
class Message;
} // namespace sdbus

namespace kestrio {

class BusConnection;

class WatchedService {
public:
    struct Receivers {
        /// It is there, or has announced a change: it is to be asked.
        std::function<void()> ask;
        /// It went, or another took its place, which is asked next: nothing that it told holds any longer, and its
        /// proxies are to be made anew, for a new owner knows nothing of calls to the old one.
        std::function<void()> forget;
    };

    /// `changes` is the rest of a match rule, for the signals of the service that announce a change. The bus must
    /// outlive this.
    WatchedService(BusConnection& bus, std::string name, const std::string& path, const std::string& changes,
                   Receivers receivers);
    ~WatchedService();
    WatchedService(const WatchedService&) = delete;
    WatchedService& operator=(const WatchedService&) = delete;

    /// Has it asked if it is there already. Once, when the receivers can be called.
    void begin();

    BusConnection& bus() { return bus_; }
    std::unique_ptr<sdbus::IProxy> proxyOf(const std::string& path);

private:
    void ownerChanged(sdbus::Message& message);

    BusConnection& bus_;
    const std::string name_;
    const Receivers receivers_;
    std::unique_ptr<sdbus::IProxy> names_;
    Subscription ownerMatch_;
    Subscription changesMatch_;
};

} // namespace kestrio
