// The one object that touches other applications: freezes those that the person allowed to and does not use, moves busy
// ones in the background to the efficiency cores, and gives each back the moment it is wanted.
//
// Every five seconds it looks at the applications with windows, lets `tindra::decide` say what is to be done to each
// and does that. All of it belongs to one queue, and every function is called in that queue's work. Nothing is
// touched while it is switched off, nor is an application frozen that nobody put in a tier other than "Always on".
//
// What holds at all times: every process that is stopped or slowed stands in `managed`, and what leaves `managed` has
// been given back. Dropping the optimizer gives everything back.
#pragma once

#include "Kestrio/Base/Calendar.h"
#include "Kestrio/Base/Clock.h"
#include "Kestrio/Base/Observable.h"
#include "Kestrio/Base/Queue.h"
#include "Kestrio/Optimizer/ManagedApp.h"
#include "Kestrio/Optimizer/PlannedApp.h"
#include "Kestrio/Optimizer/ProcessHolding.h"
#include "Kestrio/Optimizer/Protections.h"
#include "Kestrio/Optimizer/SampledApps.h"
#include "Kestrio/Platform/KeyValueStore.h"
#include "Kestrio/Platform/Workspace.h"
#include "Kestrio/Resources/ResourceRecords.h"

#include <functional>
#include <memory>

namespace kestrio {

class Optimizer {
public:
    static constexpr Seconds tickInterval{5};
    static constexpr Seconds tickTolerance{1};
    static constexpr Seconds watchInterval{1};
    static constexpr Seconds watchTolerance{0.2};

    static constexpr auto enabledKey = "optimizerEnabled";
    static constexpr auto rulesKey = "optimizerRules";
    static constexpr auto tuningKey = "optimizerTuning";

    /// All must outlive the optimizer. The workspace belongs to the same queue.
    struct Host {
        const Clock& clock;
        Queue& queue;
        const Calendar& calendar;
        Workspace& workspace;
        KeyValueStore& settings;
        ProcessHolding& processes;
    };

    /// Whether an application may be stopped, or stay so.
    struct StopQuestion {
        const RunningApplication& application;
        const std::vector<ProcessKey>& processes; // what would be stopped or is, its main process first
        bool isStopped = false;
    };

    /// The rest of the program, as far as the optimizer needs it. A function left empty answers nothing. None of them
    /// may call back into the optimizer.
    struct Collaborators {
        std::string ownBundleID;
        AppIDs hostEssentials = {}; // added to those that are built in

        /// When the main process of an application started; absent where that cannot be told.
        std::function<std::optional<Date>(pid_t)> launchDate = {};
        /// Asked once per pass.
        std::function<MediaUse()> mediaUse = {};
        /// Why this host must not have the application stopped now, as the rest of the sentence "Resumed: ", with its
        /// full stop; absent when it may be. Asked before every stop, and at each pass of what is frozen, which is
        /// then given back.
        std::function<std::optional<std::string>(const StopQuestion&)> refusal = {};
        /// Takes what the log tells of the optimizer. Does not wait.
        std::function<void(const ResourceEvent&)> log = {};
        /// Given each sample, and the application in front, while the optimizer is on.
        std::function<void(const SampledApps&, const std::optional<std::string>& front)> checkAlerts = {};
    };

    /// Reads the settings and touches nothing yet.
    Optimizer(Host host, Collaborators collaborators);
    ~Optimizer();
    Optimizer(const Optimizer&) = delete;
    Optimizer& operator=(const Optimizer&) = delete;

    /// Gives back what earlier runs left held, and begins if switched on. Only the first call does anything.
    /// `recovered` processes were given back before, for the log.
    void start(std::size_t recovered = 0);

    /// Gives everything back and begins nothing any more by itself: the program ends. The setting stays.
    void finish();

    /// Reads the settings again: somebody else changed them.
    void settingsChanged();

    void setEnabled(bool enabled);
    const Observable<bool>& isEnabled() const { return isEnabled_; }

    /// What is under control, by bundle identifier.
    const Observable<ManagedApps>& managed() const { return managed_; }

    const Observable<tindra::OptimizerRules>& rules() const { return rules_; }
    /// Takes effect at the next tick.
    void setRules(tindra::OptimizerRules rules);

    const Observable<tindra::OptimizerTuning>& tuning() const { return tuning_; }
    void setTuning(const tindra::OptimizerTuning& tuning);

    /// One pass over the applications. Does nothing while switched off.
    void tick();

    /// Gives everything back: at switching off, at the end of the program or the session, or because the person asks
    /// for it. While switched on, the rules go on from there.
    void releaseAll();

    /// Takes what the applications hold and use, at each sample that looked at them.
    void didSample(const SampledApps& sample);

