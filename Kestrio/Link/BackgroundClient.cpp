#include "Kestrio/Link/BackgroundClient.h"

#include "Kestrio/Link/BusNames.h"

#include <nlohmann/json.hpp>
#include <sdbus-c++/sdbus-c++.h>

namespace kestrio {
namespace {

std::chrono::microseconds deadline() {
    return std::chrono::duration_cast<std::chrono::microseconds>(Background::callDeadline);
}

std::optional<AgentStatus> parse(const std::string& text) {
    return agentStatusFromJSON(nlohmann::ordered_json::parse(text, nullptr, false));
}

} // namespace

std::unique_ptr<BackgroundClient> BackgroundClient::connect(const std::string& busAddress) {
    try {
        auto connection = sdbus::createSessionBusConnectionWithAddress(busAddress);
        connection->setMethodCallTimeout(deadline());
        bool isThere = false;
        sdbus::createProxy(*connection, "org.freedesktop.DBus", "/org/freedesktop/DBus")
            ->callMethod("NameHasOwner")
            .onInterface("org.freedesktop.DBus")
            .withArguments(std::string(busNames::service))
            .storeResultsTo(isThere);
        if (!isThere)
            return nullptr;
        return std::unique_ptr<BackgroundClient>(new BackgroundClient(std::move(connection)));
    } catch (const sdbus::Error&) {
        return nullptr;
    }
}

BackgroundClient::BackgroundClient(std::unique_ptr<sdbus::IConnection> connection)
    : connection_(std::move(connection)),
      proxy_(sdbus::createProxy(*connection_, busNames::service, busNames::object)),
      receiver_(std::make_shared<std::function<void(const AgentStatus&)>>()) {
    proxy_->uponSignal("Changed")
        .onInterface(busNames::interface)
        .call([receiver = receiver_](const std::string& json) {
            if (const auto status = parse(json); status && *receiver)
                (*receiver)(*status);
        });
    proxy_->finishRegistration();
}

BackgroundClient::~BackgroundClient() = default;

std::optional<AgentStatus> BackgroundClient::status() {
    try {
        std::string json;
        proxy_->callMethod("Status").onInterface(busNames::interface).withTimeout(deadline()).storeResultsTo(json);
        return parse(json);
    } catch (const sdbus::Error&) {
        return std::nullopt;
    }
}

template <class... Arguments>
Background::Failure BackgroundClient::call(const char* method, Arguments... arguments) {
    try {
        auto request = proxy_->createMethodCall(busNames::interface, method);
        (void)(request << ... << arguments);
        proxy_->callMethod(request, static_cast<std::uint64_t>(deadline().count()));
        return std::nullopt;
    } catch (const sdbus::Error& error) {
        // What the agent itself says is for the person; what the library says is not.
        return error.getName().starts_with(busNames::errorPrefix) ? error.getMessage() : "Kestrio does not answer";
    }
}

Background::Failure BackgroundClient::pause(std::optional<Seconds> length) {
    return length ? call("Pause", length->count()) : call("PauseIndefinitely");
}

Background::Failure BackgroundClient::resume() {
    return call("Resume");
}

Background::Failure BackgroundClient::openDashboard() {
    return call("OpenDashboard");
}

std::optional<std::vector<std::string>> BackgroundClient::connectedBrowsers() {
    try {
        std::vector<std::string> browsers;
        proxy_->callMethod("Browsers")
            .onInterface(busNames::interface)
            .withTimeout(deadline())
            .storeResultsTo(browsers);
        return browsers;
    } catch (const sdbus::Error&) {
        return std::nullopt;
    }
}

Subscription BackgroundClient::observe(std::function<void(const AgentStatus&)> receiver) {
    *receiver_ = std::move(receiver);
    if (call("Watch"))
        *receiver_ = nullptr;
    return Subscription([held = receiver_] { *held = nullptr; });
}

bool BackgroundClient::run() {
    bool agentEnded = false;
    try {
        const auto leaving = connection_->addMatch(
            std::string("type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
                        "member='NameOwnerChanged',arg0='") +
                busNames::service + "',arg2=''",
            [&](sdbus::Message&) {
                agentEnded = true;
                connection_->leaveEventLoop();
            });
        if (!status()) // gone before the rule was there
            return true;
        connection_->enterEventLoop();
    } catch (const sdbus::Error&) {
        return false; // the bus went
    }
    return agentEnded;
}

} // namespace kestrio
