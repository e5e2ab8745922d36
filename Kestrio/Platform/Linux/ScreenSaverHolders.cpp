#include "Kestrio/Platform/Linux/ScreenSaverHolders.h"

#include "Kestrio/Platform/Linux/BusConnection.h"

#include <algorithm>
#include <fmt/format.h>
#include <sdbus-c++/sdbus-c++.h>
#include <utility>

namespace kestrio {
namespace {

struct Service {
    const char* name;
    const char* interface;
    const char* assertionType;
};
constexpr std::array services{
    Service{"org.freedesktop.ScreenSaver", "org.freedesktop.ScreenSaver", assertion::preventUserIdleDisplaySleep},
    Service{"org.freedesktop.PowerManagement", "org.freedesktop.PowerManagement.Inhibit",
            assertion::preventUserIdleSystemSleep},
};

std::string ownerRule(const std::string& name) {
    return fmt::format("type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
                       "member='NameOwnerChanged',arg0='{}'",
                       name);
}

std::vector<std::string> callRules() {
    std::vector<std::string> rules;
    for (const auto& service : services)
        for (const char* member : {"Inhibit", "UnInhibit"})
            rules.push_back(fmt::format("type='method_call',interface='{}',member='{}'", service.interface, member));
    return rules;
}

} // namespace

ScreenSaverHolders::ScreenSaverHolders(LoopQueue& queue, BusConnection& sessionBus, const std::string& address)
    : bus_(sessionBus) {
    static_assert(services.size() == serviceCount);
    names_ = sdbus::createProxy(bus_.connection(), "org.freedesktop.DBus", "/org/freedesktop/DBus");
    monitor_ = BusMonitor::open(
        queue, address, callRules(), [this](const BusMonitor::Call& call) { seen(call); },
        [this] { holders_.clear(); });
    if (!monitor_)
        return;
    for (std::size_t service = 0; service < serviceCount; ++service)
        watchService(service);
}

ScreenSaverHolders::~ScreenSaverHolders() = default;

void ScreenSaverHolders::watchService(std::size_t service) {
    auto match = bus_.match(ownerRule(services[service].name),
                            [this, service](sdbus::Message& message) { serviceOwnerChanged(service, message); });
    if (!match)
        return;
    serviceMatches_[service] = std::move(*match);
    bus_.perform([&](sdbus::IConnection&) {
        names_->callMethodAsync("NameHasOwner")
            .onInterface("org.freedesktop.DBus")
            .withArguments(services[service].name)
            .uponReplyInvoke([this, service](const sdbus::Error* error, bool isOwned) {
                if (!error && isOwned)
                    isServed_[service] = true;
            });
    });
}

void ScreenSaverHolders::serviceOwnerChanged(std::size_t service, sdbus::Message& message) {
    std::string name;
    std::string before;
    std::string now;
    message >> name >> before >> now;
    isServed_[service] = !now.empty();
    if (!before.empty())
        forget(service);
}

void ScreenSaverHolders::seen(const BusMonitor::Call& call) {
    const auto found = std::find_if(services.begin(), services.end(),
                                    [&](const Service& service) { return call.interface == service.interface; });
    if (found == services.end() || call.sender.empty())
        return;
    const auto service = static_cast<std::size_t>(found - services.begin());
    if (call.member == "Inhibit")
        hold(call.sender, service);
    else if (call.member == "UnInhibit")
        release(call.sender, service);
}

void ScreenSaverHolders::hold(const std::string& sender, std::size_t service) {
    const auto [place, isNew] = holders_.try_emplace(sender);
    ++place->second.calls[service];
    if (!isNew)
        return;
    // Nobody takes over a unique name: any change of its owner is the end of it.
    auto end = bus_.match(ownerRule(sender), [this, sender](sdbus::Message&) { holders_.erase(sender); });
    if (!end) {
        holders_.erase(sender);
        return;
    }
    place->second.end = std::move(*end);
    askForProcess(sender);
}

void ScreenSaverHolders::askForProcess(const std::string& sender) {
    bus_.perform([&](sdbus::IConnection&) {
        names_->callMethodAsync("GetConnectionUnixProcessID")
            .onInterface("org.freedesktop.DBus")
            .withArguments(sender)
            .uponReplyInvoke([this, sender](const sdbus::Error* error, std::uint32_t process) {
                const auto holder = holders_.find(sender);
                if (holder == holders_.end())
                    return;
                if (error) // it was gone before its end could be watched for
                    holders_.erase(holder);
                else
                    holder->second.process = static_cast<pid_t>(process);
            });
    });
}

void ScreenSaverHolders::release(const std::string& sender, std::size_t service) {
    const auto holder = holders_.find(sender);
    if (holder == holders_.end())
        return;
    auto& calls = holder->second.calls;
    calls[service] = std::max(calls[service] - 1, 0);
    if (std::all_of(calls.begin(), calls.end(), [](int count) { return count == 0; }))
        holders_.erase(holder);
}

void ScreenSaverHolders::forget(std::size_t service) {
    for (auto& [sender, holder] : holders_)
        holder.calls[service] = 0;
    std::erase_if(holders_, [](const auto& each) {
        const auto& calls = each.second.calls;
        return std::all_of(calls.begin(), calls.end(), [](int count) { return count == 0; });
    });
}

std::vector<SleepInhibitor> ScreenSaverHolders::held() const {
    std::vector<SleepInhibitor> result;
    for (const auto& [sender, holder] : holders_)
        for (std::size_t service = 0; service < serviceCount; ++service)
            if (holder.process && isServed_[service] && holder.calls[service] > 0)
                result.push_back({{holder.process}, services[service].assertionType});
    return result;
}

} // namespace kestrio
