#include "Programs/Agent/HostOptimizer.h"

#include "Kestrio/Base/Calendar.h"
#include "Kestrio/Link/LocalOptimizer.h"
#include "Kestrio/Optimizer/JournaledHolding.h"
#include "Kestrio/Optimizer/Optimizer.h"
#include "Kestrio/Optimizer/OptimizerAlerts.h"
#include "Kestrio/Optimizer/ProcessControl.h"
#include "Kestrio/Optimizer/SafetyNet.h"
#include "Kestrio/Platform/Linux/BusConnection.h"
#include "Kestrio/Platform/Linux/DesktopNotifications.h"
#include "Kestrio/Platform/Linux/LaunchDate.h"
#include "Kestrio/Platform/Linux/LinuxProcessSignals.h"
#include "Kestrio/Platform/Linux/LinuxProcessTable.h"
#include "Kestrio/Platform/Linux/LinuxWatchdog.h"
#include "Kestrio/Platform/Linux/Locations.h"
#include "Kestrio/Platform/Linux/PowerOffWatch.h"
#include "Kestrio/Platform/Linux/ProcessIdentity.h"
#include "Kestrio/Platform/Linux/StopRefusals.h"
#include "Kestrio/Platform/Linux/X11Workspace.h"
#include "Programs/Agent/Agent.h"
#include "Programs/Agent/LatestMediaUse.h"

#include <unistd.h>

namespace kestrio {
namespace {

constexpr auto nobodyKnowsWhatPlays = "nobody can tell whether it plays.";

AppIDs hostEssentials() {
    const auto& members = IdentityCatalogue::builtIn().members(IdentityRole::essential);
    return {members.begin(), members.end()};
}

ProcessKey ownKey() {
    return {getpid(), readStartTicks("/proc", getpid()).value_or(0)};
}

} // namespace

/// The hold on this machine's processes, and the net under it.
class HostOptimizer::Ground {
public:
    explicit Ground(const Host& host)
        : entries(applicationFolders(processEnvironment), messageLocale(processEnvironment), host.clock),
          identity(entries, IdentityCatalogue::builtIn()),
          table({}, &identity),
          signals(wrapped(host.wrapSignals)),
          watchdog({.rescue = host.programs / "kestrio-rescue"}),
          safetyNet({host.dataFolder, ownKey()}, *signals, watchdog),
          control(table, *signals, safetyNet),
          holding(table, control, safetyNet) {}

    DesktopEntries entries;
    ApplicationIdentity identity;
    LinuxProcessTable table;
    std::unique_ptr<ProcessSignals> signals;
    LinuxWatchdog watchdog;
    SafetyNet safetyNet;
    ProcessControl control;
    JournaledHolding holding;

private:
    static std::unique_ptr<ProcessSignals> wrapped(const WrapSignals& wrap) {
        auto real = std::make_unique<LinuxProcessSignals>(LinuxProcessSignals::Setup{});
        return wrap ? wrap(std::move(real)) : std::move(real);
    }
};

/// The optimizer with its own view of the desktop.
class HostOptimizer::Runtime {
public:
    Runtime(const Host& host, LoopQueue& queue, Ground& ground, Parts parts, std::function<void(Shown)> takeShown)
        : host_(host),
          queue_(queue),
          parts_(std::move(parts)),
          show_(std::move(takeShown)),
          connection_(queue, host.clock, processEnvironment("DISPLAY").value_or("")),
          windows_(connection_),
          workspace(queue, windows_, ground.identity),
          refusals_(connection_),
          media_(host.clock, parts_.readMedia),
          notifications_(queue, BusConnection::address(BusConnection::Bus::session).value_or("")),
          alerts_({host.clock, calendar_, host.settings, notifications_},
                  {bundleIdentifier, parts_.log, parts_.openDashboard}),
          optimizer({host.clock, queue, calendar_, workspace, host.settings, ground.holding}, collaborators()) {
        const auto again = [this](const auto&) { show(); };
        tokens_.push_back(optimizer.isEnabled().observe(again));
        tokens_.push_back(optimizer.managed().observe(again));
        tokens_.push_back(optimizer.rules().observe(again));
        tokens_.push_back(optimizer.tuning().observe(again));
        tokens_.push_back(connection_.observeConnection([this](bool isThere) { noteConnection(isThere); }));
    }

    void start(std::size_t recovered) {
        optimizer.start(recovered);
        show();
    }

private:
    Optimizer::Collaborators collaborators() {
        return {.ownBundleID = bundleIdentifier,
                .hostEssentials = hostEssentials(),
                .launchDate = [this](pid_t process) { return launchDate(process, host_.clock); },
                .mediaUse = [this] { return media_.value(); },
                .refusal = [this](const auto& question) { return refusal(question); },
                .log = parts_.log,
                .checkAlerts = [this](const auto& sample, const auto& front) { alerts_.check(sample, front); }};
    }

