#include "Kestrio/Platform/Linux/DesktopNotifications.h"

#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Platform/Linux/BusConnection.h"

#include <algorithm>
#include <chrono>
#include <fmt/format.h>
#include <sdbus-c++/sdbus-c++.h>
#include <utility>

namespace kestrio {
namespace {

constexpr const char* serviceName = "org.freedesktop.Notifications";
constexpr const char* servicePath = "/org/freedesktop/Notifications";

/// Nobody waits for its answers, so a service that the bus has to start first may take its time.
constexpr std::chrono::seconds patience{25};
/// The action of a click on the notification itself.
constexpr const char* defaultAction = "default";
constexpr std::int32_t usualTime = -1;

std::string signalRule(const char* member) {
    return fmt::format("type='signal',sender='{0}',interface='{0}',path='{1}',member='{2}'", serviceName, servicePath,
                       member);
}

/// A service that understands markup would take an ampersand or an angle bracket for some.
std::string escaped(const std::string& text) {
    std::string result;
    for (const char character : text) {
        switch (character) {
        case '&': result += "&amp;"; break;
        case '<': result += "&lt;"; break;
        case '>': result += "&gt;"; break;
        default: result += character;
        }
    }
    return result;
}

} // namespace

DesktopNotifications::DesktopNotifications(LoopQueue& queue, std::string address)
    : queue_(queue), address_(std::move(address)) {}

DesktopNotifications::~DesktopNotifications() {
    disconnect();
}

void DesktopNotifications::post(const Notification& notification) {
    if (!connect())
        return;
    if (takesMarkup_) {
        show(notification);
        return;
    }
    waiting_.push_back(notification);
    if (!isAsking_)
        askForCapabilities();
}

Subscription DesktopNotifications::observeClicks(std::function<void(const std::string& id)> receiver) {
    return clicks_.subscribe(std::move(receiver));
}

bool DesktopNotifications::connect() {
    if (bus_ && bus_->isAlive())
        return true;
    disconnect();
    bus_ = BusConnection::open(queue_, address_);
    if (!bus_)
        return false;
    auto actions =
        bus_->match(signalRule("ActionInvoked"), [this](sdbus::Message& message) { actionInvoked(message); });
    auto closings =
        actions ? bus_->match(signalRule("NotificationClosed"), [this](sdbus::Message& message) { closed(message); })
                : std::nullopt;
    if (!closings) {
        disconnect();
        return false;
    }
    actions_ = std::move(*actions);
    closings_ = std::move(*closings);
    service_ = sdbus::createProxy(bus_->connection(), serviceName, servicePath);
    return true;
}

void DesktopNotifications::disconnect() {
    actions_.cancel();
    closings_.cancel();
    service_.reset();
    bus_.reset();
    isAsking_ = false;
    takesMarkup_.reset();
    waiting_.clear();
    shown_.clear();
}

void DesktopNotifications::askForCapabilities() {
    isAsking_ = bus_->perform([this](sdbus::IConnection&) {
        service_->callMethodAsync("GetCapabilities")
            .onInterface(serviceName)
            .withTimeout(patience)
            .uponReplyInvoke([this](const sdbus::Error* error, const std::vector<std::string>& capabilities) {
                isAsking_ = false;
                const auto waiting = std::exchange(waiting_, {});
                if (error)
                    return; // nobody shows notifications here
                takesMarkup_ = std::ranges::find(capabilities, "body-markup") != capabilities.end();
                for (const auto& notification : waiting)
                    show(notification);
            });
    });
    if (!isAsking_)
        waiting_.clear();
}

void DesktopNotifications::show(const Notification& notification) {
    const auto earlier = shown_.find(notification.id);
    const std::uint32_t replaces = earlier == shown_.end() ? 0 : earlier->second;
    const auto body = *takesMarkup_ ? escaped(notification.body) : notification.body;
    const std::vector<std::string> actions{defaultAction, "Open"};
    const std::map<std::string, sdbus::Variant> hints{{"desktop-entry", sdbus::Variant(std::string("kestrio"))}};
    bus_->perform([&](sdbus::IConnection&) {
        service_->callMethodAsync("Notify")
            .onInterface(serviceName)
            .withTimeout(patience)
            .withArguments(std::string("Kestrio"), replaces, std::string("dev.haldorvinter.Kestrio"),
                           notification.title, body, actions, hints, usualTime)
            .uponReplyInvoke([this, id = notification.id](const sdbus::Error* error, const std::uint32_t& number) {
                if (!error)
                    shown_[id] = number;
            });
    });
}

void DesktopNotifications::actionInvoked(sdbus::Message& message) {
    std::uint32_t number = 0;
    std::string action;
    message >> number >> action;
    const auto id = identifier(number);
    if (id && action == defaultAction)
        clicks_.emit(*id);
}

void DesktopNotifications::closed(sdbus::Message& message) {
    std::uint32_t number = 0;
    message >> number;
    if (const auto id = identifier(number))
        shown_.erase(*id);
}

/// Absent for a notification of somebody else's.
std::optional<std::string> DesktopNotifications::identifier(std::uint32_t number) const {
    const auto found = std::ranges::find_if(shown_, [number](const auto& shown) { return shown.second == number; });
    return found == shown_.end() ? std::nullopt : std::optional(found->first);
}

} // namespace kestrio
