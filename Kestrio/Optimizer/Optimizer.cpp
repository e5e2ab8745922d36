#include "Kestrio/Optimizer/Optimizer.h"

#include "Kestrio/Optimizer/OptimizerJSON.h"
#include "Kestrio/Optimizer/OptimizerWords.h"

#include <algorithm>
#include <utility>

namespace kestrio {

using tindra::AppTier;
using tindra::Decision;
using tindra::OptimizerRules;
using tindra::OptimizerTuning;
using tindra::ThawReason;
namespace control = tindra::control;
namespace decision = tindra::decision;

namespace {

// The decisions have a type of dates of their own.
tindra::Date coreDate(Date date) {
    return {date.seconds()};
}
std::optional<tindra::Date> coreDate(std::optional<Date> date) {
    return date ? std::optional(coreDate(*date)) : std::nullopt;
}

tindra::LocalTime localTime(const Calendar& calendar, Date date) {
    const auto parts = calendar.components(date);
    return {parts.weekday, parts.hour, parts.minute};
}

OptimizerRules storedRules(const KeyValueStore& settings) {
    const auto stored = settings.get<SettingBytes>(Optimizer::rulesKey);
    return stored ? decodedRules(stored->bytes).value_or(OptimizerRules{}) : OptimizerRules{};
}

OptimizerTuning storedTuning(const KeyValueStore& settings) {
    const auto stored = settings.get<SettingBytes>(Optimizer::tuningKey);
    return stored ? decodedTuning(stored->bytes).value_or(OptimizerTuning{}) : OptimizerTuning{};
}

/// What cannot be encoded leaves the stored value as it was.
void keep(KeyValueStore& settings, const char* key, const std::optional<std::string>& json) {
    if (json)
        settings.set(key, SettingBytes{*json});
}

AppIDs allEssentials(const Optimizer::Collaborators& parts) {
    AppIDs all = builtInEssentials();
    all.insert(parts.hostEssentials.begin(), parts.hostEssentials.end());
    all.insert(parts.ownBundleID);
    return all;
}

void append(std::vector<ProcessKey>& keys, const std::vector<ProcessKey>& more) {
    keys.insert(keys.end(), more.begin(), more.end());
}

std::vector<ProcessKey> without(std::vector<ProcessKey> keys, const std::vector<ProcessKey>& known) {
    std::erase_if(keys, [&](const ProcessKey& key) { return std::ranges::find(known, key) != known.end(); });
    return keys;
}

AppReference reference(const ManagedApp& app) {
    return {app.id, app.name};
}

bool isSameProcess(const ManagedApp& app, const RunningApplication& application) {
    return app.pid == application.processIdentifier;
}

} // namespace

/// Carries one decision out on an application.
struct Optimizer::CarryOut {
    Optimizer& optimizer;
    const Candidate& candidate;
    ManagedApp& app;
    Seconds idle;
    Date now;

    void operator()(const decision::Freeze& freeze) {
        const auto keys = optimizer.stoppable(candidate, app);
        if (!keys || !optimizer.stop(app, *keys))
            return;
        follow(freeze);
        app.frozenFootprint = optimizer.footprint(app.id);
        optimizer.log(ResourceEventKind::freeze, reference(app), OptimizerWords::frozen(idle, app.frozen.size()),
                      app.frozenFootprint);
    }

    void operator()(const decision::Thaw& thaw) {
        optimizer.resumeProcesses(app);
        follow(thaw);
        optimizer.log(ResourceEventKind::thaw, reference(app), OptimizerWords::resumed(thaw.reason));
    }

    void operator()(const decision::Wake& wake) {
        if (!app.isFrozen())
            return;
        optimizer.resumeProcesses(app);
        follow(wake);
        optimizer.log(ResourceEventKind::wake, reference(app),
                      OptimizerWords::checking(optimizer.tuning_.value().wakeSeconds));
    }

    void operator()(const decision::Refreeze& refreeze) {
        const bool isWaking = std::holds_alternative<control::Waking>(app.control);
        const auto keys = isWaking ? optimizer.stoppable(candidate, app) : std::nullopt;
        if (!keys)
            return;
        if (optimizer.stop(app, *keys))
            follow(refreeze);
        else
            app.control = control::Running{};
    }

    void operator()(const decision::MakeEfficient&) {
        if (optimizer.slowProcesses(app))
            optimizer.log(ResourceEventKind::efficient, reference(app),
                          OptimizerWords::slowed(optimizer.cpuShare(app.id), optimizer.host_.calendar));
    }

