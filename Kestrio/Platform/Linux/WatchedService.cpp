#include "Kestrio/Platform/Linux/WatchedService.h"

#include "Kestrio/Platform/Linux/BusConnection.h"

#include <fmt/format.h>
#include <sdbus-c++/sdbus-c++.h>
#include <utility>

namespace kestrio {

WatchedService::WatchedService(BusConnection& bus, std::string name, const std::string& path,
                               const std::string& changes, Receivers receivers)
    : bus_(bus), name_(std::move(name)), receivers_(std::move(receivers)) {
    auto ownerMatch = bus_.match(fmt::format("type='signal',sender='org.freedesktop.DBus',"
                                             "interface='org.freedesktop.DBus',member='NameOwnerChanged',arg0='{}'",
                                             name_),
                                 [this](sdbus::Message& message) { ownerChanged(message); });
    // A bus that fails here has stopped answering: one failure costs its deadline, more would add up.
    if (!ownerMatch)
        return;
    ownerMatch_ = std::move(*ownerMatch);
    auto changesMatch = bus_.match(fmt::format("type='signal',sender='{}',path='{}',{}", name_, path, changes),
                                   [this](sdbus::Message&) { receivers_.ask(); });
    if (changesMatch)
        changesMatch_ = std::move(*changesMatch);
}

WatchedService::~WatchedService() = default;

void WatchedService::begin() {
    if (!ownerMatch_.isActive())
        return;
    names_ = sdbus::createProxy(bus_.connection(), "org.freedesktop.DBus", "/org/freedesktop/DBus");
    bus_.perform([this](sdbus::IConnection&) {
        names_->callMethodAsync("NameHasOwner")
            .onInterface("org.freedesktop.DBus")
            .withArguments(name_)
            .uponReplyInvoke([this](const sdbus::Error* error, bool isOwned) {
                if (!error && isOwned)
                    receivers_.ask();
            });
    });
}

std::unique_ptr<sdbus::IProxy> WatchedService::proxyOf(const std::string& path) {
    return sdbus::createProxy(bus_.connection(), name_, path);
}

void WatchedService::ownerChanged(sdbus::Message& message) {
    std::string name;
    std::string before;
    std::string now;
    message >> name >> before >> now;
    receivers_.forget();
    if (!now.empty())
        receivers_.ask();
}

} // namespace kestrio
