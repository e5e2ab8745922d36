#include "Kestrio/Link/BackgroundClient.h"

#include "Kestrio/Base/Text.h"
#include "Kestrio/Link/BusNames.h"
#include "Kestrio/Link/BusWords.h"
#include "Kestrio/Link/ImportJSON.h"
#include "Kestrio/Link/OptimizerClient.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <poll.h>
#include <sdbus-c++/sdbus-c++.h>

namespace kestrio {
namespace {

std::chrono::microseconds deadline() {
    return std::chrono::duration_cast<std::chrono::microseconds>(Background::callDeadline);
}

/// How long an import may take before nobody waits for it any more.
constexpr std::chrono::hours importDeadline{24};

/// What is no JSON is a value of a type of its own, which no reader takes.
nlohmann::ordered_json parsed(const std::string& text) {
    return nlohmann::ordered_json::parse(text, nullptr, false);
}

/// The rule for the notice that the agent's name has no owner any more.
std::string agentLeaves() {
    return std::string("type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
                       "member='NameOwnerChanged',arg0='") +
           busNames::service + "',arg2=''";
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
      optimizer_(std::make_unique<OptimizerClient>(*connection_)),
      receiver_(std::make_shared<std::function<void(const AgentStatus&)>>()) {
    proxy_->uponSignal("Changed")
        .onInterface(busNames::interface)
        .call([receiver = receiver_](const std::string& json) {
            if (const auto status = agentStatusFromJSON(parsed(json)); status && *receiver)
                (*receiver)(*status);
        });
    proxy_->uponSignal("ActivityDataDidChange").onInterface(busNames::interface).call([receiver = dataReceiver_] {
        if (*receiver)
            (*receiver)();
    });
    proxy_->uponSignal("BrowsersDidChange").onInterface(busNames::interface).call([changes = browserChanges_] {
        changes->emit();
    });
    proxy_->uponSignal("ImportProgress")
        .onInterface(busNames::interface)
        .call([receiver = shareReceiver_](double share) {
            if (*receiver)
                (*receiver)(share);
        });
    proxy_->uponSignal("MonitorReading")
        .onInterface(busNames::interface)
        .call([readings = monitorReadings_](const std::string& json) {
            if (const auto reading = monitorReadingFromJSON(parsed(json)))
                readings->emit(*reading);
        });
    proxy_->finishRegistration();
}

BackgroundClient::~BackgroundClient() = default;

std::optional<std::string> BackgroundClient::answer(const char* method) {
    try {
        std::string text;
        proxy_->callMethod(method).onInterface(busNames::interface).withTimeout(deadline()).storeResultsTo(text);
        return text;
    } catch (const sdbus::Error&) {
        return std::nullopt;
    }
}

std::optional<AgentStatus> BackgroundClient::status() {
    const auto json = answer("Status");
    return json ? agentStatusFromJSON(parsed(*json)) : std::nullopt;
}

std::optional<AgentCost> BackgroundClient::ownCost() {
    const auto json = answer("OwnCost");
    return json ? agentCostFromJSON(parsed(*json)) : std::nullopt;
}

template <class... Arguments>
Background::Failure BackgroundClient::call(const char* method, Arguments... arguments) {
    try {
        auto request = proxy_->createMethodCall(busNames::interface, method);
        (void)(request << ... << arguments);
        proxy_->callMethod(request, static_cast<std::uint64_t>(deadline().count()));
        return std::nullopt;
    } catch (const sdbus::Error& error) {
        return busWords(error);
    }
}

Background::Failure BackgroundClient::pause(std::optional<Seconds> length) {
    return length ? call("Pause", length->count()) : call("PauseIndefinitely");
}

Background::Failure BackgroundClient::resume() {
    return call("Resume");
}

Background::Failure BackgroundClient::openDashboard(std::optional<std::string> page) {
    return page ? call("OpenPage", *page) : call("OpenDashboard");
}

Background::Failure BackgroundClient::openSettings(std::optional<std::string> tab) {
    return call("OpenSettings", tab.value_or(""));
}

Background::Failure BackgroundClient::quit() {
    return call("Quit");
}

Subscription BackgroundClient::importFiles(std::vector<SessionFile> files, ImportReceiver receiver) {
    *shareReceiver_ = std::move(receiver.progress);
    const auto isOver = std::make_shared<bool>(false);
    const auto answered = [isOver, ended = std::move(receiver.ended)](const sdbus::Error* error,
                                                                      const std::string& json) {
        *isOver = true;
        const auto outcome = importOutcomeFromJSON(parsed(json));
        ended(error ? ImportFailure{busWords(*error)} : outcome.value_or(ImportFailure{noAnswer}));
    };
    try {
        std::vector<sdbus::Struct<std::string, sdbus::UnixFd>> onBus;
        for (const auto& file : files)
            onBus.emplace_back(text::fromUntrustedBytes(file.name), sdbus::UnixFd(file.content.number()));
        proxy_->callMethodAsync("Import")
            .onInterface(busNames::interface)
            .withTimeout(importDeadline)
            .withArguments(onBus)
            .uponReplyInvoke(answered);
    } catch (const sdbus::Error& error) {
        answered(&error, {});
    }
    return Subscription([isOver, weak = std::weak_ptr(self_)] {
        if (const auto self = weak.lock(); self && !*isOver)
            (*self)->call("StopImport");
    });
}

Background::Failure BackgroundClient::deleteActivity(std::optional<Date> before) {
    return before ? call("DeleteActivityBefore", before->seconds()) : call("DeleteAllActivity");
}

Background::Failure BackgroundClient::deleteResourceLog() {
    return call("DeleteResourceLog");
}

Subscription BackgroundClient::observeData(std::function<void()> receiver) {
    *dataReceiver_ = std::move(receiver);
    return Subscription([held = dataReceiver_] { *held = nullptr; });
}

bool BackgroundClient::serve(Seconds patience) {
    try {
        const auto waiting = connection_->getEventLoopPollData();
        pollfd descriptor{waiting.fd, waiting.events, 0};
        // What is queued already shows at no descriptor.
        const int most = static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(patience).count());
        poll(&descriptor, 1, std::min(most, waiting.getPollTimeout() < 0 ? most : waiting.getPollTimeout()));
        while (connection_->processPendingRequest()) {
        }
        return true;
    } catch (const sdbus::Error&) {
        return false;
    }
}

std::optional<std::vector<BrowserReading>> BackgroundClient::browsers() {
    try {
        std::vector<sdbus::Struct<std::string, std::string, bool, bool>> onBus;
        proxy_->callMethod("Browsers").onInterface(busNames::interface).withTimeout(deadline()).storeResultsTo(onBus);
        std::vector<BrowserReading> browsers;
        for (const auto& browser : onBus)
            browsers.push_back(
                {std::get<0>(browser), std::get<1>(browser), std::get<2>(browser), std::get<3>(browser)});
        return browsers;
    } catch (const sdbus::Error&) {
        return std::nullopt;
    }
}

Subscription BackgroundClient::observeBrowsers(std::function<void()> receiver) {
    return browserChanges_->subscribe(std::move(receiver));
}

Subscription BackgroundClient::observe(std::function<void(const AgentStatus&)> receiver) {
    *receiver_ = std::move(receiver);
    if (call("Watch"))
        *receiver_ = nullptr;
    return Subscription([held = receiver_] { *held = nullptr; });
}

Subscription BackgroundClient::observeMonitor(std::function<void(const MonitorReading&)> receiver) {
    auto token = std::make_shared<Subscription>(monitorReadings_->subscribe(std::move(receiver)));
    if (call("WatchMonitor"))
        return {};
    return Subscription([token, weak = std::weak_ptr(self_)] {
        token->cancel();
        if (const auto self = weak.lock(); self && !(*self)->monitorReadings_->hasReceivers())
            (*self)->tell("UnwatchMonitor");
    });
}

void BackgroundClient::tell(const char* method) {
    try {
        proxy_->callMethod(method).onInterface(busNames::interface).dontExpectReply();
    } catch (const sdbus::Error&) {
        // The bus is gone, and with it whom this would have told.
    }
}

int BackgroundClient::descriptor() const {
    return connection_->getEventLoopPollData().fd;
}

Subscription BackgroundClient::observeEnd(std::function<void()> receiver) {
    try {
        const auto slot = std::make_shared<sdbus::Slot>(
            connection_->addMatch(agentLeaves(), [receiver = std::move(receiver)](sdbus::Message&) { receiver(); }));
        return Subscription([slot] { slot->reset(); });
    } catch (const sdbus::Error&) {
        return {}; // the bus went, as whoever serves will see
    }
}

OptimizerLink* BackgroundClient::optimizer() {
    return optimizer_.get();
}

bool BackgroundClient::run() {
    bool agentEnded = false;
    try {
        const auto leaving = connection_->addMatch(agentLeaves(), [&](sdbus::Message&) {
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
