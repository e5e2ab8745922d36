#include "Kestrio/Platform/Linux/PowerProfiles.h"

#include "Kestrio/Platform/Linux/BusConnection.h"

#include <chrono>
#include <fmt/format.h>
#include <functional>
#include <sdbus-c++/sdbus-c++.h>
#include <string>

namespace kestrio {
namespace {

constexpr const char* propertiesInterface = "org.freedesktop.DBus.Properties";
constexpr const char* savingProfile = "power-saver";

/// Nobody waits for these answers, so a service that is slow to start may take its time.
constexpr std::chrono::seconds patience{25};

} // namespace

/// The service under one of its names, which is that of its interface too.
class PowerProfiles::Service {
public:
    Service(BusConnection& bus, std::string name, std::string path, std::function<void()> onChange)
        : bus_(bus), name_(std::move(name)), path_(std::move(path)), onChange_(std::move(onChange)) {
        auto ownerMatch = bus_.match(fmt::format("type='signal',sender='org.freedesktop.DBus',"
                                                 "interface='org.freedesktop.DBus',member='NameOwnerChanged',arg0='{}'",
                                                 name_),
                                     [this](sdbus::Message& message) { ownerChanged(message); });
        // A bus that fails here has stopped answering: one failure costs its deadline, more would add up.
        if (!ownerMatch)
            return;
        ownerMatch_ = std::move(*ownerMatch);
        auto changesMatch = bus_.match(
            fmt::format("type='signal',sender='{}',path='{}',interface='{}',member='PropertiesChanged',arg0='{}'",
                        name_, path_, propertiesInterface, name_),
            [this](sdbus::Message&) { ask(); });
        if (changesMatch)
            changesMatch_ = std::move(*changesMatch);
        askIfOwned();
    }

    const std::optional<bool>& isSaving() const { return isSaving_; }

private:
    void askIfOwned() {
        names_ = sdbus::createProxy(bus_.connection(), "org.freedesktop.DBus", "/org/freedesktop/DBus");
        bus_.perform([this](sdbus::IConnection&) {
            names_->callMethodAsync("NameHasOwner")
                .onInterface("org.freedesktop.DBus")
                .withArguments(name_)
                .uponReplyInvoke([this](const sdbus::Error* error, bool isOwned) {
                    if (!error && isOwned)
                        ask();
                });
        });
    }

    void ownerChanged(sdbus::Message& message) {
        std::string name;
        std::string before;
        std::string now;
        message >> name >> before >> now;
        proxy_.reset(); // a new owner knows nothing of calls to the old one
        take(std::nullopt);
        if (!now.empty())
            ask();
    }

    void ask() {
        if (!proxy_)
            proxy_ = sdbus::createProxy(bus_.connection(), name_, path_);
        bus_.perform([this](sdbus::IConnection&) {
            proxy_->callMethodAsync("Get")
                .onInterface(propertiesInterface)
                .withTimeout(patience)
                .withArguments(name_, std::string("ActiveProfile"))
                .uponReplyInvoke([this](const sdbus::Error* error, const sdbus::Variant& profile) {
                    const bool isText = !error && profile.containsValueOfType<std::string>();
                    take(isText ? std::optional(profile.get<std::string>() == savingProfile) : std::nullopt);
                });
        });
    }

    void take(std::optional<bool> isSaving) {
        isSaving_ = isSaving;
        onChange_();
    }

    BusConnection& bus_;
    const std::string name_;
    const std::string path_;
    const std::function<void()> onChange_;
    std::optional<bool> isSaving_;
    std::unique_ptr<sdbus::IProxy> names_;
    std::unique_ptr<sdbus::IProxy> proxy_;
    Subscription ownerMatch_;
    Subscription changesMatch_;
};

PowerProfiles::PowerProfiles(BusConnection& systemBus) {
    const auto onChange = [this] { update(); };
    services_[0] = std::make_unique<Service>(systemBus, "org.freedesktop.UPower.PowerProfiles",
                                             "/org/freedesktop/UPower/PowerProfiles", onChange);
    services_[1] =
        std::make_unique<Service>(systemBus, "net.hadess.PowerProfiles", "/net/hadess/PowerProfiles", onChange);
}

PowerProfiles::~PowerProfiles() = default;

void PowerProfiles::update() {
    std::optional<bool> isSaving;
    for (const auto& service : services_)
        if (service && !isSaving)
            isSaving = service->isSaving();
    isSaving_ = isSaving;
}

} // namespace kestrio
