#include "Kestrio/Platform/Linux/LogindWatch.h"

#include "Kestrio/Base/Clock.h"
#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Platform/Linux/BusConnection.h"
#include "Kestrio/Platform/Linux/Descriptor.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <fcntl.h>
#include <fmt/format.h>
#include <map>
#include <sdbus-c++/sdbus-c++.h>

namespace kestrio {
namespace {

constexpr const char* service = "org.freedesktop.login1";
constexpr const char* managerPath = "/org/freedesktop/login1";
constexpr const char* managerInterface = "org.freedesktop.login1.Manager";
constexpr const char* sessionInterface = "org.freedesktop.login1.Session";
constexpr const char* userInterface = "org.freedesktop.login1.User";
constexpr const char* propertiesInterface = "org.freedesktop.DBus.Properties";

/// Nobody waits for these answers, so a logind that is slow to start may take its time.
constexpr std::chrono::seconds patience{25};
/// After which a logind that said nothing is asked again.
constexpr Seconds askAgainAfter{5};

bool isPath(const std::string& path) {
    return path.size() > 1; // "/" stands for none
}

std::chrono::microseconds microseconds(Seconds span) {
    return std::chrono::duration_cast<std::chrono::microseconds>(span);
}

std::optional<Date> startFrom(std::uint64_t microsecondsSince1970) {
    if (microsecondsSince1970 == 0)
        return std::nullopt;
    return Date(static_cast<double>(microsecondsSince1970) * 1e-6);
}

} // namespace

LogindWatch::LogindWatch(LoopQueue& queue, const std::string& busAddress, SessionOwner owner,
                         std::function<void(LogindReport)> report)
    : queue_(queue), busAddress_(busAddress), owner_(std::move(owner)), report_(std::move(report)) {
    connect();
}

LogindWatch::~LogindWatch() = default;

void LogindWatch::connect() {
    search_ = Search::nothing;
    bus_ = BusConnection::open(queue_, busAddress_);
    if (!bus_)
        return;
    bus_->onDeath([this] {
        ownerMatch_.cancel();
        managerMatch_.cancel();
        forgetSession();
        manager_.reset();
        bus_.reset();
        search_ = Search::nothing;
        report_(LogindReport::lost);
    });
    auto ownerMatch = bus_->match(fmt::format("type='signal',sender='org.freedesktop.DBus',"
                                              "interface='org.freedesktop.DBus',member='NameOwnerChanged',arg0='{}'",
                                              service),
                                  [this](sdbus::Message& message) { ownerChanged(message); });
    // A bus that fails here has just stopped answering: one failure costs its deadline, more would add up.
    if (!ownerMatch)
        return;
    ownerMatch_ = std::move(*ownerMatch);
    auto managerMatch = bus_->match(
        fmt::format("type='signal',sender='{}',path='{}',interface='{}'", service, managerPath, managerInterface),
        [this](sdbus::Message& message) { managerTold(message); });
    if (!managerMatch)
        return;
    managerMatch_ = std::move(*managerMatch);
    manager_ = sdbus::createProxy(bus_->connection(), service, managerPath);
    search();
}

void LogindWatch::ownerChanged(sdbus::Message& message) {
    std::string name;
    std::string before;
    std::string now;
    message >> name >> before >> now;
    if (!manager_)
        return;
    // A new owner knows nothing of calls to the old one.
    const bool had = !before.empty();
    manager_ = sdbus::createProxy(bus_->connection(), service, managerPath);
    forgetSession();
    sleeping_ = false;
    delayLock_.reset();
    if (had)
        report_(LogindReport::lost);
    if (now.empty())
        return;
    search();
    takeLock();
}

void LogindWatch::managerTold(sdbus::Message& message) {
    const auto member = message.getMemberName();
    if (member == "PrepareForSleep") {
        bool sleeping = false;
        message >> sleeping;
        sleeping_ = sleeping;
        if (sleeping) {
            report_(LogindReport::willSleep);
            delayLock_.reset(); // nobody wanted it
        } else {
            takeLock();
            report_(LogindReport::didWake);
        }
        return;
    }
    if (member != "SessionRemoved" && member != "SessionNew")
        return;
    std::string identifier;
    sdbus::ObjectPath path;
    message >> identifier >> path;
    const bool lost = member == "SessionRemoved" && path == sessionPath_;
    const bool hoped = member == "SessionNew" && search_ == Search::nothing;
    if (lost) {
        forgetSession();
        report_(LogindReport::lost);
    }
    if (lost || hoped)
        search();
}

void LogindWatch::forgetSession() {
    sessionMatch_.cancel();
    again_.cancel();
    session_.reset();
    user_.reset();
    sessionPath_.clear();
    locked_.reset();
    active_.reset();
    sessionStart_.reset();
    search_ = Search::nothing;
}

void LogindWatch::search() {
    search_ = Search::running;
    bus_->perform([this](sdbus::IConnection&) {
        manager_->callMethodAsync("GetSessionByPID")
            .onInterface(managerInterface)
            .withTimeout(patience)
            .withArguments(static_cast<std::uint32_t>(owner_.process))
            .uponReplyInvoke([this](const sdbus::Error* error, const sdbus::ObjectPath& path) {
                if (!error)
                    adoptSession(path);
                else if (!isSilent(*error))
                    askByIdentifier();
            });
    });
}

void LogindWatch::askByIdentifier() {
    if (!owner_.sessionIdentifier) {
        askByUser();
        return;
    }
    bus_->perform([this](sdbus::IConnection&) {
        manager_->callMethodAsync("GetSession")
            .onInterface(managerInterface)
            .withTimeout(patience)
            .withArguments(*owner_.sessionIdentifier)
            .uponReplyInvoke([this](const sdbus::Error* error, const sdbus::ObjectPath& path) {
                if (!error)
                    adoptSession(path);
                else if (!isSilent(*error))
                    askByUser();
            });
    });
}

void LogindWatch::askByUser() {
    bus_->perform([this](sdbus::IConnection&) {
        manager_->callMethodAsync("GetUser")
            .onInterface(managerInterface)
            .withTimeout(patience)
            .withArguments(static_cast<std::uint32_t>(owner_.user))
            .uponReplyInvoke([this](const sdbus::Error* error, const sdbus::ObjectPath& path) {
                if (!error)
                    askDisplaySession(path);
                else if (!isSilent(*error))
                    nothingFound();
            });
    });
}

void LogindWatch::askDisplaySession(const std::string& userPath) {
    if (!isPath(userPath)) {
        nothingFound();
        return;
    }
    user_ = sdbus::createProxy(bus_->connection(), service, userPath);
    bus_->perform([this](sdbus::IConnection&) {
        user_->callMethodAsync("Get")
            .onInterface(propertiesInterface)
            .withTimeout(patience)
            .withArguments(userInterface, "Display")
            .uponReplyInvoke([this](const sdbus::Error* error, const sdbus::Variant& display) {
                using Session = sdbus::Struct<std::string, sdbus::ObjectPath>;
                if (error && isSilent(*error))
                    return;
                if (error || !display.containsValueOfType<Session>())
                    nothingFound();
                else
                    adoptSession(display.get<Session>().get<1>());
            });
    });
}

void LogindWatch::nothingFound() {
    search_ = Search::nothing;
}

bool LogindWatch::isSilent(const sdbus::Error& error) {
    const auto& name = error.getName();
    if (name != "org.freedesktop.DBus.Error.NoReply" && name != "org.freedesktop.DBus.Error.Timeout" &&
        name != "org.freedesktop.DBus.Error.TimedOut")
        return false;
    again_ = queue_.after(askAgainAfter, [this] { search(); });
    return true;
}

void LogindWatch::adoptSession(const std::string& path) {
    if (!isPath(path)) {
        nothingFound();
        return;
    }
    sessionPath_ = path;
    auto sessionMatch = bus_->match(fmt::format("type='signal',sender='{}',path='{}'", service, path),
                                    [this](sdbus::Message& message) { sessionTold(message); });
    if (!sessionMatch) {
        nothingFound();
        return;
    }
    sessionMatch_ = std::move(*sessionMatch);
    session_ = sdbus::createProxy(bus_->connection(), service, path);
    readSession();
}

void LogindWatch::readSession() {
    bus_->perform([this](sdbus::IConnection&) {
        session_->callMethodAsync("GetAll")
            .onInterface(propertiesInterface)
            .withTimeout(patience)
            .withArguments(sessionInterface)
            .uponReplyInvoke([this](const sdbus::Error* error, const Properties& properties) {
                if (!error)
                    applySession(properties);
                else if (!isSilent(*error))
                    nothingFound();
            });
    });
}

void LogindWatch::sessionTold(sdbus::Message& message) {
    const auto interface = message.getInterfaceName();
    const auto member = message.getMemberName();
    if (interface == sessionInterface && member == "Lock") {
        report_(LogindReport::lockRequested);
    } else if (interface == sessionInterface && member == "Unlock") {
        // Not told again by the hint where a locker forgets to take it back.
        locked_ = false;
        report_(LogindReport::unlockRequested);
    } else if (interface == propertiesInterface && member == "PropertiesChanged") {
        std::string about;
        Properties changed;
        std::vector<std::string> outdated;
        message >> about >> changed >> outdated;
        if (about != sessionInterface)
            return;
        applySession(changed);
        const bool readAgain = std::any_of(outdated.begin(), outdated.end(), [](const std::string& name) {
            return name == "Active" || name == "LockedHint";
        });
        if (readAgain)
            readSession();
    }
}

void LogindWatch::applySession(const Properties& properties) {
    search_ = Search::found;
    const auto flag = [&](const char* name) -> std::optional<bool> {
        const auto found = properties.find(name);
        if (found == properties.end() || !found->second.containsValueOfType<bool>())
            return std::nullopt;
        return found->second.get<bool>();
    };
    if (const auto found = properties.find("Timestamp");
        found != properties.end() && found->second.containsValueOfType<std::uint64_t>())
        sessionStart_ = startFrom(found->second.get<std::uint64_t>());
    const auto locked = flag("LockedHint");
    if (locked && *locked != locked_.value_or(false))
        report_(*locked ? LogindReport::locked : LogindReport::unlocked);
    if (locked)
        locked_ = locked;
    const auto active = flag("Active");
    if (active && *active != active_.value_or(true))
        report_(*active ? LogindReport::active : LogindReport::inactive);
    if (active)
        active_ = active;
}

void LogindWatch::setArmed(bool armed) {
    if (armed_ == armed)
        return;
    armed_ = armed;
    if (armed)
        takeLock();
    else
        delayLock_.reset();
}

void LogindWatch::takeLock() {
    if (!armed_ || sleeping_ || delayLock_ || !manager_)
        return;
    bus_->perform([this](sdbus::IConnection&) {
        manager_->callMethodAsync("Inhibit")
            .onInterface(managerInterface)
            .withTimeout(patience)
            .withArguments("sleep", "Kestrio", "Saving what was recorded", "delay")
            .uponReplyInvoke([this](const sdbus::Error* error, sdbus::UnixFd descriptor) {
                // One that comes while the machine is already on its way to sleep would only hold it up.
                if (error || !armed_ || sleeping_ || !descriptor.isValid())
                    return;
                const int number = descriptor.release();
                // A program that we start must not hold the machine awake for us.
                fcntl(number, F_SETFD, FD_CLOEXEC);
                delayLock_ = std::make_shared<Descriptor>(number);
            });
    });
}

std::optional<Date> LogindWatch::sessionStart() {
    if (!sessionStart_ && search_ == Search::running && !std::exchange(startWasAsked_, true))
        return askSessionStart();
    return sessionStart_;
}

std::optional<Date> LogindWatch::askSessionStart() {
    const SystemClock clock;
    const auto deadline = clock.uptime() + BusConnection::callDeadline;
    // One deadline for all of the calls. None at all is left of it once it is over, and a call then asks nobody.
    const auto left = [&] {
        const auto rest = deadline - clock.uptime();
        if (rest < Seconds(0.001))
            throw sdbus::Error("org.freedesktop.DBus.Error.NoReply", "the deadline is over");
        return microseconds(rest);
    };
    sdbus::ObjectPath path;
    const auto ask = [&](const char* method, const auto& argument) {
        return bus_->perform([&](sdbus::IConnection&) {
            manager_->callMethod(method)
                .onInterface(managerInterface)
                .withTimeout(left())
                .withArguments(argument)
                .storeResultsTo(path);
        });
    };
    const auto get = [&](const char* interface, const char* property, auto& value) {
        return bus_->perform([&](sdbus::IConnection& bus) {
            sdbus::Variant found;
            const auto proxy = sdbus::createProxy(bus, service, path);
            proxy->callMethod("Get")
                .onInterface(propertiesInterface)
                .withTimeout(left())
                .withArguments(interface, property)
                .storeResultsTo(found);
            value = found.get<std::decay_t<decltype(value)>>();
        });
    };
    const auto byUser = [&] {
        sdbus::Struct<std::string, sdbus::ObjectPath> display;
        if (!ask("GetUser", static_cast<std::uint32_t>(owner_.user)) || !get(userInterface, "Display", display))
            return false;
        path = display.get<1>();
        return isPath(path);
    };
    std::uint64_t timestamp = 0;
    const bool found = ask("GetSessionByPID", static_cast<std::uint32_t>(owner_.process)) ||
                       (owner_.sessionIdentifier && ask("GetSession", *owner_.sessionIdentifier)) || byUser();
    if (!found || !get(sessionInterface, "Timestamp", timestamp))
        return std::nullopt;
    return startFrom(timestamp);
}

} // namespace kestrio
