// Runs the resource log: keeps the pace, gathers what the sampler cannot know, publishes each reading to the pages,
// stores seconds and minutes, and turns changes into events.
//
// All fields belong to the main queue, where everything here is called. The sampler measures on a queue of its own
// ("Kestrio.resources"), one reading at a time, and the store writes on its own: no disk and no slow reading holds up
// the main queue. Nothing here is reported to the person; without a store the live figures go on.
//
//   timer (main) → gather the context → sampler (its queue) → publish (main) → seconds in batches, minutes → store
#pragma once

#include "Kestrio/Base/Calendar.h"
#include "Kestrio/Base/Clock.h"
#include "Kestrio/Base/Queue.h"
#include "Kestrio/Base/Signal.h"
#include "Kestrio/Model/Models.h"
#include "Kestrio/Platform/KeyValueStore.h"
#include "Kestrio/Platform/OwnUse.h"
#include "Kestrio/Platform/SessionEvents.h"
#include "Kestrio/Platform/Workspace.h"
#include "Kestrio/Resources/OwnCost.h"
#include "Kestrio/Resources/ResourceSampler.h"
#include "Kestrio/Resources/ResourceStore.h"
#include "Kestrio/Resources/StallProbe.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kestrio {

/// How the machine is powered and how hot it is, as last read.
struct PowerState {
    std::optional<std::int64_t> battery = {}; // percent
    std::optional<bool> onAC = {};
    bool lowPower = false;
    std::int64_t thermal = 0; // 0 nominal, 1 fair, 2 serious, 3 critical
};

/// What the optimizer is set to and what it holds at the moment.
struct OptimizerState {
    tindra::OptimizerConfig config = tindra::OptimizerConfig::off();
    std::map<std::string, std::int64_t> states = {}; // by application's key: 1 slowed, 2 frozen
    std::int64_t frozenApps = 0;
    std::int64_t efficientApps = 0;
    std::uint64_t frozenMemory = 0; // bytes
};

class ResourceRecorder {
public:
    static constexpr auto samplerQueueLabel = "Kestrio.resources";
    /// How many readings the pages can look back on.
    static constexpr std::size_t historyLimit = 300;
    /// A pace that the program lowered for its own cost stays low for so long.
    static constexpr Seconds lowPaceSpan{3600};

    /// All must outlive the recorder.
    struct Host {
        const Clock& clock;
        Queue& main;
        Queue& samplerQueue;
        Queue& probeQueue;
        KeyValueStore& settings;
        /// Lives on `samplerQueue`; the recorder alone calls it.
        ResourceSampler& sampler;
        /// Null when the log could not be opened.
        ResourceStore* store;
        Calendar calendar;
    };

    /// What other concerns know. Each is called on the main queue and must not wait; the defaults know nothing.
    struct Collaborators {
        std::function<std::optional<RunningApplication>()> frontmost = [] { return std::nullopt; };
        /// The regular ones, each process once.
        std::function<std::vector<RunningApplication>()> runningApplications = [] {
            return std::vector<RunningApplication>();
        };
        /// The receiver is to be called on the main queue when an application was opened or closed.
        std::function<Subscription(std::function<void()>)> observeApplications = [](auto) { return Subscription(); };
        /// The same for sleep and wake; other events may be told too.
        std::function<Subscription(std::function<void(const SessionNotice&)>)> observeSession = [](auto) {
            return Subscription();
        };
        std::function<TrackingState()> activity = [] { return TrackingState::tracking; };
        /// Absent where the desktop does not tell.
        std::function<std::optional<Seconds>()> inputIdle = [] { return std::nullopt; };
        std::function<PowerState()> power = [] { return PowerState(); };
        std::function<OptimizerState()> optimizer = [] { return OptimizerState(); };
        /// Hears of the applications after each scan.
        std::function<void(const LiveResources&)> didSample = [](const auto&) {};
        std::function<std::optional<OwnUse>()> ownUse = [] { return std::nullopt; };
    };

    ResourceRecorder(Host host, Collaborators collaborators);
    ~ResourceRecorder();
    ResourceRecorder(const ResourceRecorder&) = delete;
    ResourceRecorder& operator=(const ResourceRecorder&) = delete;

