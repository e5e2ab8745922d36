#include "Kestrio/Link/BackgroundService.h"

#include "Kestrio/Link/BusNames.h"

#include <nlohmann/json.hpp>
#include <sdbus-c++/sdbus-c++.h>

namespace kestrio {

using busNames::interface;

/// Somebody who watches, and the rule by which their leaving is heard of.
struct BackgroundService::Watcher {
    sdbus::Slot leaving;
};

namespace {

/// A path may hold any bytes; what is no text in it must not keep the rest from being told.
std::string text(const AgentStatus& status) {
    return toJSON(status).dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

bool isOnBus(sdbus::IConnection& connection, const std::string& name) {
    bool answer = false;
    sdbus::createProxy(connection, "org.freedesktop.DBus", "/org/freedesktop/DBus")
        ->callMethod("NameHasOwner")
        .onInterface("org.freedesktop.DBus")
        .withArguments(name)
        .storeResultsTo(answer);
    return answer;
}

/// The failure of an action as the bus tells it.
void require(const Background::Failure& failure, const char* name = busNames::errorFailed) {
    if (failure)
        throw sdbus::Error(name, *failure);
}

} // namespace

BackgroundService::BackgroundService(Perform perform, LocalBackground& background)
    : perform_(std::move(perform)), background_(background) {}

BackgroundService::~BackgroundService() = default;

std::unique_ptr<BackgroundService> BackgroundService::offer(sdbus::IConnection& connection, Perform perform,
                                                            LocalBackground& background) {
    std::unique_ptr<BackgroundService> service(new BackgroundService(std::move(perform), background));
    // The object stands before the name does, so that nobody finds the one without the other.
    const bool offered = service->perform_([&](sdbus::IConnection&) {
        service->registerObject(connection);
        connection.requestName(busNames::service);
    });
    if (!offered)
        return nullptr;
    service->stateChanges_ = background.observeState([self = service.get()] { self->tellState(); });
    return service;
}

void BackgroundService::registerObject(sdbus::IConnection& connection) {
    object_ = sdbus::createObject(connection, busNames::object);
    object_->registerMethod("Pause").onInterface(interface).withInputParamNames("seconds").implementedAs(
        [this](double seconds) { require(background_.pause(Seconds(seconds)), busNames::errorInvalid); });
    object_->registerMethod("PauseIndefinitely").onInterface(interface).implementedAs([this] {
        require(background_.pause(std::nullopt));
    });
    object_->registerMethod("Resume").onInterface(interface).implementedAs([this] { require(background_.resume()); });
    object_->registerMethod("OpenDashboard").onInterface(interface).implementedAs([this] {
        require(background_.openDashboard());
    });
    object_->registerMethod("Browsers")
        .onInterface(interface)
        .withOutputParamNames("bundleIdentifiers")
        .implementedAs([this] { return background_.connectedBrowsers().value_or(std::vector<std::string>()); });
    object_->registerMethod("Status").onInterface(interface).withOutputParamNames("json").implementedAs([this] {
        const auto status = background_.status();
        return status ? text(*status) : std::string();
    });
    object_->registerMethod("Watch").onInterface(interface).implementedAs([this, &connection] { watch(connection); });
    object_->registerProperty("State").onInterface(interface).withGetter(
        [this] { return std::string(rawValue(background_.status()->state)); });
    object_->registerProperty("PausedUntil").onInterface(interface).withGetter([this] {
        const auto until = background_.status()->pausedUntil;
        return until ? until->seconds() : 0.0;
    });
    object_->registerProperty("Version").onInterface(interface).withGetter(
        [this] { return background_.status()->version; });
    object_->registerSignal("Changed").onInterface(interface).withParameters<std::string>("json");
    object_->finishRegistration();
}

void BackgroundService::watch(sdbus::IConnection& connection) {
    const auto sender = object_->getCurrentlyProcessedMessage()->getSender();
    if (watchers_.contains(sender))
        return;
    auto watcher = std::make_unique<Watcher>();
    watcher->leaving = connection.addMatch("type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop."
                                           "DBus',member='NameOwnerChanged',arg0='" +
                                               sender + "',arg2=''",
                                           [this, sender](sdbus::Message&) {
                                               // The rule is in use right now; what it stands in goes a moment later.
                                               background_.afterwards([weak = std::weak_ptr(self_), sender] {
                                                   if (const auto self = weak.lock())
                                                       (*self)->forget(sender);
                                               });
                                           });
    if (!isOnBus(connection, sender))
        return; // left before the rule was there
    watchers_.emplace(sender, std::move(watcher));
    if (!changes_.isActive())
        changes_ = background_.observe([this](const AgentStatus& status) { tell(status); });
}

void BackgroundService::forget(const std::string& watcher) {
    watchers_.erase(watcher);
    if (watchers_.empty())
        changes_.cancel();
}

void BackgroundService::tell(const AgentStatus& status) {
    const auto json = text(status);
    perform_([&](sdbus::IConnection&) { object_->emitSignal("Changed").onInterface(interface).withArguments(json); });
}

void BackgroundService::tellState() {
    perform_([&](sdbus::IConnection&) { object_->emitPropertiesChangedSignal(interface, {"State", "PausedUntil"}); });
}

} // namespace kestrio
