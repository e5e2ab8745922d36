#include "Kestrio/Platform/Linux/LinuxSleepInhibitors.h"

#include "Kestrio/Platform/Linux/BusConnection.h"
#include "Kestrio/Platform/Linux/ListedInhibitors.h"
#include "Kestrio/Platform/Linux/ScreenSaverHolders.h"
#include "Kestrio/Platform/Linux/X11SaverSuspensions.h"

#include <unistd.h>
#include <utility>

namespace kestrio {

LinuxSleepInhibitors::Setup LinuxSleepInhibitors::setupOfThisSession() {
    Setup setup;
    setup.sessionBus = BusConnection::address(BusConnection::Bus::session);
    setup.systemBus = BusConnection::address(BusConnection::Bus::system);
    setup.user = getuid();
    return setup;
}

LinuxSleepInhibitors::LinuxSleepInhibitors(LoopQueue& queue, const Clock& clock, Setup setup)
    : clock_(clock), setup_(std::move(setup)) {
    openSessionBus(queue);
    openSystemBus(queue);
}

LinuxSleepInhibitors::~LinuxSleepInhibitors() = default;

void LinuxSleepInhibitors::openSessionBus(LoopQueue& queue) {
    if (setup_.sessionBus)
        sessionBus_ = BusConnection::open(queue, *setup_.sessionBus);
    if (!sessionBus_)
        return;
    sessionBus_->onDeath([this] {
        screenSaver_.reset();
        kde_.reset();
        gnome_.reset();
        sessionBus_.reset();
    });
    gnome_ = std::make_unique<GnomeInhibitors>(*sessionBus_);
    kde_ = std::make_unique<KdeInhibitors>(*sessionBus_);
    screenSaver_ = std::make_unique<ScreenSaverHolders>(queue, *sessionBus_, *setup_.sessionBus);
}

void LinuxSleepInhibitors::openSystemBus(LoopQueue& queue) {
    if (setup_.systemBus)
        systemBus_ = BusConnection::open(queue, *setup_.systemBus);
    if (!systemBus_)
        return;
    systemBus_->onDeath([this] {
        logind_.reset();
        systemBus_.reset();
    });
    logind_ = std::make_unique<LogindInhibitors>(*systemBus_, setup_.user);
}

void LinuxSleepInhibitors::askX11IfDue() {
    if (!setup_.x11)
        return;
    const auto now = clock_.uptime();
    const auto since = lastAsked_ ? std::optional(now - *lastAsked_) : std::nullopt;
    if (since && *since < busyPace)
        return;
    const bool isBusy = !x11Processes_.empty() || setup_.isAnythingPlaying();
    if (since && *since < quietPace && !isBusy)
        return;
    lastAsked_ = now;
    x11Processes_ = saverSuspendingProcesses(*setup_.x11);
}

std::vector<SleepInhibitor> LinuxSleepInhibitors::held() {
    askX11IfDue();
    std::vector<SleepInhibitor> all;
    for (const auto process : x11Processes_)
        all.push_back({{process}, assertion::preventUserIdleDisplaySleep});
    const auto add = [&all](const auto& source) {
        if (!source)
            return;
        auto held = source->held();
        all.insert(all.end(), std::make_move_iterator(held.begin()), std::make_move_iterator(held.end()));
    };
    add(gnome_);
    add(kde_);
    add(screenSaver_);
    add(logind_);
    return all;
}

} // namespace kestrio
