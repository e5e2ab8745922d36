// Notifications by the desktop's own service, org.freedesktop.Notifications on the session bus.
//
// Belongs to the queue that it was made for. Connects with the first notification; what the service answers is handled
// in the queue's work. Where there is no bus, or nobody who shows notifications, nothing is shown, and the next one
// tries anew.
#pragma once

#include "Kestrio/Base/Signal.h"
#include "Kestrio/Platform/Notifications.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace sdbus {
class IProxy;
class Message;
} // namespace sdbus

namespace kestrio {

class BusConnection;
class LoopQueue;

class DesktopNotifications final : public Notifications {
public:
    /// `address` is that of the session bus. The queue must outlive this.
    DesktopNotifications(LoopQueue& queue, std::string address);
    ~DesktopNotifications() override;
    DesktopNotifications(const DesktopNotifications&) = delete;
    DesktopNotifications& operator=(const DesktopNotifications&) = delete;

    /// This desktop asks nobody.
    void requestPermission() override {}
    void post(const Notification& notification) override;
    Subscription observeClicks(std::function<void(const std::string& id)> receiver) override;

private:
    bool connect();
    void disconnect();
    void askForCapabilities();
    void show(const Notification& notification);
    void actionInvoked(sdbus::Message& message);
    void closed(sdbus::Message& message);
    std::optional<std::string> identifier(std::uint32_t number) const;

    LoopQueue& queue_;
    const std::string address_;
    std::unique_ptr<BusConnection> bus_; // null before the first notification, and after the bus died
    std::unique_ptr<sdbus::IProxy> service_;
    Subscription actions_;
    Subscription closings_;

    bool isAsking_ = false;
    std::optional<bool> takesMarkup_;            // absent until the service has told
    std::vector<Notification> waiting_;          // for that answer
    std::map<std::string, std::uint32_t> shown_; // the service's number of what stands on the screen
    Signal<std::string> clicks_;
};

} // namespace kestrio
