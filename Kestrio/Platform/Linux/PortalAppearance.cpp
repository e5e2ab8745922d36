#include "Kestrio/Platform/Linux/PortalAppearance.h"

#include "Kestrio/Platform/Linux/BusConnection.h"

#include <chrono>
#include <cstdint>
#include <fmt/format.h>
#include <map>
#include <sdbus-c++/sdbus-c++.h>
#include <string>
#include <utility>
#include <vector>

namespace kestrio {
namespace {

constexpr auto service = "org.freedesktop.portal.Desktop";
constexpr auto path = "/org/freedesktop/portal/desktop";
constexpr auto settings = "org.freedesktop.portal.Settings";
constexpr auto common = "org.freedesktop.appearance";
constexpr auto gnome = "org.gnome.desktop.interface";

/// Nobody waits for the answer, so a portal that is slow to start may take its time.
constexpr std::chrono::seconds patience{25};

using Values = std::map<std::string, std::map<std::string, sdbus::Variant>>;

template <class Value>
std::optional<Value> valueOf(const Values& values, const char* space, const char* key) {
    const auto keys = values.find(space);
    if (keys == values.end())
        return std::nullopt;
    const auto entry = keys->second.find(key);
    if (entry == keys->second.end() || !entry->second.containsValueOfType<Value>())
        return std::nullopt;
    return entry->second.get<Value>();
}

std::optional<bool> isDark(const Values& values) {
    switch (valueOf<std::uint32_t>(values, common, "color-scheme").value_or(0)) {
    case 1: return true;
    case 2: return false;
    default: return std::nullopt;
    }
}

DesktopAppearance appearance(const Values& values) {
    const bool hasReducedMotion = valueOf<std::uint32_t>(values, common, "reduced-motion") == 1U;
    const bool hasAnimations = valueOf<bool>(values, gnome, "enable-animations").value_or(true);
    return {.isDark = isDark(values),
            .isHighContrast = valueOf<std::uint32_t>(values, common, "contrast") == 1U,
            .reducesMotion = hasReducedMotion || !hasAnimations,
            .textScale = valueOf<double>(values, gnome, "text-scaling-factor").value_or(1)};
}

} // namespace

PortalAppearance::PortalAppearance(BusConnection& sessionBus, Receiver receiver)
    : bus_(sessionBus), receiver_(std::move(receiver)) {
    auto changes = bus_.match(fmt::format("type='signal',sender='{}',path='{}',interface='{}',member='SettingChanged'",
                                          service, path, settings),
                              [this](sdbus::Message&) { ask(); });
    // A bus that fails here has stopped answering: one failure costs its deadline, more would add up.
    if (!changes)
        return;
    changes_ = std::move(*changes);
    auto owners = bus_.match(fmt::format("type='signal',sender='org.freedesktop.DBus',"
                                         "interface='org.freedesktop.DBus',member='NameOwnerChanged',arg0='{}'",
                                         service),
                             [this](sdbus::Message& message) {
                                 std::string name;
                                 std::string before;
                                 std::string now;
                                 message >> name >> before >> now;
                                 portal_.reset(); // a new owner knows nothing of calls to the old one
                                 if (!now.empty())
                                     ask();
                             });
    if (!owners)
        return;
    owners_ = std::move(*owners);
    ask();
}

PortalAppearance::~PortalAppearance() = default;

void PortalAppearance::ask() {
    if (!portal_)
        portal_ = sdbus::createProxy(bus_.connection(), service, path);
    bus_.perform([this](sdbus::IConnection&) {
        portal_->callMethodAsync("ReadAll")
            .onInterface(settings)
            .withTimeout(patience)
            .withArguments(std::vector<std::string>{common, gnome})
            .uponReplyInvoke([this](const sdbus::Error* error, const Values& values) {
                if (error)
                    return;
                const auto now = appearance(values);
                if (std::exchange(told_, now) != now)
                    receiver_(now);
            });
    });
}

} // namespace kestrio
