#include "Kestrio/Platform/Testing/ScriptedLoginItem.h"
#include "Kestrio/Shell/AppModel.h"
#include "Tests/Activity/MonitorBench.h"
#include "Tests/ExpectedLog.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

constexpr auto configured = "didConfigureLaunchAtLogin";

/// The model over a real monitor, in virtual time.
struct AppModelTest : testing::Test, MonitorBench {
    VirtualQueue main{time, "main"};
    ScriptedLoginItem loginItem;
    std::unique_ptr<AppModel> model;

    AppModelTest() {
        make();
        make(false);
    }
    using MonitorBench::make;
    void make(bool isInstalled) {
        model = std::make_unique<AppModel>(AppModel::Parts{time, main, *monitor, settings, loginItem, isInstalled});
    }

    /// The model, started, with an application in front; the first poll is over.
    void run() {
        show("org.example.editor", "Draft");
        model->start();
        pass(2.6);
    }
};

/// What an observable told.
template <class Value>
struct Told {
    explicit Told(const Observable<Value>& observable)
        : token(observable.observe([this](const Value& value) { values.push_back(value); })) {}
    std::vector<Value> values;
    Subscription token;
};

TEST_F(AppModelTest, nothingRunsBeforeTheStart) {
    pass(60);
    EXPECT_EQ(workspace.observations, 0);
    EXPECT_EQ(loginItem.changesAskedFor(), 0);
    EXPECT_EQ(model->trackingState().value(), TrackingState::tracking);
    EXPECT_EQ(model->pausedUntil().value(), std::nullopt);
    EXPECT_FALSE(model->isAccessibilityGranted().value());
}

TEST_F(AppModelTest, onlyTheFirstStartDoesAnything) {
    make(true);
    for (int i = 0; i < 3; ++i) {
        model->start();
        pass(1);
    }
    EXPECT_EQ(workspace.observations, 1);
    EXPECT_EQ(loginItem.changesAskedFor(), 1);
}

TEST_F(AppModelTest, theMonitorRunsBeforeTheLoginItemIsSetUp) {
    make(true);
    bool wasObserved = false;
    const auto token = settings.observe([&](const std::string&) {
        time.runPending();
        wasObserved = workspace.isObserved();
    });
    model->start();
    EXPECT_TRUE(settings.boolean(configured));
    EXPECT_TRUE(wasObserved);
}

TEST_F(AppModelTest, thePollTellsOnlyWhatChanged) {
    input.idle = Seconds(0);
    Told state(model->trackingState());
    Told until(model->pausedUntil());
    Told granted(model->isAccessibilityGranted());
    Told unsaved(model->unsaved());
    run();
    pass(600);
    EXPECT_TRUE(state.values.empty());
    EXPECT_TRUE(until.values.empty());
    EXPECT_TRUE(unsaved.values.empty());
    EXPECT_EQ(granted.values, std::vector{true});
    titles.granted = false;
    happen(SessionEvent::screenIsLocked);
    EXPECT_TRUE(state.values.empty()) << "told before the poll";
    pass(AppModel::pollInterval.count() + AppModel::pollTolerance.count());
    EXPECT_EQ(state.values, std::vector{TrackingState::away});
    pass(4);
    EXPECT_EQ(granted.values, (std::vector{true, false}));
    happen(SessionEvent::screenIsUnlocked);
    pass(6);
    EXPECT_EQ(state.values, (std::vector{TrackingState::away, TrackingState::tracking}));
}

TEST_F(AppModelTest, anObserverMayPollWhileItIsBeingTold) {
    run();
    const Told state(model->trackingState());
    const auto nosy = model->trackingState().observe([this](TrackingState) { model->pollStatus(); });
    happen(SessionEvent::screenIsLocked);
    pass(4);
    EXPECT_EQ(state.values, (std::vector{TrackingState::away}));
    EXPECT_EQ(model->isAccessibilityGranted().value(), true);
}

TEST_F(AppModelTest, aPauseAnswersAtOnce) {
    run();
    const auto end = time.now() + Seconds(1800);
    model->pause(Seconds(1800));
    EXPECT_EQ(model->trackingState().value(), TrackingState::paused);
    EXPECT_EQ(model->pausedUntil().value(), end);
    pass(10);
    EXPECT_EQ(model->trackingState().value(), TrackingState::paused);
    EXPECT_EQ(model->pausedUntil().value(), end);
    EXPECT_EQ(monitor->published().pausedUntil, end);
    pass(1800);
    EXPECT_EQ(model->trackingState().value(), TrackingState::tracking);
    EXPECT_EQ(model->pausedUntil().value(), std::nullopt);
}

TEST_F(AppModelTest, aPauseWithoutALengthLastsUntilSomebodyResumes) {
    run();
    model->pause(std::nullopt);
    EXPECT_EQ(model->pausedUntil().value(), distantFuture);
    pass(1'000'000);
    EXPECT_EQ(model->trackingState().value(), TrackingState::paused);
    EXPECT_EQ(model->pausedUntil().value(), distantFuture);
}

TEST_F(AppModelTest, aPollBeforeTheMonitorHeardOfThePauseDoesNotUndoIt) {
    run();
    Told state(model->trackingState());
    Told until(model->pausedUntil());
    model->pause(Seconds(60));
    model->pollStatus(); // the monitor's queue has not come to it yet
    EXPECT_EQ(model->trackingState().value(), TrackingState::paused);
    time.runPending();
    model->pollStatus();
    EXPECT_EQ(model->trackingState().value(), TrackingState::paused);
    model->resume();
    model->pollStatus();
    EXPECT_EQ(model->pausedUntil().value(), std::nullopt);
    time.runPending();
    model->pollStatus();
    EXPECT_EQ(state.values, (std::vector{TrackingState::paused, TrackingState::tracking}));
    EXPECT_EQ(until.values.size(), 2U);
}