    void operator()(const decision::RestorePriority&) { optimizer.restoreProcesses(app); }

private:
    void follow(const Decision& decision) { app.control = controlAfter(decision, app.control, coreDate(now)); }
};

Optimizer::Optimizer(Host host, Collaborators collaborators)
    : host_(host),
      parts_(std::move(collaborators)),
      essentials_(allEssentials(parts_)),
      isEnabled_(host.settings.boolean(enabledKey)),
      rules_(storedRules(host.settings)),
      tuning_(storedTuning(host.settings)),
      self_(std::make_shared<Optimizer*>(this)) {}

Optimizer::~Optimizer() {
    end();
    if (std::ranges::any_of(held_, [](const auto& held) { return held.second.isHeld(); }))
        releaseAll();
}

// Being switched on and off.

void Optimizer::start(std::size_t recovered) {
    if (std::exchange(started_, true))
        return;
    recovered += host_.processes.recoverEarlierRuns();
    if (recovered > 0)
        log(ResourceEventKind::recovered, std::nullopt, OptimizerWords::recovered(recovered));
    listen();
    if (isEnabled_.value())
        begin();
}

void Optimizer::finish() {
    end();
    releaseAll();
    isEnabled_.set(false);
}

void Optimizer::setEnabled(bool enabled) {
    if (enabled == isEnabled_.value())
        return;
    host_.settings.set(enabledKey, enabled);
    switchTo(enabled);
}

void Optimizer::switchTo(bool enabled) {
    if (enabled == isEnabled_.value())
        return;
    if (enabled) {
        log(ResourceEventKind::optimizerOn, std::nullopt, OptimizerWords::switchedOn(tuning_.value().mode));
        isEnabled_.set(true);
        begin();
    } else {
        end();
        releaseAll();
        log(ResourceEventKind::optimizerOff, std::nullopt, OptimizerWords::switchedOff);
        isEnabled_.set(false);
    }
}

void Optimizer::begin() {
    host_.processes.startWatcher();
    // Idle time counts from here: on a machine that has run for days nothing is overdue at once.
    const Date now = host_.clock.now();
    for (const auto& candidate : candidates())
        lastActive_.try_emplace(candidate.id, now);
    timer_ = host_.queue.every({.interval = tickInterval, .tolerance = tickTolerance}, [this] { tick(); });
    tick();
}

void Optimizer::end() {
    timer_.cancel();
    watchTimer_.cancel();
}

// Notices of the workspace.

void Optimizer::listen() {
    // Handled in work of their own: a pass that asks the window system never finds the ground shifted below it.
    notices_ = host_.workspace.observe([this](WorkspaceNotice notice) {
        host_.queue.async([weak = std::weak_ptr(self_), notice] {
            if (const auto self = weak.lock())
                (*self)->heard(notice);
        });
    });
}

void Optimizer::heard(WorkspaceNotice notice) {
    switch (notice) {
    case WorkspaceNotice::activated:
        if (const auto application = frontmost())
            activated(*application);
        break;
    case WorkspaceNotice::launched: break;
    case WorkspaceNotice::terminated: forgetEnded(); break;
    }
}

void Optimizer::forgetEnded() {
    AppIDs running;
    for (const auto& application : host_.workspace.runningApplications()) {
        if (application.bundleIdentifier)
            running.insert(*application.bundleIdentifier);
    }
    if (running.empty())
        return; // rather a window system that does not answer than a desktop without a single window
    std::erase_if(lastActive_, [&](const auto& active) { return !running.contains(active.first); });
    dropOthers(running);
    publish();
}

void Optimizer::watchFront() {
    const auto application = frontmost();
    if (!application)
        return;
    const auto found = held_.find(*application->bundleIdentifier);
    if (found != held_.end() && found->second.isHeld())
        activated(*application);
}

void Optimizer::activated(const RunningApplication& application) {
    const auto& id = *application.bundleIdentifier;
    lastActive_[id] = host_.clock.now();
    const auto found = held_.find(id);
    if (found == held_.end() || !isSameProcess(found->second, application))
        return;
    auto& app = found->second;
    const bool wasStopped = !app.isRunning();
    giveBack(app);
    app.isManual = false;
    if (wasStopped)
        log(ResourceEventKind::thaw, reference(app), OptimizerWords::resumed(ThawReason::opened));
    publish();
}

// One pass.

void Optimizer::tick() {
    if (!isEnabled_.value())
        return;
    const Date now = host_.clock.now();
    if (auto rules = rules_.value(); rules.pruneOverrides(coreDate(now)))
        setRules(std::move(rules));
    const auto pass = newPass(now);
    if (pass.front)
        lastActive_[*pass.front] = now;

    AppIDs seen;
    for (const auto& candidate : candidates()) {
        seen.insert(candidate.id);
        visit(candidate, pass);
    }
    dropOthers(seen);
    slowNewHelpers();
    publish();
}

Optimizer::Pass Optimizer::newPass(Date now) {
    return {now, localTime(host_.calendar, now), frontmostID(), parts_.mediaUse ? parts_.mediaUse() : MediaUse{}};
}

void Optimizer::visit(const Candidate& candidate, const Pass& pass) {
    auto app = entry(candidate);
    if (candidate.launched && lastActive(candidate.id) < candidate.launched)
        lastActive_.erase(candidate.id); // it was another run of the application that was in front then
    if (candidate.id == pass.front)
        app.isManual = false;
    giveBackWhereRefused(candidate, app);
    if (!app.isManual) {
        CarryOut carryOut{*this, candidate, app, idle(candidate, pass.now), pass.now};
        for (const auto& decision : planned(candidate, app, pass).decisions)
            std::visit(carryOut, decision);
    }
    store(std::move(app));
}

/// Helpers that started since an application was moved follow it.
void Optimizer::slowNewHelpers() {
    std::set<pid_t> mains;
    for (const auto& [id, app] : held_) {
        if (!app.slowed.empty())
            mains.insert(app.pid);
    }
    if (mains.empty())
        return;
    const auto found = host_.processes.rememberedProcesses(mains);
    for (auto& [id, app] : held_) {
        const auto keys = found.find(app.pid);
        if (!app.slowed.empty() && keys != found.end())
            slow(app, keys->second);
    }
}

PlannedApp Optimizer::planned(const Candidate& candidate, const ManagedApp& app, const Pass& pass) const {
    const auto& rules = rules_.value();
    const auto [tier, source] = rules.tier(candidate.id, coreDate(pass.now), pass.localTime);
    const auto active = lastActive(candidate.id);
    PlannedApp plan{.id = candidate.id,
                    .name = candidate.name,
                    .tier = tier,
                    .source = source,
                    .protection = protectionOf(candidate.id, candidate.launched,
                                               {pass.front, essentials_, rules.neverTouch, pass.media, pass.now}),
                    .control = app.control,
                    .isSlowed = !app.slowed.empty(),
                    .isManual = app.isManual,
                    .cpu = cpuShare(candidate.id),
                    .footprint = footprint(candidate.id)};
    if (active || candidate.launched)
        plan.idle = idle(candidate, pass.now);
    const tindra::AppObservation observation{.appID = candidate.id,
                                             .isFrontmost = candidate.id == pass.front,
                                             .lastActive = coreDate(active),
                                             .launched = coreDate(candidate.launched),
                                             .protection = plan.protection,
                                             .control = plan.control,
                                             .isEfficient = plan.isSlowed,
                                             .cpu = plan.cpu};
    plan.decisions = decide(tier, observation, tuning_.value(), true, coreDate(pass.now));
    return plan;
}

std::vector<PlannedApp> Optimizer::plan() {
    const auto pass = newPass(host_.clock.now());
    std::vector<PlannedApp> all;
    for (const auto& candidate : candidates()) {
        const auto held = held_.find(candidate.id);
        const bool isHeld = held != held_.end() && held->second.pid == candidate.pid;
        auto plan = planned(candidate, isHeld ? held->second : newEntry(candidate), pass);
        if (plan.isManual)
            plan.decisions.clear();
        const bool wouldStop = std::ranges::any_of(plan.decisions, [](const Decision& decision) {
            return std::holds_alternative<decision::Freeze>(decision) ||
                   std::holds_alternative<decision::Refreeze>(decision);
        });
        if (wouldStop || tindra::isFrozen(plan.control))
            plan.refusal = refusal(candidate.application);
        all.push_back(std::move(plan));
    }
    return all;
}

Seconds Optimizer::idle(const Candidate& candidate, Date now) const {
    if (const auto active = lastActive(candidate.id))
        return now - *active;
    return candidate.launched ? now - *candidate.launched : Seconds(0);
}

/// Absent too for an application in front that has no identifier. Whichever look first sees that the person left an
/// application, a notice's, the watch's or a pass's, begins its idle time.
std::optional<RunningApplication> Optimizer::frontmost() {
    auto application = host_.workspace.frontmostApplication();
    const auto left = std::exchange(front_, application ? application->bundleIdentifier : std::nullopt);
    if (left && left != front_)
        lastActive_[*left] = host_.clock.now();
    if (!front_)
        return std::nullopt;
    hasSeenFront_ = true;
    return application;
}

std::optional<std::string> Optimizer::frontmostID() {
    const auto application = frontmost();
    return application ? application->bundleIdentifier : std::nullopt;
}

/// One per bundle identifier: the process that is held, where an application runs more than once, else the first.
std::vector<Optimizer::Candidate> Optimizer::candidates() const {
    std::vector<Candidate> all;
    std::map<std::string, std::size_t, std::less<>> places;
    for (const auto& application : host_.workspace.runningApplications()) {
        auto next = candidate(application);
        if (!next)
            continue;
        const auto [place, isFirst] = places.try_emplace(next->id, all.size());
        const auto held = held_.find(next->id);
        if (isFirst)
            all.push_back(std::move(*next));
        else if (held != held_.end() && isSameProcess(held->second, application))
            all[place->second] = std::move(*next);
    }
    return all;
}

/// Absent for what cannot be held: something without an identity or without a process.
std::optional<Optimizer::Candidate> Optimizer::candidate(const RunningApplication& application) const {
    if (!application.bundleIdentifier || !application.processIdentifier || *application.processIdentifier < 1)
        return std::nullopt;
    const pid_t pid = *application.processIdentifier;
    return Candidate{.application = application,
                     .id = *application.bundleIdentifier,
                     .name = application.localizedName.value_or(*application.bundleIdentifier),
                     .pid = pid,
                     .launched = parts_.launchDate ? parts_.launchDate(pid) : std::nullopt};
}

// What is held.

/// What is held of the application, or a new record. One that was relaunched starts over, and what may be left of its
/// former processes goes on.
ManagedApp Optimizer::entry(const Candidate& candidate) {
    const auto found = held_.find(candidate.id);
    if (found != held_.end() && found->second.pid == candidate.pid)
        return found->second;
    if (found != held_.end())
        giveBack(found->second);
    return newEntry(candidate);
}

ManagedApp Optimizer::newEntry(const Candidate& candidate) const {
    ManagedApp app;
    app.id = candidate.id;
    app.name = candidate.name;
    app.pid = candidate.pid;
    return app;
}

void Optimizer::store(ManagedApp app) {
    if (!app.isHeld() && !app.isManual)
        held_.erase(app.id);
    else
        held_.insert_or_assign(app.id, std::move(app));
}

/// What is no longer there, or has no window any more, is no longer held; what may be left of it goes on.
void Optimizer::dropOthers(const AppIDs& present) {
    for (auto& [id, app] : held_) {
        if (!present.contains(id))
            giveBack(app);
    }
    std::erase_if(held_, [&](const auto& held) { return !present.contains(held.first); });
}

/// Ends every action that may have changed what is held: tells the journal and whoever watches.
void Optimizer::publish() {
    std::vector<ProcessKey> frozen;
    std::vector<ProcessKey> slowed;
    bool isAnyHeld = false;
    for (const auto& [id, app] : held_) {
        append(frozen, app.frozen);
        append(slowed, app.slowed);
        isAnyHeld = isAnyHeld || app.isHeld();
    }
    host_.processes.record(frozen, slowed);
    if (!isAnyHeld)
        watchTimer_.cancel();
    else if (!watchTimer_.isActive() && timer_.isActive())
        watchTimer_ =
            host_.queue.every({.interval = watchInterval, .tolerance = watchTolerance}, [this] { watchFront(); });
    managed_.set(held_);
}

/// A host that does not tell who is in front has every application in front.
bool Optimizer::isInFront(const Candidate& candidate) {
    const auto front = frontmost();
    return !hasSeenFront_ ||
           (front && (front->processIdentifier == candidate.pid || front->bundleIdentifier == candidate.id));
}

/// What is to be stopped of it now; absent where it must be left alone. Who is in front is asked last: the person may
/// just have brought it there.
std::optional<std::vector<ProcessKey>> Optimizer::stoppable(const Candidate& candidate, const ManagedApp& app) {
    auto keys = without(host_.processes.processes(app.pid), app.frozen);
    if (refusal({candidate.application, keys, false}) || isInFront(candidate))
        return std::nullopt;
    return keys;
}

/// False when nothing of it is stopped then.
bool Optimizer::stop(ManagedApp& app, const std::vector<ProcessKey>& keys) {
    if (!keys.empty())
        append(app.frozen, host_.processes.freeze(keys));
    return !app.frozen.empty();
}

std::optional<std::string> Optimizer::refusal(const StopQuestion& question) const {
    return parts_.refusal ? parts_.refusal(question) : std::nullopt;
}

std::optional<std::string> Optimizer::refusal(const RunningApplication& application) {
    const auto chosen = candidate(application);
    return chosen ? refusal({application, host_.processes.processes(chosen->pid), false}) : std::nullopt;
}

/// False when nothing of it is slowed then.
bool Optimizer::slowProcesses(ManagedApp& app) {
    slow(app, host_.processes.processes(app.pid));
    return !app.slowed.empty();
}

void Optimizer::slow(ManagedApp& app, std::vector<ProcessKey> keys) {
    const auto others = without(std::move(keys), app.slowed);
    if (!others.empty())
        append(app.slowed, host_.processes.slow(others));
}

void Optimizer::resumeProcesses(ManagedApp& app) {
    host_.processes.resume(std::exchange(app.frozen, {}));
}

void Optimizer::restoreProcesses(ManagedApp& app) {
    host_.processes.restore(std::exchange(app.slowed, {}));
}

void Optimizer::giveBack(ManagedApp& app) {
    resumeProcesses(app);
    restoreProcesses(app);
    app.control = control::Running{};
}

/// Holds for what the person froze, too: the host does not ask who did it.
void Optimizer::giveBackWhereRefused(const Candidate& candidate, ManagedApp& app) {
    const auto reason = app.isFrozen() ? refusal({candidate.application, app.frozen, true}) : std::nullopt;
    if (!reason)
        return;
    resumeProcesses(app);
    app.control = control::Running{};
    app.isManual = false;
    log(ResourceEventKind::thaw, reference(app), OptimizerWords::resumed(*reason));
}

void Optimizer::releaseAll() {
    for (auto& [id, app] : held_) {
        const bool wasStopped = !app.isRunning();
        giveBack(app);
        if (wasStopped)
            log(ResourceEventKind::thaw, reference(app), OptimizerWords::released);
    }
    publish();
}

void Optimizer::didSample(const SampledApps& sample) {
    footprints_.clear();
    if (sample.hasCPU)
        cpuShares_.clear();
    for (const auto& app : sample.apps) {
        if (!app.bundleID)
            continue;
        footprints_[*app.bundleID] += app.footprint;
        if (sample.hasCPU)
            cpuShares_[*app.bundleID] += app.cpuCores;
    }
    if (isEnabled_.value() && parts_.checkAlerts)
        parts_.checkAlerts(sample, frontmostID());
}

// By hand.

void Optimizer::freezeNow(const RunningApplication& application) {
    const auto chosen = candidate(application);
    if (!isEnabled_.value() || !chosen || isLocked(chosen->id))
        return;
    auto app = entry(*chosen);
    const auto keys = stoppable(*chosen, app);
    if (keys && stop(app, *keys)) {
        app.control = control::Frozen{coreDate(host_.clock.now()), std::nullopt};
        app.isManual = true;
        app.frozenFootprint = footprint(app.id);
        log(ResourceEventKind::freeze, reference(app), OptimizerWords::frozenByHand, app.frozenFootprint);
    }
    store(std::move(app));
    publish();
}

void Optimizer::moveToEfficiencyCores(const RunningApplication& application) {
    const auto chosen = candidate(application);
    if (!isEnabled_.value() || !chosen || chosen->id == parts_.ownBundleID)
        return;
    auto app = entry(*chosen);
    if (slowProcesses(app)) {
        app.isManual = true;
        log(ResourceEventKind::efficient, reference(app), OptimizerWords::slowedByHand);
    }
    store(std::move(app));
    publish();
}

void Optimizer::resume(const std::string& appID) {
    const auto found = held_.find(appID);
    if (found == held_.end())
        return;
    auto& app = found->second;
    const bool wasStopped = !app.isRunning();
    giveBack(app);
    app.isManual = false;
    lastActive_[appID] = host_.clock.now(); // its idle time begins anew
    if (wasStopped)
        log(ResourceEventKind::thaw, reference(app), OptimizerWords::resumedByHand);
    publish();
}

void Optimizer::quit(const RunningApplication& application) {
    if (!application.bundleIdentifier)
        return;
    const auto& id = *application.bundleIdentifier;
    resume(id); // a stopped application cannot quit
    const auto bytes = footprints_.find(id);
    log(ResourceEventKind::quit, AppReference{id, application.localizedName.value_or(id)}, OptimizerWords::quit,
        bytes == footprints_.end() ? std::nullopt : std::optional(bytes->second));
    host_.workspace.terminate(application);
}

void Optimizer::setTier(std::optional<AppTier> tier, const std::string& appID) {
    auto rules = rules_.value();
    if (tier)
        rules.tiers.insert_or_assign(appID, *tier);
    else
        rules.tiers.erase(appID);
    setRules(std::move(rules));
    tick();
}

void Optimizer::setOverride(AppTier tier, const std::string& appID, const std::string& name, double hours) {
    const Date until = host_.clock.now() + Seconds(hours * 3600);
    auto rules = rules_.value();
    rules.setOverride(appID, tier, coreDate(until));
    setRules(std::move(rules));
    log(ResourceEventKind::override, AppReference{appID, name},
        OptimizerWords::overridden(tier, until, host_.calendar));
    tick();
}

void Optimizer::removeOverride(const std::string& appID) {
    auto rules = rules_.value();
    rules.removeOverride(appID);
    setRules(std::move(rules));
    tick();
}

// Settings.

void Optimizer::settingsChanged() {
    rules_.set(storedRules(host_.settings));
    tuning_.set(storedTuning(host_.settings));
    switchTo(host_.settings.boolean(enabledKey));
    tick();
}

void Optimizer::setRules(OptimizerRules rules) {
    if (rules == rules_.value())
        return;
    keep(host_.settings, rulesKey, encoded(rules));
    rules_.set(std::move(rules));
}

void Optimizer::setTuning(const OptimizerTuning& tuning) {
    if (tuning == tuning_.value())
        return;
    keep(host_.settings, tuningKey, encoded(tuning));
    tuning_.set(tuning);
    tick();
}

// For display and for the log.

std::size_t Optimizer::frozenCount() const {
    return static_cast<std::size_t>(
        std::ranges::count_if(held_, [](const auto& held) { return held.second.isFrozen(); }));
}

std::size_t Optimizer::efficientCount() const {
    return static_cast<std::size_t>(
        std::ranges::count_if(held_, [](const auto& held) { return !held.second.slowed.empty(); }));
}

std::uint64_t Optimizer::frozenMemory() const {
    std::uint64_t bytes = 0;
    for (const auto& [id, app] : held_)
        bytes += app.isFrozen() ? app.frozenFootprint : 0;
    return bytes;
}

std::map<std::string, std::int64_t> Optimizer::logStates() const {
    constexpr std::int64_t slowed = 1;
    constexpr std::int64_t frozen = 2;
    std::map<std::string, std::int64_t> states;
    for (const auto& [id, app] : held_) {
        if (app.isFrozen())
            states[id] = frozen;
        else if (!app.slowed.empty())
            states[id] = slowed;
    }
    return states;
}

std::optional<Date> Optimizer::lastActive(std::string_view appID) const {
    const auto found = lastActive_.find(appID);
    return found == lastActive_.end() ? std::nullopt : std::optional(found->second);
}

std::uint64_t Optimizer::footprint(std::string_view appID) const {
    const auto found = footprints_.find(appID);
    return found == footprints_.end() ? 0 : found->second;
}

double Optimizer::cpuShare(std::string_view appID) const {
    const auto found = cpuShares_.find(appID);
    return found == cpuShares_.end() ? 0 : found->second;
}

void Optimizer::log(ResourceEventKind kind, std::optional<AppReference> app, std::string_view detail,
                    std::optional<std::uint64_t> bytes) {
    if (!parts_.log)
        return;
    ResourceEvent event{.at = host_.clock.now(), .kind = kind, .detail = std::string(detail), .bytes = bytes};
    if (app) {
        event.appID = std::move(app->key);
        event.appName = std::move(app->name);
    }
    parts_.log(event);
}

} // namespace kestrio