    std::optional<std::string> refusal(const Optimizer::StopQuestion& question) {
        if (!media_.isKnown())
            return nobodyKnowsWhatPlays;
        if (question.processes.empty())
            return std::nullopt;
        return question.isStopped ? refusals_.whileStopped(question.processes.front())
                                  : refusals_.beforeStop(question.processes);
    }

    /// Without its windows an application is no longer held.
    void noteConnection(bool isThere) {
        if (isThere)
            return;
        queue_.async([weak = std::weak_ptr(self_)] {
            if (const auto self = weak.lock())
                (*self)->optimizer.tick();
        });
    }

    /// Nothing stopped may stand in the way of the machine's end. When that is called off, it begins anew.
    void notePowerOff(bool isNear) {
        if (isNear)
            optimizer.finish();
        else
            optimizer.settingsChanged();
    }

    void show() {
        Shown shown;
        const bool isEnabled = optimizer.isEnabled().value();
        shown.state = {.config = {isEnabled, optimizer.tuning().value(), optimizer.rules().value()},
                       .states = optimizer.logStates(),
                       .frozenApps = static_cast<std::int64_t>(optimizer.frozenCount()),
                       .efficientApps = static_cast<std::int64_t>(optimizer.efficientCount()),
                       .frozenMemory = optimizer.frozenMemory()};
        if (isEnabled)
            shown.counts = OptimizerCounts{.frozen = optimizer.frozenCount(),
                                           .frozenMemory = optimizer.frozenMemory(),
                                           .efficient = optimizer.efficientCount(),
                                           .isManaging = !optimizer.managed().value().empty()};
        show_(std::move(shown));
    }

    const Host& host_;
    LoopQueue& queue_;
    const Parts parts_;
    const std::function<void(Shown)> show_;
    const Calendar calendar_ = Calendar::current();
    X11Connection connection_;
    X11Windows windows_;

public:
    X11Workspace workspace;

private:
    StopRefusals refusals_;
    LatestMediaUse media_;
    DesktopNotifications notifications_;
    OptimizerAlerts alerts_;

public:
    Optimizer optimizer;

private:
    PowerOffWatch powerOff_{queue_, BusConnection::address(BusConnection::Bus::system).value_or(""),
                            [this](bool isNear) { notePowerOff(isNear); }};
    std::vector<Subscription> tokens_;
    std::shared_ptr<Runtime*> self_ = std::make_shared<Runtime*>(this); // work on the way holds it weakly
};

HostOptimizer::HostOptimizer(Host host) : host_(std::move(host)) {
    queue_.sync([this] {
        ground_ = std::make_unique<Ground>(host_);
        recovered_ = ground_->holding.recoverEarlierRuns();
    });
}

HostOptimizer::~HostOptimizer() {
    settings_.cancel();
    link_.reset();
    queue_.sync([this] {
        runtime_.reset();
        ground_.reset();
    });
}

void HostOptimizer::connect(Parts parts) {
    switched_ = std::move(parts.switched);
    parts.openDashboard = [this, open = std::move(parts.openDashboard)] { host_.main.async(open); };
    queue_.sync([&] {
        runtime_ = std::make_unique<Runtime>(host_, queue_, *ground_, std::move(parts),
                                             [this](Shown shown) { showSoon(std::move(shown)); });
    });
    link_ = std::make_unique<LocalOptimizer>(queue_, runtime_->optimizer, runtime_->workspace);
}

void HostOptimizer::start() {
    queue_.async([this] { runtime_->start(recovered_); });
    settings_ = host_.settings.observe([this](const std::string& key) {
        if (key == Optimizer::enabledKey || key == Optimizer::rulesKey || key == Optimizer::tuningKey)
            queue_.async([this] { runtime_->optimizer.settingsChanged(); });
    });
}

void HostOptimizer::finish() {
    settings_.cancel();
    queue_.sync([this] {
        if (runtime_)
            runtime_->optimizer.finish();
    });
}

void HostOptimizer::didSample(const LiveResources& live) {
    queue_.async([this, apps = live.apps, hasCPU = live.hasCPU, pressure = live.pressure] {
        if (runtime_)
            runtime_->optimizer.didSample({*apps, hasCPU, pressure});
    });
}

OptimizerLink* HostOptimizer::link() {
    return link_.get();
}

/// Called on the optimizer's queue.
void HostOptimizer::showSoon(Shown shown) {
    host_.main.async([weak = std::weak_ptr(self_), shown = std::move(shown)] {
        if (const auto self = weak.lock())
            (*self)->take(shown);
    });
}

void HostOptimizer::take(Shown shown) {
    const bool wasOn = std::exchange(shown_, std::move(shown)).state.config.enabled;
    if (shown_.state.config.enabled != wasOn)
        switched_();
}

} // namespace kestrio