TEST_F(AppModelTest, afterResumingTheStateIsTheMonitorsToSay) {
    run();
    model->pause(std::nullopt);
    pass(10);
    happen(SessionEvent::screenIsLocked);
    model->resume();
    EXPECT_EQ(model->pausedUntil().value(), std::nullopt);
    EXPECT_EQ(model->trackingState().value(), TrackingState::paused);
    pass(3);
    EXPECT_EQ(model->trackingState().value(), TrackingState::away);
}

TEST_F(AppModelTest, openSessionsAreTakenOverOnlyWhileSomebodyLooks) {
    run();
    pass(10);
    EXPECT_EQ(model->live().value(), std::nullopt);
    {
        const auto look = model->showLive();
        ASSERT_TRUE(model->live().value()) << "not at once";
        EXPECT_EQ(model->live().value()->sample.title, "Draft");
        auto other = model->showLive();
        other.cancel();
        show("org.example.editor", "Letter");
        pass(5);
        EXPECT_EQ(model->live().value()->sample.title, "Letter") << "one of two still looks";
    }
    const auto last = model->live().value();
    show("org.example.editor", "Diary");
    pass(10);
    EXPECT_EQ(model->live().value(), last) << "left as it was";
    const auto look = model->showLive();
    EXPECT_EQ(model->live().value()->sample.title, "Diary");
}

TEST_F(AppModelTest, whatPlaysAlongsideIsTakenOverToo) {
    collaborators.alongside = [](const auto&, bool) {
        return AlongsideEvidence{{{"org.example.player", "Player", "Song", {}, {}, {}, SessionKind::listening}}, {}};
    };
    make();
    make(false);
    run();
    const auto look = model->showLive();
    pass(10);
    ASSERT_EQ(model->liveAlongside().value().size(), 1U);
    EXPECT_EQ(model->liveAlongside().value().front().sample.title, "Song");
}

TEST_F(AppModelTest, whoLooksMayOutliveTheModel) {
    const auto look = model->showLive();
    model.reset();
}

TEST_F(AppModelTest, anInstalledCopyRegistersOnceEver) {
    make(true);
    model->start();
    EXPECT_TRUE(loginItem.isEnabled());
    EXPECT_TRUE(settings.boolean(configured));
    ASSERT_FALSE(loginItem.disable()); // the person's later choice
    make(true);
    model->start();
    EXPECT_FALSE(loginItem.isEnabled());
}

TEST_F(AppModelTest, aCopyOnTrialTakesNoNote) {
    model->start();
    pass(10);
    EXPECT_EQ(loginItem.changesAskedFor(), 0);
    EXPECT_EQ(settings.value(configured), std::nullopt);
    make(true); // installed later
    model->start();
    EXPECT_TRUE(loginItem.isEnabled());
}

TEST_F(AppModelTest, aLoginItemThatFailsIsALineAndNothingElse) {
    make(true);
    loginItem.failWith("the disk is full");
    const ExpectedLog log;
    run();
    EXPECT_EQ(log.lines(), std::vector<std::string>{"Kestrio: launch at login change failed: the disk is full"});
    EXPECT_TRUE(settings.boolean(configured));
    EXPECT_EQ(model->trackingState().value(), TrackingState::tracking);
    EXPECT_TRUE(monitor->published().live);
    pass(100);
    EXPECT_EQ(loginItem.changesAskedFor(), 1);
}

TEST_F(AppModelTest, theLoginItemFollowsThePersonsChoice) {
    model->setLaunchAtLogin(true);
    EXPECT_TRUE(loginItem.isEnabled());
    model->setLaunchAtLogin(false);
    EXPECT_FALSE(loginItem.isEnabled());
    loginItem.failWith("no");
    const ExpectedLog log;
    model->setLaunchAtLogin(true);
    EXPECT_EQ(log.lines(), std::vector<std::string>{"Kestrio: launch at login change failed: no"});
    EXPECT_FALSE(loginItem.isEnabled());
}

TEST_F(AppModelTest, browsersAreReadOnlyWhereSomethingReadsThem) {
    const BrowserApp browser{"org.example.browser", "Browser"};
    model->refreshBrowserPermissions();
    model->requestBrowserAccess(browser);
    pass(10);
    EXPECT_TRUE(model->browserPermissions().value().empty());

    VirtualQueue worker{time, "worker"};
    bool isRunning = false;
    Permissions::Host host;
    host.applicationName = [](const std::string&) { return std::optional<std::string>("Browser"); };
    host.readiness = [&](const std::string&) { return std::optional(BrowserReadiness{.isRunning = isRunning}); };
    host.openInBackground = [&](const BrowserApp&) { isRunning = true; };
    const Permissions permissions({browser.bundleID}, "en_US", host);
    BrowserAccess access(main, worker, permissions);
    model = std::make_unique<AppModel>(AppModel::Parts{time, main, *monitor, settings, loginItem, false, &access});
    Told told(model->browserPermissions());
    model->refreshBrowserPermissions();
    pass(1);
    model->requestBrowserAccess(browser);
    pass(3);
    EXPECT_EQ(told.values, (std::vector<std::vector<BrowserPermission>>{{{browser, AutomationStatus::notRunning}},
                                                                        {{browser, AutomationStatus::notDetermined}}}));
}

} // namespace
} // namespace kestrio
