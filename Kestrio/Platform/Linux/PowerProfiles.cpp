#include "Kestrio/Platform/Linux/PowerProfiles.h"

#include "Kestrio/Platform/Linux/BusConnection.h"
#include "Kestrio/Platform/Linux/WatchedService.h"

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
        : bus_(bus),
          name_(std::move(name)),
          path_(std::move(path)),
          onChange_(std::move(onChange)),
          watched_(bus, name_, path_,
                   fmt::format("interface='{}',member='PropertiesChanged',arg0='{}'", propertiesInterface, name_),
                   {.ask = [this] { ask(); }, .forget = [this] { forget(); }}) {
        watched_.begin();
    }

    const std::optional<bool>& isSaving() const { return isSaving_; }

private:
    void forget() {
        proxy_.reset();
        take(std::nullopt);
    }

    void ask() {
        if (!proxy_)
            proxy_ = watched_.proxyOf(path_);
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
    std::unique_ptr<sdbus::IProxy> proxy_;
    WatchedService watched_;
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
