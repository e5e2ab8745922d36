#include "Kestrio/Platform/Linux/ScreenSaverWatch.h"

#include "Kestrio/Platform/Linux/BusConnection.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <sdbus-c++/sdbus-c++.h>
#include <utility>

namespace kestrio {
namespace {

/// Each serves an interface of its own name. KDE and several small lockers use the first.
constexpr std::array saverNames{
    std::pair{"org.freedesktop.ScreenSaver", "/org/freedesktop/ScreenSaver"},
    std::pair{"org.gnome.ScreenSaver", "/org/gnome/ScreenSaver"},
    std::pair{"org.cinnamon.ScreenSaver", "/org/cinnamon/ScreenSaver"},
    std::pair{"org.mate.ScreenSaver", "/org/mate/ScreenSaver"},
    std::pair{"org.xfce.ScreenSaver", "/org/xfce/ScreenSaver"},
};

} // namespace

ScreenSaverWatch::ScreenSaverWatch(LoopQueue& queue, const std::string& busAddress, std::function<void(bool)> report)
    : report_(std::move(report)), bus_(BusConnection::open(queue, busAddress)) {
    if (!bus_)
        return;
    bus_->onDeath([this] { clear(); });
    auto match =
        bus_->match("type='signal',member='ActiveChanged'", [this](sdbus::Message& message) { told(message); });
    if (!match)
        return;
    match_ = std::move(*match);
    savers_.reserve(saverNames.size());
    for (const auto& [name, path] : saverNames)
        savers_.push_back({name, sdbus::createProxy(bus_->connection(), name, path), {}});
    for (auto& saver : savers_) {
        auto ownerMatch =
            bus_->match(fmt::format("type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
                                    "member='NameOwnerChanged',arg0='{}'",
                                    saver.name),
                        [this, &saver](sdbus::Message& message) { ownerChanged(saver, message); });
        // A bus that fails here has stopped answering: one failure costs its deadline, more would add up.
        if (!ownerMatch)
            return;
        saver.ownerMatch = std::move(*ownerMatch);
    }
    askWhoIsThere();
}

ScreenSaverWatch::~ScreenSaverWatch() = default;

void ScreenSaverWatch::askWhoIsThere() {
    // Asking the saver itself could start it.
    names_ = sdbus::createProxy(bus_->connection(), "org.freedesktop.DBus", "/org/freedesktop/DBus");
    for (auto& saver : savers_)
        bus_->perform([&](sdbus::IConnection&) {
            names_->callMethodAsync("NameHasOwner")
                .onInterface("org.freedesktop.DBus")
                .withArguments(saver.name)
                .uponReplyInvoke([this, &saver](const sdbus::Error* error, bool owned) {
                    if (!error && owned)
                        askWhetherActive(saver);
                });
        });
}

void ScreenSaverWatch::askWhetherActive(Saver& saver) {
    bus_->perform([&](sdbus::IConnection&) {
        saver.proxy->callMethodAsync("GetActive")
            .onInterface(saver.name)
            .uponReplyInvoke([this, &saver](const sdbus::Error* error, bool active) {
                if (!error)
                    set(saver.name, active);
            });
    });
}

void ScreenSaverWatch::told(sdbus::Message& message) {
    const auto interface = message.getInterfaceName();
    const bool known =
        std::any_of(savers_.begin(), savers_.end(), [&](const Saver& saver) { return saver.name == interface; });
    if (!known)
        return;
    bool active = false;
    message >> active;
    set(interface, active);
}

void ScreenSaverWatch::ownerChanged(Saver& saver, sdbus::Message& message) {
    std::string name;
    std::string before;
    std::string now;
    message >> name >> before >> now;
    if (!before.empty())
        set(saver.name, false); // one that ended covers nothing
    if (!now.empty())
        askWhetherActive(saver);
}

void ScreenSaverWatch::set(const std::string& name, bool active) {
    const bool before = !active_.empty();
    if (active)
        active_.insert(name);
    else
        active_.erase(name);
    if (before != !active_.empty())
        report_(!active_.empty());
}

void ScreenSaverWatch::clear() {
    savers_.clear();
    match_.cancel();
    names_.reset();
    bus_.reset();
    if (std::exchange(active_, {}).empty())
        return;
    report_(false);
}

} // namespace kestrio
