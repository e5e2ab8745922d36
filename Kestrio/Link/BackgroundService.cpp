#include "Kestrio/Link/BackgroundService.h"

#include "Kestrio/Link/BusNames.h"
#include "Kestrio/Link/ImportJSON.h"
#include "Kestrio/Link/OptimizerService.h"

#include <nlohmann/json.hpp>
#include <sdbus-c++/sdbus-c++.h>

namespace kestrio {

using busNames::interface;

/// Somebody who watches, and the rule by which their leaving is heard of.
struct BackgroundService::Watcher {
    sdbus::Slot leaving;
};

/// Somebody who follows the system monitor.
struct BackgroundService::MonitorWatcher {
    sdbus::Slot leaving;
    Subscription readings;
};

/// Somebody who waits for an import.
struct BackgroundService::Import {
    std::string caller;
    sdbus::Result<std::string> result;
    sdbus::Slot leaving = {};
    Subscription running = {};
};

namespace {

/// A path may hold any bytes; what is no text in it must not keep the rest from being told.
template <class Value>
std::string text(const Value& value) {
    return toJSON(value).dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
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

/// Hears when somebody leaves the bus.
sdbus::Slot observeLeaving(sdbus::IConnection& connection, const std::string& name, std::function<void()> left) {
    return connection.addMatch("type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
                               "member='NameOwnerChanged',arg0='" +
                                   name + "',arg2=''",
                               [left = std::move(left)](sdbus::Message&) { left(); });
}

using FilesOnBus = std::vector<sdbus::Struct<std::string, sdbus::UnixFd>>;

std::vector<SessionFile> taken(FilesOnBus files) {
    std::vector<SessionFile> result;
    for (auto& file : files)
        result.push_back({std::move(file.get<0>()), Descriptor(file.get<1>().release())});
    return result;
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
        if (auto* optimizer = background.optimizer())
            service->optimizer_ = std::make_unique<OptimizerService>(connection, *optimizer);
        connection.requestName(busNames::service);
    });
    if (!offered)
        return nullptr;
    service->stateChanges_ = background.observeState([self = service.get()] { self->tellState(); });
    const auto notice = [self = service.get()](const char* name) {
        return [self, name] {
            self->perform_([self, name](auto&) { self->object_->emitSignal(name).onInterface(interface); });
        };
    };
    service->dataChanges_ = background.observeData(notice("ActivityDataDidChange"));
    service->browserChanges_ = background.observeBrowsers(notice("BrowsersDidChange"));
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
        require(background_.openDashboard(std::nullopt));
    });
    object_->registerMethod("OpenPage")
        .onInterface(interface)
        .withInputParamNames("page")
        .implementedAs([this](const std::string& page) { require(background_.openDashboard(page)); });
    object_->registerMethod("OpenSettings")
        .onInterface(interface)
        .withInputParamNames("tab")
        .implementedAs([this](const std::string& tab) {
            require(background_.openSettings(tab.empty() ? std::nullopt : std::optional(tab)));
        });
    object_->registerMethod("Quit").onInterface(interface).implementedAs([this] { require(background_.quit()); });
    object_->registerMethod("Browsers").onInterface(interface).withOutputParamNames("browsers").implementedAs([this] {
        std::vector<sdbus::Struct<std::string, std::string, bool, bool>> onBus;
        for (const auto& browser : background_.browsers().value_or(std::vector<BrowserReading>()))
            onBus.emplace_back(browser.bundleIdentifier, browser.name, browser.isConnected, browser.isAccessible);
        return onBus;
    });
    object_->registerMethod("Status").onInterface(interface).withOutputParamNames("json").implementedAs([this] {
        const auto status = background_.status();
        return status ? text(*status) : std::string();
    });
    object_->registerMethod("OwnCost").onInterface(interface).withOutputParamNames("json").implementedAs([this] {
        const auto cost = background_.ownCost();
        return cost ? text(*cost) : std::string();
    });
    object_->registerMethod("Watch").onInterface(interface).implementedAs([this, &connection] { watch(connection); });
    object_->registerMethod("WatchMonitor").onInterface(interface).implementedAs([this, &connection] {
        watchMonitor(connection);
    });
    object_->registerMethod("UnwatchMonitor").onInterface(interface).implementedAs([this] {
        monitorWatchers_.erase(object_->getCurrentlyProcessedMessage()->getSender());
    });
    object_->registerMethod("Import")
        .onInterface(interface)
        .withInputParamNames("files")
        .withOutputParamNames("json")
        .implementedAs([this, &connection](sdbus::Result<std::string>&& result, FilesOnBus files) {
            auto import = std::make_shared<Import>(
                Import{object_->getCurrentlyProcessedMessage()->getSender(), std::move(result)});
            beginImport(connection, std::move(import), taken(std::move(files)));
        });
    object_->registerMethod("StopImport").onInterface(interface).implementedAs([this] {
        stopImport(object_->getCurrentlyProcessedMessage()->getSender());
    });
    object_->registerMethod("DeleteActivityBefore")
        .onInterface(interface)
        .withInputParamNames("date") // seconds since 1970
        .implementedAs(
            [this](double date) { require(background_.deleteActivity(Date(date)), busNames::errorInvalid); });
    object_->registerMethod("DeleteAllActivity").onInterface(interface).implementedAs([this] {
        require(background_.deleteActivity(std::nullopt));
    });
    object_->registerMethod("DeleteResourceLog").onInterface(interface).implementedAs([this] {
        require(background_.deleteResourceLog());
    });
    object_->registerProperty("State").onInterface(interface).withGetter(
        [this] { return std::string(rawValue(background_.status()->state)); });
    object_->registerProperty("PausedUntil").onInterface(interface).withGetter([this] {
        const auto until = background_.status()->pausedUntil;
        return until ? until->seconds() : 0.0;
    });
    object_->registerProperty("Version").onInterface(interface).withGetter(
        [this] { return background_.status()->version; });
    object_->registerSignal("Changed").onInterface(interface).withParameters<std::string>("json");
    object_->registerSignal("MonitorReading").onInterface(interface).withParameters<std::string>("json");
    object_->registerSignal("ImportProgress").onInterface(interface).withParameters<double>("share");
    object_->registerSignal("ActivityDataDidChange").onInterface(interface);
    object_->registerSignal("BrowsersDidChange").onInterface(interface);
    object_->finishRegistration();
}

