// Notifications in memory, for tests: keeps what was posted, and clicks when the test does. Belongs to the test's
// thread.
#pragma once

#include "Kestrio/Base/Signal.h"
#include "Kestrio/Platform/Notifications.h"

#include <map>
#include <vector>

namespace kestrio {

class ScriptedNotifications final : public Notifications {
public:
    std::vector<Notification> posted;          // all, in order
    std::map<std::string, Notification> shown; // as they stand on the screen, by identifier
    int permissionRequests = 0;
    int observations = 0;

    void click(const std::string& id) { clicks_.emit(id); }

    void requestPermission() override { ++permissionRequests; }
    void post(const Notification& notification) override {
        posted.push_back(notification);
        shown[notification.id] = notification;
    }
    Subscription observeClicks(std::function<void(const std::string&)> receiver) override {
        ++observations;
        return clicks_.subscribe(std::move(receiver));
    }

private:
    Signal<std::string> clicks_;
};

} // namespace kestrio
