// The heart of the program: wakes every two seconds, asks the system what the person is on, and turns the answers into
// sessions. It holds at most one open main session and any number of alongside sessions, and decides whether the person
// counts as tracking, idle, away or paused. A crash costs at most the last few seconds of one session.
//
// All working state belongs to the queue "Kestrio.monitor". Others read `published`, which is guarded by a lock, and
// sessions through `sessions`. Stores may block the queue; a tick that comes late is simply late.
#pragma once

#include "Kestrio/Activity/AlongsideEvidence.h"
#include "Kestrio/Activity/AlongsideSessions.h"
#include "Kestrio/Activity/BrowserTab.h"
#include "Kestrio/Activity/SessionWriter.h"
#include "Kestrio/Base/Clock.h"
#include "Kestrio/Base/Queue.h"
#include "Kestrio/Platform/InputIdle.h"
#include "Kestrio/Platform/KeyValueStore.h"
#include "Kestrio/Platform/SessionEvents.h"
#include "Kestrio/Platform/WindowTitles.h"
#include "Kestrio/Platform/Workspace.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace kestrio {

class ActivityMonitor {
public:
    static constexpr Seconds sampleInterval{2.0};
    static constexpr Seconds firstSampleAfter{0.5};
    /// Longest time between writes of an open session.
    static constexpr Seconds flushInterval{15.0};
    /// A main session that was over sooner is not worth a row.
    static constexpr Seconds shortestRow{1.0};

    /// The host's side. All must outlive the monitor, and the readers must belong to `queue`.
    struct Host {
        const Clock& clock;
        Queue& queue;
        Workspace& workspace;
        WindowTitles& windowTitles;
        InputIdle& inputIdle;
        SessionEvents& sessionEvents;
        const KeyValueStore& settings;
    };

    /// Bundle identifiers that this host adds to the built-in sets.
    struct HostApplications {
        std::set<std::string> lockScreens;
        std::set<std::string> transientPrompts;
    };

    /// What other concerns contribute to a sample. Each runs on the queue and may answer nothing; the defaults do.
    struct Collaborators {
        std::function<std::optional<BrowserTab>(const std::string& bundleID)> activeTab = [](const auto&) {
            return std::nullopt;
        };
        /// Calls its receiver on the queue when `activeTab` would now answer otherwise than it did a moment ago, though
        /// nothing else changed. The monitor then looks at once.
        std::function<Subscription(std::function<void()> receiver)> observeTabs = [](auto) { return Subscription(); };
        std::function<bool(const std::string& bundleID)> isBrowser = [](const auto&) { return false; };
        std::function<std::string(const std::string& title, const std::string& appName)> stripBrowserName =
            [](const auto& title, const auto&) { return title; };
        std::function<std::string(const std::string& title)> cleanTitle = [](const auto& title) { return title; };
        std::function<std::string(const std::string& title, const std::string& appName)> removingAppName =
            [](const auto& title, const auto&) { return title; };
        std::function<std::optional<std::string>(const std::string& url)> domain = [](const auto&) {
            return std::nullopt;
        };
        std::function<std::optional<std::string>(const std::string& bundleID, const std::string& appName,
                                                 const std::string& title, const std::optional<std::string>& url)>
            project = [](const auto&, const auto&, const auto&, const auto&) { return std::nullopt; };
        /// With `allowWatching` false only sound counts: nobody can be watching a locked or dark screen.
        std::function<AlongsideEvidence(const std::optional<RunningApplication>& frontmost, bool allowWatching)>
            alongside = [](const auto&, bool) { return AlongsideEvidence{}; };
    };

    struct Published {
        std::optional<LiveActivity> live;
        std::vector<LiveActivity> alongside; // all watching before all listening, the oldest first
        TrackingState state = TrackingState::tracking;
        std::optional<Date> pausedUntil;
        std::size_t unsaved = 0;         // closed sessions that wait for the store to take them
        bool windowTitlesGranted = true; // nobody misses them before the first look
        std::uint64_t pausesTaken = 0;   // how many calls of `pause` this already reckons with

        friend bool operator==(const Published&, const Published&) = default;
    };

    ActivityMonitor(Host host, SessionStore& store, const HostApplications& applications, Collaborators collaborators);
    ~ActivityMonitor();
    ActivityMonitor(const ActivityMonitor&) = delete;
    ActivityMonitor& operator=(const ActivityMonitor&) = delete;

    /// Begins to observe and to tick, the first time half a second later. Does not wait; a second call does nothing.
    void start();

    /// Ends the ticking, closes every session now and publishes `paused`. Returns when the last row is written. Must
    /// not be called from the queue.
    void stop();

    /// Pauses until a date, which closes the session at once; an absent one resumes. Does not wait.
    void pause(std::optional<Date> until);

    /// Closes every session, runs the work, which may delete all that is stored, and begins anew. What the store could
    /// not take so far is forgotten. Does not wait.
    void beginAnew(std::function<void()> work);

    /// The stored sessions that reach into the interval, joined with the open ones up to their last tick. Open ones
    /// without a row have negative identifiers and follow the stored ones, out of the order of starts. Waits; must not
    /// be called from the queue.
    std::vector<ActivitySession> sessions(DateInterval interval);

    /// The outcome of the latest tick. Any thread.
    Published published() const;

private:
    void observeHost();
    void hear(const SessionNotice& notice);
    void tick();
    Date presentMoment();

    /// Everything a tick does but publishing; its result is what to publish.
    TrackingState sample(Date now);
    TrackingState beAway(Date now);
    TrackingState endIdle(Date now, Seconds idle);
    void recoverLostWake(std::optional<Seconds> idle, const std::optional<std::string>& id);
    bool isWatchingInFront(const std::string& id) const;
    void follow(const ActivitySample& sample, Date now);
    void refreshAlongside(Date now, const std::optional<RunningApplication>& frontmost, bool allowWatching);
    void closeAllAlongside(Date at);

    Seconds idleLimit() const;
    ActivitySample makeSample(const RunningApplication& front, const std::string& id) const;
    void closeCurrent(Date at);
    void flush(Date now);
    void publish(TrackingState state);

    const Host host_;
    const Collaborators collaborators_;
    const std::set<std::string> lockScreenApps_;
    const std::set<std::string> transientSystemUI_;

    // On the queue.
    SessionWriter writer_;
    AlongsideSessions alongside_;
    Subscription timer_;
    std::vector<Subscription> observerTokens_;
    std::optional<LiveActivity> current_;
    Date lastFlush_ = distantPast;
    Date lastPassiveEngagement_ = distantPast;
    std::map<std::string, Uptime> awayReasons_; // each with the moment at which it was last announced
    std::optional<Date> pausedUntilValue_;
    std::uint64_t pausesTaken_ = 0;
    std::set<std::string> appsPlayingVideo_;
    std::set<std::string> appsWatchedAlongside_;
    struct Moment {
        Date date;
        Uptime uptime;
    };
    std::optional<Moment> lastMoment_;

    std::shared_ptr<ActivityMonitor*> self_; // handlers hold it weakly

    mutable std::mutex lock_; // guards `published_` alone, and only for the copy
    Published published_;
};

} // namespace kestrio