void BackgroundService::watch(sdbus::IConnection& connection) {
    const auto sender = object_->getCurrentlyProcessedMessage()->getSender();
    if (watchers_.contains(sender))
        return;
    auto watcher = std::make_unique<Watcher>();
    watcher->leaving = observeLeaving(
        connection, sender, [this, sender] { afterwards([sender](BackgroundService& self) { self.forget(sender); }); });
    if (!isOnBus(connection, sender))
        return; // left before the rule was there
    watchers_.emplace(sender, std::move(watcher));
    if (!changes_.isActive())
        changes_ = background_.observe([this](const AgentStatus& status) { tell(status); });
}

/// For what hears of a leaving: its rule is in use right now, and what it stands in goes a moment later.
void BackgroundService::afterwards(std::function<void(BackgroundService&)> work) {
    background_.afterwards([weak = std::weak_ptr(self_), work = std::move(work)] {
        if (const auto self = weak.lock())
            work(**self);
    });
}

void BackgroundService::forget(const std::string& watcher) {
    watchers_.erase(watcher);
    if (watchers_.empty())
        changes_.cancel();
}

void BackgroundService::watchMonitor(sdbus::IConnection& connection) {
    const auto sender = object_->getCurrentlyProcessedMessage()->getSender();
    if (monitorWatchers_.contains(sender))
        return;
    auto watcher = std::make_unique<MonitorWatcher>();
    watcher->leaving = observeLeaving(connection, sender, [this, sender] {
        afterwards([sender](BackgroundService& self) { self.monitorWatchers_.erase(sender); });
    });
    if (!isOnBus(connection, sender))
        return; // left before the rule was there
    watcher->readings =
        background_.observeMonitor([this, sender](const MonitorReading& reading) { tellReading(sender, reading); });
    monitorWatchers_.emplace(sender, std::move(watcher));
}

void BackgroundService::tellReading(const std::string& watcher, const MonitorReading& reading) {
    perform_([&](sdbus::IConnection&) {
        auto signal = object_->createSignal(interface, "MonitorReading");
        signal << text(reading);
        signal.setDestination(watcher);
        object_->emitSignal(signal);
    });
}

void BackgroundService::beginImport(sdbus::IConnection& connection, std::shared_ptr<Import> begun,
                                    std::vector<SessionFile> files) {
    const auto& caller = begun->caller;
    if (!imports_.emplace(caller, begun).second)
        return begun->result.returnError(sdbus::Error(busNames::errorFailed, "Another import is under way."));
    begun->leaving = observeLeaving(connection, caller, [this, caller] {
        afterwards([caller](BackgroundService& self) { self.stopImport(caller); });
    });
    const auto withSelf = [weakSelf = std::weak_ptr(self_), weak = std::weak_ptr(begun)](auto work) {
        return [weakSelf, weak, work](const auto& what) {
            const auto self = weakSelf.lock();
            if (const auto import = weak.lock(); self && import)
                work(**self, *import, what);
        };
    };
    begun->running = background_.importFiles(
        std::move(files),
        {.progress = withSelf([](auto& self, const auto& running, double share) { self.tellShare(running, share); }),
         .ended =
             withSelf([](auto& self, const auto& ended, const auto& outcome) { self.endImport(ended, outcome); })});
    if (!isOnBus(connection, caller))
        stopImport(caller); // left before the rule was there
}

void BackgroundService::stopImport(const std::string& caller) {
    if (const auto found = imports_.find(caller); found != imports_.end())
        found->second->running.cancel();
}

void BackgroundService::tellShare(const Import& import, double share) {
    perform_([&](sdbus::IConnection&) {
        auto signal = object_->createSignal(interface, "ImportProgress");
        signal << share;
        signal.setDestination(import.caller);
        object_->emitSignal(signal);
    });
}

void BackgroundService::endImport(const Import& import, const ImportOutcome& outcome) {
    perform_([&](sdbus::IConnection&) { import.result.returnResults(text(outcome)); });
    imports_.erase(import.caller);
}

void BackgroundService::tell(const AgentStatus& status) {
    const auto json = text(status);
    perform_([&](sdbus::IConnection&) { object_->emitSignal("Changed").onInterface(interface).withArguments(json); });
}

void BackgroundService::tellState() {
    perform_([&](sdbus::IConnection&) { object_->emitPropertiesChangedSignal(interface, {"State", "PausedUntil"}); });
}

} // namespace kestrio
