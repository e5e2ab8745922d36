// One icon in the desktop's bar, in the protocol org.kde.StatusNotifierItem over a connection of its own. It announces
// itself to the watcher of icons, and again whenever a watcher appears, so that a bar may start later or restart.
//
// Made, used and dropped on its queue; events are told there, in work of their own. Bars are told only what changed,
// and nobody is told anything while no watcher knows the icon.
#pragma once

#include "Kestrio/Platform/Linux/TrayMenu.h"
#include "Kestrio/Platform/Tray.h"

#include <functional>
#include <memory>
#include <string>

namespace sdbus {
class IProxy;
class Message;
} // namespace sdbus

namespace kestrio {

class BusConnection;
class LoopQueue;

class StatusNotifierItem {
public:
    using Receiver = std::function<void(const TrayEvent&)>;

    /// `number` tells the icons of one process apart. Without a bus at the address nobody ever sees the icon. The queue
    /// must outlive this.
    StatusNotifierItem(LoopQueue& queue, const std::string& busAddress, int number, TrayItem item, Receiver receiver);
    ~StatusNotifierItem();
    StatusNotifierItem(const StatusNotifierItem&) = delete;
    StatusNotifierItem& operator=(const StatusNotifierItem&) = delete;

    void show(const TrayItem& item);

    /// Whether a watcher has taken it.
    bool isShown() const { return isShown_; }

private:
    bool offer(const std::string& name);
    void registerMethods();
    void registerProperties();
    bool observeWatcher();
    void announce();
    void watcherChanged(sdbus::Message& message);
    void click(TrayClick::Button button, int x, int y);
    void tellChanges(const TrayItem& before);
    void tell(const char* signal);
    void later(TrayEvent event);
    std::string takeToken();

    LoopQueue& queue_;
    TrayItem item_;
    const Receiver receiver_;
    std::string name_;
    bool isShown_ = false;
    std::string activationToken_;        // for the next click
    std::unique_ptr<BusConnection> bus_; // null where there is none
    std::unique_ptr<TrayMenu> menu_;
    std::unique_ptr<sdbus::IObject> object_;
    std::unique_ptr<sdbus::IProxy> watcher_;
    Subscription watching_;
    std::shared_ptr<StatusNotifierItem*> self_ = std::make_shared<StatusNotifierItem*>(this); // work holds it weakly
};

} // namespace kestrio
