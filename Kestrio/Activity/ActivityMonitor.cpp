#include "Kestrio/Activity/ActivityMonitor.h"

#include "Kestrio/Activity/LiveRows.h"
#include "Kestrio/Base/Text.h"

#include <algorithm>

namespace kestrio {
namespace {

/// With one of these in front the machine is at its lock screen or in the screen saver, whatever the notices said.
const std::set<std::string> builtInLockScreenApps{"com.apple.loginwindow", "com.apple.ScreenSaver.Engine"};

/// These take the front for a moment, to ask for a permission or a password, and must not break the session under them.
const std::set<std::string> builtInTransientSystemUI{
    "com.apple.accessibility.universalAccessAuthWarn", "com.apple.UserNotificationCenter",
    "com.apple.coreservices.uiagent", "com.apple.SecurityAgent", "com.apple.tccd"};

/// Input so fresh proves that somebody is there.
constexpr Seconds freshInput{3.0};

/// The clocks drift apart by microseconds; a difference like this is a machine that slept or a clock that was set.
constexpr Seconds leastJump{1.0};

constexpr std::int64_t defaultIdleMinutes = 3;

std::set<std::string> united(std::set<std::string> a, const std::set<std::string>& b) {
    a.insert(b.begin(), b.end());
    return a;
}

/// What a notice says about being away: which reason, and whether it now holds.
struct ReasonChange {
    const char* reason;
    bool holds;
};

ReasonChange reasonChange(SessionEvent event) {
    switch (event) {
    case SessionEvent::willSleep: return {"sleep", true};
    case SessionEvent::didWake: return {"sleep", false};
    case SessionEvent::displaysDidSleep: return {"display", true};
    case SessionEvent::displaysDidWake: return {"display", false};
    case SessionEvent::sessionDidResignActive: return {"session", true};
    case SessionEvent::sessionDidBecomeActive: return {"session", false};
    case SessionEvent::screenIsLocked: return {"lock", true};
    case SessionEvent::screenIsUnlocked: return {"lock", false};
    }
    return {"", false};
}

std::optional<std::string> identifier(const std::optional<RunningApplication>& front) {
    if (!front)
        return std::nullopt;
    if (front->bundleIdentifier)
        return front->bundleIdentifier;
    return front->localizedName.value_or("unknown");
}

} // namespace

ActivityMonitor::ActivityMonitor(Host host, SessionStore& store, const HostApplications& applications,
                                 Collaborators collaborators)
    : host_(host),
      collaborators_(std::move(collaborators)),
      lockScreenApps_(united(builtInLockScreenApps, applications.lockScreens)),
      transientSystemUI_(united(builtInTransientSystemUI, applications.transientPrompts)),
      writer_(store),
      alongside_(writer_),
      self_(std::make_shared<ActivityMonitor*>(this)) {}

ActivityMonitor::~ActivityMonitor() {
    host_.queue.sync([this] {
        timer_.cancel();
        observerTokens_.clear();
        self_.reset();
    });
}

void ActivityMonitor::start() {
    host_.queue.async([weak = std::weak_ptr(self_)] {
        const auto self = weak.lock();
        if (!self || (*self)->timer_.isActive())
            return;
        auto& monitor = **self;
        if (monitor.observerTokens_.empty())
            monitor.observeHost();
        monitor.timer_ = monitor.host_.queue.every({.interval = sampleInterval, .first = firstSampleAfter}, [weak] {
            if (const auto held = weak.lock())
                (*held)->tick();
        });
    });
}

void ActivityMonitor::observeHost() {
    const auto weak = std::weak_ptr(self_);
    const auto tickSoon = [weak, &queue = host_.queue] {
        queue.async([weak] {
            if (const auto self = weak.lock())
                (*self)->tick();
        });
    };
    observerTokens_.push_back(host_.workspace.observe([tickSoon](WorkspaceNotice notice) {
        if (notice == WorkspaceNotice::activated)
            tickSoon(); // a switch takes effect at once and not at the next tick of the timer
    }));
    observerTokens_.push_back(collaborators_.observeTabs(tickSoon));
    observerTokens_.push_back(host_.sessionEvents.observe([weak, &queue = host_.queue](const SessionNotice& notice) {
        queue.async([weak, notice] {
            if (const auto self = weak.lock())
                (*self)->hear(notice);
        });
    }));
}

void ActivityMonitor::hear(const SessionNotice& notice) {
    const auto [reason, holds] = reasonChange(notice.event);
    if (holds)
        awayReasons_[reason] = host_.clock.uptime();
    else
        awayReasons_.erase(reason);
    tick();
}

void ActivityMonitor::stop() {
    host_.queue.sync([this] {
        timer_.cancel();
        const auto now = presentMoment();
        writer_.retry();
        closeCurrent(now);
        closeAllAlongside(now);
        writer_.reportLoss();
        publish(TrackingState::paused);
    });
}

void ActivityMonitor::pause(std::optional<Date> until) {
    host_.queue.async([weak = std::weak_ptr(self_), until] {
        if (const auto self = weak.lock()) {
            (*self)->pausedUntilValue_ = until;
            ++(*self)->pausesTaken_;
            (*self)->tick();
        }
    });
}

void ActivityMonitor::beginAnew(std::function<void()> work) {
    host_.queue.async([weak = std::weak_ptr(self_), work = std::move(work)] {
        const auto self = weak.lock();
        if (!self)
            return;
        auto& monitor = **self;
        const auto now = monitor.presentMoment();
        monitor.closeCurrent(now);
        monitor.closeAllAlongside(now);
        monitor.writer_.forget();
        work();
        monitor.tick();
    });
}

std::vector<ActivitySession> ActivityMonitor::sessions(DateInterval interval) {
    return host_.queue.sync([&] {
        std::int64_t nextID = -1;
        auto found = writer_.sessions(interval, nextID);
        if (current_)
            joinLive(found, *current_, interval, nextID);
        for (const auto& session : alongside_.open())
            if (session.lastSeen - session.start >= AlongsideSessions::minimum)
                joinLive(found, session, interval, nextID);
        return found;
    });
}

ActivityMonitor::Published ActivityMonitor::published() const {
    const std::lock_guard guard(lock_);
    return published_;
}

void ActivityMonitor::tick() {
    const auto now = presentMoment();
    writer_.retryIfDue(now);
    publish(sample(now));
}

/// The present date, which for the monitor never goes backwards by less than a jump. Around a jump of the wall clock,
/// because the machine slept unannounced or somebody set it, time cannot be told: what was open ends where it was last
/// confirmed, and everything that waits for a moment of the old clock starts over.
Date ActivityMonitor::presentMoment() {
    const Moment moment{host_.clock.now(), host_.clock.uptime()};
    const auto last = std::exchange(lastMoment_, moment);
    if (!last)
        return moment.date;
    const auto jump = (moment.date - last->date) - (moment.uptime - last->uptime);
    if (jump < leastJump && jump > -leastJump) {
        lastMoment_->date = std::max(moment.date, last->date);
        return lastMoment_->date;
    }
    if (current_)
        closeCurrent(current_->lastSeen);
    alongside_.restart();
    appsWatchedAlongside_.clear();
    lastFlush_ = distantPast;
    lastPassiveEngagement_ = distantPast;
    return moment.date;
}

TrackingState ActivityMonitor::sample(Date now) {
    if (pausedUntilValue_ && *pausedUntilValue_ > now) {
        closeAllAlongside(now);
        closeCurrent(now);
        return TrackingState::paused;
    }
    pausedUntilValue_.reset();

    const auto idle = host_.inputIdle.sinceLastInput();
    const auto front = host_.workspace.frontmostApplication();
    const auto id = identifier(front);
    recoverLostWake(idle, id);
    if (!awayReasons_.empty())
        return beAway(now);
    if (!id) {
        refreshAlongside(now, front, true);
        closeCurrent(now);
        return TrackingState::idle;
    }
    if (lockScreenApps_.contains(*id)) {
        refreshAlongside(now, std::nullopt, false);
        closeCurrent(now);
        return TrackingState::away;
    }
    refreshAlongside(now, front, true);
    if (idle && *idle >= idleLimit()) {
        if (!isWatchingInFront(*id))
            return endIdle(now, *idle);
        lastPassiveEngagement_ = now;
    }
    if (transientSystemUI_.contains(*id) && current_) {
        current_->lastSeen = now;
        return TrackingState::tracking;
    }
    follow(makeSample(*front, *id), now);
    return TrackingState::tracking;
}

/// Fresh input with an ordinary application in front proves that the machine is awake, though no notice said so. Input
/// from before the announcement proves nothing: it may be the very click that sent the machine to sleep.
void ActivityMonitor::recoverLostWake(std::optional<Seconds> idle, const std::optional<std::string>& id) {
    if (awayReasons_.empty() || !idle || *idle >= freshInput || !id || lockScreenApps_.contains(*id))
        return;
    const auto input = host_.clock.uptime() - *idle;
    for (const char* reason : {"sleep", "display"})
        if (const auto found = awayReasons_.find(reason); found != awayReasons_.end() && input > found->second)
            awayReasons_.erase(found);
}

TrackingState ActivityMonitor::beAway(Date now) {
    const bool onlyDark = !awayReasons_.contains("sleep") && !awayReasons_.contains("session");
    if (onlyDark) // sound that goes on behind a locked or dark screen stays recorded
        refreshAlongside(now, std::nullopt, false);
    else
        closeAllAlongside(now);
    closeCurrent(now);
    return TrackingState::away;
}

/// The session ends where the attention ended, so that the idle minutes are never counted.
TrackingState ActivityMonitor::endIdle(Date now, Seconds idle) {
    closeCurrent(std::min(now, std::max(now - idle, lastPassiveEngagement_)));
    return TrackingState::idle;
}

/// Watching a video in front is being there, without input. One that is recorded alongside does not count, so that the
/// same minutes are not kept open twice.
bool ActivityMonitor::isWatchingInFront(const std::string& id) const {
    return appsPlayingVideo_.contains(id) && !appsWatchedAlongside_.contains(id);
}

void ActivityMonitor::follow(const ActivitySample& sample, Date now) {
    if (!current_ || current_->sample != sample) {
        closeCurrent(now);
        current_ = LiveActivity{sample, now, now, std::nullopt};
        return;
    }
    current_->lastSeen = now;
    if (now - lastFlush_ >= flushInterval)
        flush(now);
}

void ActivityMonitor::refreshAlongside(Date now, const std::optional<RunningApplication>& frontmost,
                                       bool allowWatching) {
    if (!alongside_.takeCheck(now))
        return;
    auto evidence = collaborators_.alongside(frontmost, allowWatching);
    appsPlayingVideo_ = std::move(evidence.appsPlayingVideo);
    appsWatchedAlongside_.clear();
    for (const auto& sample : evidence.detected)
        if (sample.kind == SessionKind::watching)
            appsWatchedAlongside_.insert(sample.bundleID);
    alongside_.update(evidence.detected, now);
}

void ActivityMonitor::closeAllAlongside(Date at) {
    alongside_.closeAll(at);
    appsWatchedAlongside_.clear();
}

Seconds ActivityMonitor::idleLimit() const {
    const auto stored = host_.settings.value("idleMinutes");
    const auto minutes = stored ? host_.settings.integer("idleMinutes") : defaultIdleMinutes;
    return Seconds(60.0 * static_cast<double>(std::max<std::int64_t>(minutes, 1)));
}

ActivitySample ActivityMonitor::makeSample(const RunningApplication& front, const std::string& id) const {
    ActivitySample made;
    made.bundleID = id;
    made.appName = text::withoutInvisibleMarks(front.localizedName.value_or(id));
    std::string rawTitle;
    if (const auto tab = collaborators_.activeTab(id)) {
        if (tab->isPrivate) {
            rawTitle = "Private Browsing"; // nothing of the page is kept
        } else {
            rawTitle = tab->title;
            made.url = text::prefix(tab->url, longestRecordedURL);
        }
    } else {
        if (front.processIdentifier)
            rawTitle = host_.windowTitles.focusedWindowTitle(*front.processIdentifier).value_or("");
        if (collaborators_.isBrowser(id))
            rawTitle = collaborators_.stripBrowserName(rawTitle, made.appName);
    }
    made.title = collaborators_.removingAppName(collaborators_.cleanTitle(rawTitle), made.appName);
    if (made.url)
        made.domain = collaborators_.domain(*made.url);
    made.project = collaborators_.project(id, made.appName, made.title, made.url);
    return made;
}

void ActivityMonitor::closeCurrent(Date at) {
    if (const auto session = std::exchange(current_, std::nullopt))
        writer_.finish(*session, at, shortestRow);
}

void ActivityMonitor::flush(Date now) {
    writer_.save(*current_);
    lastFlush_ = now;
}

void ActivityMonitor::publish(TrackingState state) {
    Published next{current_,          alongside_.open(), state,
                   pausedUntilValue_, writer_.waiting(), host_.windowTitles.isGranted(),
                   pausesTaken_};
    std::stable_sort(next.alongside.begin(), next.alongside.end(), [](const LiveActivity& a, const LiveActivity& b) {
        return a.sample.kind != b.sample.kind ? rawValue(a.sample.kind) < rawValue(b.sample.kind) : a.start < b.start;
    });
    const std::lock_guard guard(lock_);
    std::swap(published_, next);
}

} // namespace kestrio
