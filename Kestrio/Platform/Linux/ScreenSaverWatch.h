// Whether a screen saver or a desktop's own lock covers the screen, as those tell on the session bus.
//
// Belongs to the queue it was made for, on which reports come. Waits for nobody, and starts no service by asking.
#pragma once

#include "Kestrio/Base/Subscription.h"

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace sdbus {
class IProxy;
class Message;
} // namespace sdbus

namespace kestrio {

class BusConnection;
class LoopQueue;

class ScreenSaverWatch {
public:
    /// `report` hears whether any of them is active, each time that changes; none is at first.
    ScreenSaverWatch(LoopQueue& queue, const std::string& busAddress, std::function<void(bool active)> report);
    ~ScreenSaverWatch();
    ScreenSaverWatch(const ScreenSaverWatch&) = delete;
    ScreenSaverWatch& operator=(const ScreenSaverWatch&) = delete;

private:
    struct Saver {
        std::string name;
        std::unique_ptr<sdbus::IProxy> proxy;
        Subscription ownerMatch;
    };

    void askWhoIsThere();
    void askWhetherActive(Saver& saver);
    void told(sdbus::Message& message);
    void ownerChanged(Saver& saver, sdbus::Message& message);
    void set(const std::string& name, bool active);
    void clear();

    const std::function<void(bool)> report_;
    std::set<std::string> active_;

    std::unique_ptr<BusConnection> bus_; // everything below goes before it
    std::unique_ptr<sdbus::IProxy> names_;
    Subscription match_;
    std::vector<Saver> savers_;
};

} // namespace kestrio