    /// Begins to observe and, where needed, to sample. A second call does nothing.
    void start();
    /// Hands the last seconds to the store. The minute under way is lost.
    void stop();

    /// The newest reading; absent before the first one.
    const std::optional<LiveResources>& live() const { return live_; }
    /// The last readings, the oldest first.
    const std::deque<LiveResources>& history() const { return history_; }
    /// The receiver is called after each reading.
    Subscription observe(std::function<void()> receiver) { return sampled_.subscribe(std::move(receiver)); }

    /// A page that shows live figures has come up, or the last one is gone.
    void setPageVisible(bool visible);
    bool isPageVisible() const { return isPageVisible_; }

    /// Applies the pace anew. Settings are watched; for a change of the optimizer's that no setting tells of.
    void schedule();

    /// The pace that the person set, in seconds: 1, 5 or 10, or 0 for minutes alone.
    std::int64_t detailSeconds() const;

    /// Absent while the pace is the person's.
    const std::optional<LoweredPace>& loweredPace() const { return lowered_; }

    /// What the program takes, over the last ten minutes at most; absent while nothing is logged and at first.
    std::optional<OwnCost> ownCost() const { return costWatch_.cost(); }

private:
    using Output = ResourceSampler::Output;

    // The pace.
    bool isLogging() const;
    bool isNeeded() const;
    std::int64_t pace() const;
    Seconds tickInterval() const;
    void settingChanged(const std::string& key);
    void watchOwnCost(Date now);
    void lowerPace(const OwnCost& cost, Date now);
    void restorePace();

    // A tick.
    void sample();
    ResourceContext context(Date now, const PowerState& power, TrackingState activity, OptimizerState optimizer);
    void apply(const Output& output, const PowerState& power, bool logging);
    void publish(const LiveResources& live);
    void log(const Output& output, const PowerState& power);
    void noteSecond(const Output& output);
    void writePendingSeconds(Date now);
    void pruneIfDue(Date now);

    // Events.
    void add(ResourceEventKind kind, std::string detail, std::optional<std::uint64_t> bytes = {});
    void noteActivity(TrackingState state);
    void noteConfig(const tindra::OptimizerConfig& config);
    void notePressure(const LiveResources& live);
    void noteHeat(std::int64_t thermal);
    void notePower(const PowerState& power);
    void noteSlowdown(const FinishedMinute& finished);
    void noteApplications();
    void noteApp(const RunningApplication& application, ResourceEventKind kind);
    void hear(const SessionNotice& notice);
    void noteSleep();
    void noteWake();

    const Host host_;
    const Collaborators collaborators_;
    StallProbe probe_;

    std::optional<LiveResources> live_;
    std::deque<LiveResources> history_;
    Signal<> sampled_;
    bool isPageVisible_ = false;
    bool started_ = false;
    bool inFlight_ = false; // a sample is being taken
    Subscription timer_;
    std::vector<Subscription> observers_;

    std::vector<RunningApplication> running_; // as last seen
    std::optional<Date> lastAppScan_;
    std::int64_t appsOpen_ = 0;
    std::optional<Date> sleptAt_;

    std::vector<SystemSecond> pendingSeconds_;
    std::optional<Date> lastSecondWritten_;
    std::optional<Date> lastSecondsFlush_;
    std::optional<Date> lastPrune_;

    // As last seen, to tell a change.
    std::optional<Date> lastSlowdown_;
    std::optional<MemoryPressure> lastPressure_;
    std::optional<std::int64_t> lastThermal_;
    std::optional<TrackingState> lastActivity_;
    struct PowerSource {
        std::optional<bool> onAC;
        bool lowPower;
    };
    std::optional<PowerSource> lastPower_;
    std::optional<std::string> lastConfigKey_;

    OwnCostWatch costWatch_;
    std::optional<LoweredPace> lowered_;
    Subscription restoring_;

    /// Work that waits in the main queue holds this weakly, and does nothing once the recorder is gone.
    std::shared_ptr<ResourceRecorder*> self_ = std::make_shared<ResourceRecorder*>(this);
};

} // namespace kestrio
