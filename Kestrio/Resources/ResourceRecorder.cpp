#include "Kestrio/Resources/ResourceRecorder.h"

#include "Kestrio/Base/Log.h"
#include "Kestrio/Resources/ResourceNotes.h"
#include "Kestrio/Resources/TimeAgain.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <utility>

namespace kestrio {
namespace {

constexpr auto logEnabledKey = "resourceLogEnabled";
constexpr auto detailKey = "resourceDetail";
constexpr auto logDaysKey = "resourceLogDays";
constexpr auto detailDaysKey = "resourceDetailDays";
constexpr auto optimizerEnabledKey = "optimizerEnabled";
constexpr auto idleMinutesKey = "idleMinutes";

constexpr Seconds quietInterval{10};  // between readings where nobody wants them more often
constexpr Seconds watchedInterval{2}; // while a page shows them
constexpr Seconds scanInterval{9.6};  // a little under ten: a tick that comes early still scans
constexpr Seconds watchedScanInterval{2.6};
constexpr Seconds secondsJitter{0.4};    // by which a tick may come early and still count
constexpr std::size_t secondsBatch = 30; // the most that a crash loses
constexpr Seconds secondsFlushInterval{20};
constexpr Seconds slowdownInterval{180};
constexpr Seconds pruneInterval{21'600};
constexpr Seconds dayLength{86'400};

std::int64_t activityCode(TrackingState state) {
    using Code = tindra::BehaviourAccumulator;
    switch (state) {
    case TrackingState::tracking: return Code::active;
    case TrackingState::idle: return Code::idle;
    case TrackingState::away: return Code::away;
    case TrackingState::paused: return Code::paused;
    }
    return Code::paused;
}

/// Whether the two are the same run of an application; its name may change.
bool isSameRun(const RunningApplication& a, const RunningApplication& b) {
    return a.bundleIdentifier == b.bundleIdentifier && a.processIdentifier == b.processIdentifier &&
           (a.processIdentifier || a.localizedName == b.localizedName);
}

/// Those of `all` that are not among `others`.
std::vector<RunningApplication> missing(const std::vector<RunningApplication>& all,
                                        const std::vector<RunningApplication>& others) {
    std::vector<RunningApplication> found;
    std::copy_if(all.begin(), all.end(), std::back_inserter(found), [&](const RunningApplication& one) {
        return std::none_of(others.begin(), others.end(), [&](const auto& other) { return isSameRun(one, other); });
    });
    return found;
}

/// Absent for an application that has neither an identifier nor a name.
std::optional<AppReference> reference(const RunningApplication& application) {
    const auto& key = application.bundleIdentifier ? application.bundleIdentifier : application.localizedName;
    if (!key)
        return std::nullopt;
    return AppReference{*key, application.localizedName.value_or(*key)};
}

} // namespace

ResourceRecorder::ResourceRecorder(Host host, Collaborators collaborators)
    : host_(std::move(host)), collaborators_(std::move(collaborators)), probe_(host_.clock, host_.probeQueue) {}

ResourceRecorder::~ResourceRecorder() {
    stop();
    host_.samplerQueue.sync([] {}); // a sample that is being taken uses the sampler
}

void ResourceRecorder::start() {
    if (std::exchange(started_, true))
        return;
    running_ = collaborators_.runningApplications();
    observers_.push_back(collaborators_.observeApplications([this] { noteApplications(); }));
    observers_.push_back(collaborators_.observeSession([this](const SessionNotice& notice) { hear(notice); }));
    // The settings tell of a change on whichever thread made it.
    observers_.push_back(
        host_.settings.observe([&main = host_.main, weak = std::weak_ptr(self_)](const std::string& key) {
            main.async([weak, key] {
                if (const auto self = weak.lock())
                    (*self)->settingChanged(key);
            });
        }));
    schedule();
}

void ResourceRecorder::stop() {
    if (!std::exchange(started_, false))
        return;
    timer_.cancel();
    restoring_.cancel();
    lowered_.reset();
    observers_.clear();
    probe_.stop();
    writePendingSeconds(host_.clock.now());
}

// The pace.

std::int64_t ResourceRecorder::detailSeconds() const {
    constexpr std::array<std::int64_t, 3> others{0, 5, 10};
    const auto set = host_.settings.get<std::int64_t>(detailKey).value_or(1);
    return std::find(others.begin(), others.end(), set) != others.end() ? set : 1;
}

std::int64_t ResourceRecorder::pace() const {
    return lowered_ ? 0 : detailSeconds();
}

bool ResourceRecorder::isLogging() const {
    return host_.store != nullptr && host_.settings.boolean(logEnabledKey);
}

bool ResourceRecorder::isNeeded() const {
    return isLogging() || isPageVisible_ || collaborators_.optimizer().config.enabled;
}

Seconds ResourceRecorder::tickInterval() const {
    const auto detail = isLogging() ? pace() : 0;
    const auto base = detail == 0 ? quietInterval : Seconds(static_cast<double>(detail));
    return isPageVisible_ ? std::min(base, watchedInterval) : base;
}

void ResourceRecorder::schedule() {
    if (!started_)
        return;
    timer_.cancel();
    if (isNeeded()) {
        const auto interval = tickInterval();
        timer_ = host_.main.every({.interval = interval, .tolerance = interval / 10}, [this] { sample(); });
    }
    const bool logging = isLogging();
    if (logging)
        probe_.start();
    else
        probe_.stop();
    if (!logging || pace() == 0)
        writePendingSeconds(host_.clock.now());
}

void ResourceRecorder::setPageVisible(bool visible) {
    if (std::exchange(isPageVisible_, visible) != visible)
        schedule();
}

void ResourceRecorder::settingChanged(const std::string& key) {
    if (key == detailKey || key == logEnabledKey)
        restorePace(); // the person has decided anew
    if (key == detailKey || key == logEnabledKey || key == optimizerEnabledKey)
        schedule();
}

void ResourceRecorder::watchOwnCost(Date now) {
    const auto uptime = host_.clock.uptime();
    if (!costWatch_.isReadingDue(uptime))
        return;
    if (const auto use = collaborators_.ownUse())
        costWatch_.add(*use, uptime);
    if (pace() != 0 && costWatch_.isOverBudget())
        lowerPace(costWatch_.cost().value(), now);
}

void ResourceRecorder::lowerPace(const OwnCost& cost, Date now) {
    logLine(
        fmt::format("Kestrio resource log: the program took {:.1f} % of a core for {:.0f} minutes; recording minutes "
                    "alone for an hour",
                    cost.cores * 100, cost.span.count() / 60));
    lowered_ = LoweredPace{now, now + lowPaceSpan, cost};
    costWatch_.beginAnew();
    restoring_ = host_.main.after(lowPaceSpan, [this] {
        restorePace();
        schedule();
    });
    schedule();
}

void ResourceRecorder::restorePace() {
    restoring_.cancel();
    lowered_.reset();
    costWatch_.beginAnew();
}

// A tick.

void ResourceRecorder::sample() {
    if (inFlight_)
        return; // a slow reading drops ticks and does not pile them up
    inFlight_ = true;
    const auto now = host_.clock.now();
    const bool logging = isLogging();
    const auto activity = collaborators_.activity();
    auto power = collaborators_.power();
    auto optimizer = collaborators_.optimizer();
    if (logging) {
        noteActivity(activity);
        noteConfig(optimizer.config);
    }
    host_.samplerQueue.async([&sampler = host_.sampler, &main = host_.main, weak = std::weak_ptr(self_),
                              context = context(now, power, activity, std::move(optimizer)), power, now, logging] {
        auto output = std::make_shared<const Output>(sampler.sample(context, now));
        main.async([weak, output = std::move(output), power, logging] {
            if (const auto self = weak.lock())
                (*self)->apply(*output, power, logging);
        });
    });
    if (logging)
        watchOwnCost(now);
}

ResourceContext ResourceRecorder::context(Date now, const PowerState& power, TrackingState activity,
                                          OptimizerState optimizer) {
    const bool scanApps = isTimeAgain(lastAppScan_, isPageVisible_ ? watchedScanInterval : scanInterval, now);
    if (scanApps) {
        lastAppScan_ = now;
        appsOpen_ = static_cast<std::int64_t>(collaborators_.runningApplications().size());
    }
    const auto front = collaborators_.frontmost();
    return {.frontmost = front ? front->bundleIdentifier : std::nullopt,
            .states = std::move(optimizer.states),
            .lagMilliseconds = probe_.takeWorstMilliseconds(),
            .scanApps = scanApps,
            .activity = activityCode(activity),
            .inputIdleSeconds = collaborators_.inputIdle().value_or(Seconds(0)).count(),
            .battery = power.battery,
            .onAC = power.onAC,
            .lowPower = power.lowPower,
            .thermal = power.thermal,
            .appsOpen = appsOpen_,
            .config = std::move(optimizer.config),
            .frozenApps = optimizer.frozenApps,
            .efficientApps = optimizer.efficientApps,
            .frozenMemory = optimizer.frozenMemory};
}

void ResourceRecorder::apply(const Output& output, const PowerState& power, bool logging) {
    inFlight_ = false;
    publish(output.live);
    if (output.scannedApps)
        collaborators_.didSample(output.live);
    if (logging && started_)
        log(output, power);
}

void ResourceRecorder::publish(const LiveResources& live) {
    live_ = live;
    history_.push_back(live);
    if (history_.size() > historyLimit)
        history_.pop_front();
    sampled_.emit();
}

void ResourceRecorder::log(const Output& output, const PowerState& power) {
    notePressure(output.live);
    noteHeat(power.thermal);
    notePower(power);
    noteSecond(output);
    if (output.finished) {
        host_.store->write(output.finished->minute, output.finished->apps);
        noteSlowdown(*output.finished);
    }
    pruneIfDue(host_.clock.now());
}

void ResourceRecorder::noteSecond(const Output& output) {
    const auto detail = pace();
    const auto now = output.live.at;
    const auto least = Seconds(static_cast<double>(detail)) - secondsJitter;
    if (detail == 0 || !output.isComparable || !isTimeAgain(lastSecondWritten_, least, now))
        return;
    lastSecondWritten_ = now;
    pendingSeconds_.push_back(output.second);
    if (pendingSeconds_.size() >= secondsBatch || isTimeAgain(lastSecondsFlush_, secondsFlushInterval, now))
        writePendingSeconds(now);
}

void ResourceRecorder::writePendingSeconds(Date now) {
    if (pendingSeconds_.empty())
        return;
    lastSecondsFlush_ = now;
    host_.store->write(std::exchange(pendingSeconds_, {}));
}

void ResourceRecorder::pruneIfDue(Date now) {
    if (!isTimeAgain(lastPrune_, pruneInterval, now))
        return;
    lastPrune_ = now;
    const auto days = std::max(host_.settings.integer(logDaysKey), std::int64_t{1});
    const auto detailDays = std::clamp(host_.settings.integer(detailDaysKey), std::int64_t{1}, days);
    host_.store->prune(now - dayLength * static_cast<double>(days), now - dayLength * static_cast<double>(detailDays));
}

// Events.

void ResourceRecorder::add(ResourceEventKind kind, std::string detail, std::optional<std::uint64_t> bytes) {
    host_.store->add(kind, std::nullopt, std::move(detail), bytes, host_.clock.now());
}

void ResourceRecorder::noteActivity(TrackingState state) {
    const auto last = std::exchange(lastActivity_, state);
    if (last && *last != state)
        add(ResourceEventKind::activity,
            resourceNotes::activityChanged(*last, state, host_.settings.integer(idleMinutesKey)));
}

void ResourceRecorder::noteConfig(const tindra::OptimizerConfig& config) {
    auto key = config.key();
    if (lastConfigKey_ && *lastConfigKey_ != key)
        add(ResourceEventKind::configChanged, "Now: " + config.label() + ".");
    lastConfigKey_ = std::move(key);
}

void ResourceRecorder::notePressure(const LiveResources& live) {
    const auto last = std::exchange(lastPressure_, live.pressure).value_or(MemoryPressure::normal);
    if (pressureCode(live.pressure) > pressureCode(last))
        add(ResourceEventKind::pressure, resourceNotes::pressureRose(live, host_.calendar), live.swapUsed);
}

void ResourceRecorder::noteHeat(std::int64_t thermal) {
    const auto last = std::exchange(lastThermal_, thermal);
    if (last && *last != thermal)
        add(ResourceEventKind::thermal, resourceNotes::thermalChanged(*last, thermal));
}

void ResourceRecorder::notePower(const PowerState& power) {
    const auto last = std::exchange(lastPower_, PowerSource{power.onAC, power.lowPower});
    if (!last)
        return;
    if (last->onAC && power.onAC && *last->onAC != *power.onAC)
        add(ResourceEventKind::power, resourceNotes::powerChanged(*power.onAC, power.battery));
    if (last->lowPower != power.lowPower)
        add(ResourceEventKind::power, resourceNotes::lowPowerChanged(power.lowPower));
}

void ResourceRecorder::noteSlowdown(const FinishedMinute& finished) {
    const auto& minute = finished.minute;
    const tindra::MinuteHealth health{.pressure = minute.pressure,
                                      .swapInBytes = minute.swapIn,
                                      .swapOutBytes = minute.swapOut,
                                      .lagMilliseconds = minute.lagMilliseconds};
    const auto now = host_.clock.now();
    if (!health.isSlowdown() || !isTimeAgain(lastSlowdown_, slowdownInterval, now))
        return;
    lastSlowdown_ = now;
    add(ResourceEventKind::slowdown, resourceNotes::slowdown(minute, finished.apps, host_.calendar));
}

void ResourceRecorder::noteApplications() {
    const auto before = std::exchange(running_, collaborators_.runningApplications());
    if (!isLogging())
        return;
    for (const auto& application : missing(before, running_))
        noteApp(application, ResourceEventKind::appClosed);
    for (const auto& application : missing(running_, before))
        noteApp(application, ResourceEventKind::appOpened);
}

void ResourceRecorder::noteApp(const RunningApplication& application, ResourceEventKind kind) {
    const auto app = reference(application);
    if (!app)
        return;
    const auto* end = kind == ResourceEventKind::appOpened ? " was opened." : " was closed.";
    host_.store->add(kind, app, app->name + end, std::nullopt, host_.clock.now());
}

void ResourceRecorder::hear(const SessionNotice& notice) {
    if (notice.event == SessionEvent::willSleep)
        noteSleep();
    else if (notice.event == SessionEvent::didWake)
        noteWake();
}

void ResourceRecorder::noteSleep() {
    const auto now = host_.clock.now();
    sleptAt_ = now;
    writePendingSeconds(now);
    if (isLogging())
        add(ResourceEventKind::macSlept, "The Mac went to sleep.");
}

void ResourceRecorder::noteWake() {
    const auto slept = std::exchange(sleptAt_, std::nullopt);
    if (!isLogging())
        return;
    const auto asleep = slept ? std::optional(host_.clock.now() - *slept) : std::nullopt;
    add(ResourceEventKind::macWoke, resourceNotes::woke(asleep));
}

} // namespace kestrio