    /// Whether the application is never frozen or slowed by a rule, nor frozen by hand.
    bool isLocked(std::string_view appID) const { return essentials_.contains(appID); }

    /// What a pass would do now, were it switched on, with each application in the workspace's order. Does nothing.
    std::vector<PlannedApp> plan();

    /// Why the host would not have the application stopped now, as in `Collaborators::refusal`.
    std::optional<std::string> refusal(const RunningApplication& application);

    // The person's own actions. What cannot be done is left undone, in silence.

    /// Stays frozen whatever the rules say, until it is opened, resumed or everything is given back.
    void freezeNow(const RunningApplication& application);
    void moveToEfficiencyCores(const RunningApplication& application);
    void resume(const std::string& appID);
    void quit(const RunningApplication& application);

    /// An absent tier means that the person says nothing about the application any more.
    void setTier(std::optional<tindra::AppTier> tier, const std::string& appID);
    void setOverride(tindra::AppTier tier, const std::string& appID, const std::string& name, double hours);
    void removeOverride(const std::string& appID);

    // For display and for the log.

    std::size_t frozenCount() const; // those in a wake are not among them
    std::size_t efficientCount() const;
    std::uint64_t frozenMemory() const; // bytes
    /// The codes of the log by application: 1 slowed, 2 frozen.
    std::map<std::string, std::int64_t> logStates() const;
    /// When the person last had the application in front; absent if that was never seen.
    std::optional<Date> lastActive(std::string_view appID) const;

private:
    /// An application that the optimizer may look at.
    struct Candidate {
        RunningApplication application;
        std::string id;
        std::string name;
        pid_t pid = 0;
        std::optional<Date> launched;
    };
    /// What is read once for all applications of a pass.
    struct Pass {
        Date now;
        tindra::LocalTime localTime;
        std::optional<std::string> front;
        MediaUse media;
    };
    struct CarryOut;

    void switchTo(bool enabled);
    void begin();
    void end();
    void listen();
    void heard(WorkspaceNotice notice);
    void forgetEnded();
    void watchFront();
    void activated(const RunningApplication& application);

    std::optional<RunningApplication> frontmost();
    std::optional<std::string> frontmostID();
    std::vector<Candidate> candidates() const;
    std::optional<Candidate> candidate(const RunningApplication& application) const;
    Pass newPass(Date now);
    void visit(const Candidate& candidate, const Pass& pass);
    PlannedApp planned(const Candidate& candidate, const ManagedApp& app, const Pass& pass) const;
    Seconds idle(const Candidate& candidate, Date now) const;

    ManagedApp entry(const Candidate& candidate);
    ManagedApp newEntry(const Candidate& candidate) const;
    void store(ManagedApp app);
    void slowNewHelpers();
    void dropOthers(const AppIDs& present);
    void publish();

    bool isInFront(const Candidate& candidate);
    std::optional<std::vector<ProcessKey>> stoppable(const Candidate& candidate, const ManagedApp& app);
    bool stop(ManagedApp& app, const std::vector<ProcessKey>& keys);
    std::optional<std::string> refusal(const StopQuestion& question) const;
    void slow(ManagedApp& app, std::vector<ProcessKey> keys);
    bool slowProcesses(ManagedApp& app);
    void resumeProcesses(ManagedApp& app);
    void restoreProcesses(ManagedApp& app);
    void giveBack(ManagedApp& app);
    void giveBackWhereRefused(const Candidate& candidate, ManagedApp& app);

    void log(ResourceEventKind kind, std::optional<AppReference> app, std::string_view detail,
             std::optional<std::uint64_t> bytes = {});
    std::uint64_t footprint(std::string_view appID) const;
    double cpuShare(std::string_view appID) const;

    const Host host_;
    const Collaborators parts_;
    const AppIDs essentials_;

    Observable<bool> isEnabled_;
    Observable<tindra::OptimizerRules> rules_;
    Observable<tindra::OptimizerTuning> tuning_;
    ManagedApps held_; // what `managed_` becomes when an action is over
    Observable<ManagedApps> managed_;

    std::map<std::string, Date, std::less<>> lastActive_;
    std::map<std::string, std::uint64_t, std::less<>> footprints_; // bytes, of the latest sample
    std::map<std::string, double, std::less<>> cpuShares_;         // cores, of the latest sample that had them
    std::optional<std::string> front_;                             // as last seen
    bool hasSeenFront_ = false; // a host that never tells who is in front gets nothing frozen

    bool started_ = false;
    Subscription notices_;
    Subscription timer_;
    Subscription watchTimer_;          // runs while anything is held
    std::shared_ptr<Optimizer*> self_; // work on the way holds it weakly
};

} // namespace kestrio
