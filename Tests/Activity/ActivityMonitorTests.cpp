#include "Kestrio/Base/Signal.h"
#include "Tests/Activity/MonitorBench.h"
#include "Tests/ExpectedLog.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

class Monitor : public testing::Test, protected MonitorBench {};

// The tick

TEST_F(Monitor, theFirstTickComesHalfASecondAfterStartAndThenEveryTwoSeconds) {
    show("a", "one");
    start();
    EXPECT_EQ(monitor->published().live->start, origin);
    pass(3.9);
    EXPECT_EQ(monitor->published().live->lastSeen, origin + Seconds(2));
    pass(0.1);
    EXPECT_EQ(monitor->published().live->lastSeen, origin + Seconds(4));
}

TEST_F(Monitor, startingTwiceLeavesOneTimerAndOneSetOfObservers) {
    show("a", "one");
    start();
    monitor->start();
    monitor->start();
    time.runPending();
    EXPECT_EQ(workspace.observations, 1);
    pass(2);
    activate("b", "two");
    pass(60);
    // One flush each 15 seconds (on the tick after), not one per timer.
    EXPECT_EQ(store.inserts, 2);
    EXPECT_EQ(store.updates, 3);
}

TEST_F(Monitor, sessionsTileTheTimeWithNoGap) {
    show("a", "one");
    start();
    pass(5);
    activate("b", "two");
    pass(3);
    activate("a", "one");
    pass(2);
    monitor->stop();
    EXPECT_EQ(rows(), (Rows{"one 0-5", "two 5-8", "one 8-10"}));
}

TEST_F(Monitor, aSwitchTakesEffectAtOnceAndAChangeOfTitleAtTheNextTick) {
    show("a", "one");
    start();
    pass(2.5);
    titles.titles[100] = "two";
    pass(1);
    EXPECT_EQ(monitor->published().live->sample.title, "one");
    pass(0.5);
    EXPECT_EQ(monitor->published().live->sample.title, "two");
    EXPECT_EQ(rows(), (Rows{"one 0-4"}));
    pass(0.3);
    activate("b", "three");
    EXPECT_EQ(rows(), (Rows{"one 0-4"})); // "two" was there for less than a second
    EXPECT_EQ(monitor->published().live->sample.title, "three");
}

TEST_F(Monitor, aGlanceOfAnotherTabYieldsARowOnlyIfATickSawIt) {
    std::string tab = "inbox";
    collaborators.activeTab = [&](const auto&) { return BrowserTab{"https://example.org/" + tab, tab}; };
    show("browser", "");
    start();
    pass(2.2);
    tab = "glance";
    pass(1.5); // back at 3.7, before the tick at 4
    tab = "inbox";
    pass(2.3);
    EXPECT_EQ(shown(), (Rows{"inbox 0-6"}));
    pass(1.5);
    tab = "glance"; // from 7.5 to 9: seen at 8
    pass(1.5);
    tab = "inbox";
    activate("browser", ""); // comes with a switch, so at once
    EXPECT_EQ(rows(), (Rows{"inbox 0-8", "glance 8-9"}));
}

TEST_F(Monitor, aWindowThatFlashedByForLessThanASecondNeverReachesTheStore) {
    show("a", "one");
    start();
    pass(3);
    activate("b", "flash");
    pass(0.9);
    activate("a", "one");
    pass(1);
    activate("b", "exactly a second");
    pass(1);
    activate("a", "one");
    monitor->stop();
    EXPECT_EQ(rows(), (Rows{"one 0-3", "one 3.9-4.9", "exactly a second 4.9-5.9"}));
}

TEST_F(Monitor, anApplicationIsNamedByWhatItHas) {
    struct Row {
        std::optional<std::string> bundleID, name;
        const char* id;
        const char* appName;
    };
    const Row table[] = {
        {"org.a", "Aye", "org.a", "Aye"},
        {"org.a", std::nullopt, "org.a", "org.a"},
        {std::nullopt, "Aye", "Aye", "Aye"},
        {std::nullopt, std::nullopt, "unknown", "unknown"},
        {"org.a", "A\u200Eye\u202C", "org.a", "Aye"},
    };
    start();
    for (const auto& row : table) {
        workspace.front = RunningApplication{row.bundleID, row.name, std::nullopt};
        pass(2);
        const auto sample = monitor->published().live->sample;
        EXPECT_EQ(sample.bundleID, row.id);
        EXPECT_EQ(sample.appName, row.appName);
        EXPECT_EQ(sample.title, "");
    }
}

// What a sample is made of

TEST_F(Monitor, aTabThatBecameCertainIsLookedAtAtOnce) {
    std::string tab = "before";
    Signal<> changed;
    collaborators.activeTab = [&](const auto&) { return BrowserTab{"https://example.org/" + tab, tab}; };
    collaborators.observeTabs = [&](auto receiver) { return changed.subscribe(std::move(receiver)); };
    show("browser", "");
    start();
    pass(4.5);
    tab = "after";
    changed.emit();
    pass(5.5);
    EXPECT_EQ(shown(), (Rows{"before 0-4.5", "after 4.5-10"}));
    monitor.reset();
    EXPECT_FALSE(changed.hasReceivers());
}

TEST_F(Monitor, aPrivateTabRecordsNothingOfThePage) {
    collaborators.activeTab = [](const auto&) { return BrowserTab{"https://secret.example/x", "Secret", true}; };
    collaborators.domain = [](const auto&) { return "secret.example"; };
    std::vector<std::string> askedTitles;
    collaborators.project = [&](const auto&, const auto&, const auto& title, const auto& url) {
        askedTitles.push_back(title + (url ? *url : ""));
        return std::nullopt;
    };
    show("browser", "Secret - Browser");
    start();
    const auto sample = monitor->published().live->sample;
    EXPECT_EQ(sample.title, "Private Browsing");
    EXPECT_EQ(sample.url, std::nullopt);
    EXPECT_EQ(sample.domain, std::nullopt);
    EXPECT_EQ(askedTitles, (std::vector<std::string>{"Private Browsing"}));
}

TEST_F(Monitor, anAddressIsCutAt2048CharactersAndGivesTheDomain) {
    const auto url = "https://example.org/" + std::string(3000, 'x');
    collaborators.activeTab = [&](const auto&) { return BrowserTab{url, "Long"}; };
    std::string asked;
    collaborators.domain = [&](const auto& address) {
        asked = address;
        return "example.org";
    };
    show("browser", "window title");
    start();
    const auto sample = monitor->published().live->sample;
    EXPECT_EQ(sample.title, "Long");
    EXPECT_EQ(sample.url, url.substr(0, 2048));
    EXPECT_EQ(asked, url.substr(0, 2048));
    EXPECT_EQ(sample.domain, "example.org");
    EXPECT_EQ(sample.kind, SessionKind::focus);
}

TEST_F(Monitor, titlesPassThroughTheToolsInOrder) {
    collaborators.isBrowser = [](const auto& id) { return id == "browser"; };
    collaborators.stripBrowserName = [](const auto& title, const auto& app) {
        return "strip(" + title + "," + app + ")";
    };
    collaborators.cleanTitle = [](const auto& title) { return "clean(" + title + ")"; };
    collaborators.removingAppName = [](const auto& title, const auto& app) {
        return "remove(" + title + "," + app + ")";
    };
    collaborators.project = [](const auto& id, const auto& app, const auto& title, const auto&) {
        return std::optional(id + "|" + app + "|" + title);
    };
    show("browser", "T");
    start();
    EXPECT_EQ(monitor->published().live->sample.title, "remove(clean(strip(T,browser name)),browser name)");
    activate("plain", "T");
    EXPECT_EQ(monitor->published().live->sample.title, "remove(clean(T),plain name)");
    EXPECT_EQ(monitor->published().live->sample.project, "plain|plain name|remove(clean(T),plain name)");
}

TEST_F(Monitor, withoutAnyCollaboratorTheTitleIsAllThereIs) {
    show("a", "one");
    start();
    const auto sample = monitor->published().live->sample;
    EXPECT_EQ(sample,
              (ActivitySample{"a", "a name", "one", std::nullopt, std::nullopt, std::nullopt, SessionKind::focus}));
    titles.titles.clear();
    pass(2);
    EXPECT_EQ(monitor->published().live->sample.title, "");
}

// Flushing

TEST_F(Monitor, aSessionThatHasJustBegunGetsItsRowAtTheFirstUnchangedTick) {
    show("a", "one");
    start();
    EXPECT_EQ(rows(), Rows{});
    pass(2); // nothing was ever flushed, so at once
    EXPECT_EQ(rows(), (Rows{"one 0-2"}));
    pass(14);
    EXPECT_EQ(rows(), (Rows{"one 0-2"}));
    pass(2);
    EXPECT_EQ(rows(), (Rows{"one 0-18"}));
    EXPECT_EQ(store.updates, 1);
}

TEST_F(Monitor, theFlushIntervalRunsAcrossSessions) {
    show("a", "one");
    start();
    pass(2);
    activate("b", "two");
    EXPECT_EQ(rows(), (Rows{"one 0-2"}));
    pass(14); // at 16, 14 seconds after the last flush
    EXPECT_EQ(rows(), (Rows{"one 0-2"}));
    pass(2);
    EXPECT_EQ(rows(), (Rows{"one 0-2", "two 2-18"}));
}

TEST_F(Monitor, aRowIsKeptWhateverItsLength) {
    show("a", "one");
    start();
    pass(2);
    *input.idle = Seconds(200); // the attention ended before the session began
    pass(2);
    EXPECT_EQ(state(), TrackingState::idle);
    EXPECT_EQ(rows(), (Rows{"one 0-0"}));
}

TEST_F(Monitor, afterACrashTheRowHoldsAllUpToTheLastFlush) {
    show("a", "one");
    start();
    pass(31);
    EXPECT_EQ(rows(), (Rows{"one 0-18"}));
    EXPECT_EQ(shown(), (Rows{"one 0-30"}));
}

TEST_F(Monitor, aFailedInsertIsTriedAgainAtTheNextFlush) {
    show("a", "one");
    start();
    store.failInserts = true;
    pass(2);
    EXPECT_EQ(rows(), Rows{});
    store.failInserts = false;
    pass(14);
    EXPECT_EQ(rows(), Rows{});
    pass(2);
    EXPECT_EQ(rows(), (Rows{"one 0-18"}));
}

TEST_F(Monitor, aFailedUpdateIsMadeGoodAtTheNextFlush) {
    show("a", "one");
    start();
    pass(2);
    store.failUpdates = true;
    pass(16);
    EXPECT_EQ(rows(), (Rows{"one 0-2"}));
    store.failUpdates = false;
    pass(16);
    EXPECT_EQ(rows(), (Rows{"one 0-34"}));
}

TEST_F(Monitor, whatTheStoreCouldNotTakeAtClosingWaitsInMemoryAndIsSavedLater) {
    ExpectedLog log;
    show("a", "one");
    start();
    pass(2); // has a row
    store.failInserts = store.failUpdates = true;
    pass(3);
    activate("b", "two"); // "one" ends at 5, which the store refuses
    pass(4);
    activate("c", "three"); // "two" would need a row
    EXPECT_EQ(monitor->published().unsaved, 2u);
    EXPECT_EQ(rows(), (Rows{"one 0-2"}));
    EXPECT_EQ(shown(), (Rows{"one 0-5", "two 5-9"}));
    pass(3);
    EXPECT_EQ(shown(), (Rows{"one 0-5", "two 5-9", "three 9-12"}));
    EXPECT_EQ(shown(origin + Seconds(9), origin + Seconds(10)), (Rows{"three 9-12"}));
    store.failInserts = store.failUpdates = false;
    pass(20);
    EXPECT_EQ(monitor->published().unsaved, 0u);
    EXPECT_EQ(rows().size(), 3u);
    EXPECT_EQ((Rows{rows()[0], rows()[1]}), (Rows{"one 0-5", "two 5-9"}));
    EXPECT_EQ(log.lines(), (Rows{"Kestrio: activity can't be saved and waits in memory: database or disk is full",
                                 "Kestrio: activity that waited in memory has been saved"}));
}

TEST_F(Monitor, whatCannotBeSavedAtTheEndIsSaid) {
    ExpectedLog log;
    show("a", "one");
    start();
    store.failInserts = true;
    pass(4);
    monitor->stop();
    ASSERT_EQ(log.lines().size(), 2u);
    EXPECT_EQ(log.lines()[1], "Kestrio: 1 sessions could not be saved before the end: database or disk is full");
}

// Idle

TEST_F(Monitor, theIdleLimitCountsWhenItIsReachedExactly) {
    settings.set("idleMinutes", std::int64_t{3});
    show("a", "one");
    start();
    pass(100);
    *input.idle = Seconds(179.9);
    pass(2);
    EXPECT_EQ(state(), TrackingState::tracking);
    *input.idle = Seconds(180);
    pass(2);
    EXPECT_EQ(state(), TrackingState::idle);
    EXPECT_EQ(monitor->published().live, std::nullopt);
}

TEST_F(Monitor, theIdleLimitIsReadAtEachTick) {
    struct Row {
        std::optional<SettingValue> stored;
        double limit;
    };
    const Row table[] = {
        {std::int64_t{0}, 60}, {std::int64_t{-5}, 60}, {std::int64_t{1}, 60},  {std::int64_t{10}, 600},
        {std::nullopt, 180},   {std::string("x"), 60}, {std::int64_t{2}, 120},
    };
    show("a", "one");
    start();
    for (const auto& row : table) {
        settings.set("idleMinutes", row.stored);
        *input.idle = Seconds(row.limit - 0.5);
        pass(2);
        EXPECT_EQ(state(), TrackingState::tracking) << row.limit;
        *input.idle = Seconds(row.limit);
        pass(2);
        EXPECT_EQ(state(), TrackingState::idle) << row.limit;
    }
}

TEST_F(Monitor, anIdleSessionEndsAtTheLastInputEvenIfAFlushWroteALaterEnd) {
    show("a", "one");
    start();
    pass(40);
    passUntouched(180);
    EXPECT_EQ(state(), TrackingState::idle);
    ASSERT_EQ(rows().size(), 1u);
    EXPECT_EQ(rows(), (Rows{"one 0-40"}));
    passUntouched(1000);
    *input.idle = Seconds(0.1);
    pass(2);
    EXPECT_EQ(state(), TrackingState::tracking);
    EXPECT_EQ(monitor->published().live->start, origin + Seconds(1222));
    EXPECT_EQ(monitor->published().live->rowID, std::nullopt);
    monitor->stop();
}

TEST_F(Monitor, anUnknownIdleTimeMakesNobodyIdle) {
    input.idle.reset();
    show("a", "one");
    start();
    pass(3600);
    EXPECT_EQ(state(), TrackingState::tracking);
    EXPECT_EQ(shown(), (Rows{"one 0-3600"}));
}

TEST_F(Monitor, nothingInFrontReadsAsIdle) {
    show("a", "one");
    start();
    pass(4);
    workspace.front.reset();
    pass(2);
    EXPECT_EQ(state(), TrackingState::idle);
    EXPECT_EQ(rows(), (Rows{"one 0-6"}));
}

TEST_F(Monitor, aVideoInFrontKeepsThePersonActiveUpToTheLastTickThatSawItPlay) {
    AlongsideEvidence evidence{{}, {"player"}};
    collaborators.alongside = [&](const auto&, bool) { return evidence; };
    show("player", "film");
    start();
    passUntouched(600);
    EXPECT_EQ(state(), TrackingState::tracking);
    evidence.appsPlayingVideo.clear();
    pass(4);
    EXPECT_EQ(state(), TrackingState::idle);
    ASSERT_EQ(rows().size(), 1u);
    // The check every four seconds noticed at 604 that it stopped; the tick at 602 was the last to see it.
    EXPECT_EQ(rows(), (Rows{"film 0-602"}));
}

TEST_F(Monitor, aVideoThatIsRecordedAlongsideDoesNotCountAsBeingThere) {
    const ActivitySample watched{"player", "player", "film", {}, {}, {}, SessionKind::watching};
    collaborators.alongside = [&](const auto&, bool) { return AlongsideEvidence{{watched}, {"player"}}; };
    show("player", "other window");
    start();
    pass(10);
    passUntouched(190);
    EXPECT_EQ(state(), TrackingState::idle);
    EXPECT_EQ(rows().front(), "other window 0-10");
}

// Away

TEST_F(Monitor, eachReasonMakesAwayAndItsCounterpartEndsIt) {
    struct Row {
        SessionEvent begin, end;
    };
    const Row table[] = {
        {SessionEvent::willSleep, SessionEvent::didWake},
        {SessionEvent::displaysDidSleep, SessionEvent::displaysDidWake},
        {SessionEvent::sessionDidResignActive, SessionEvent::sessionDidBecomeActive},
        {SessionEvent::screenIsLocked, SessionEvent::screenIsUnlocked},
    };
    *input.idle = Seconds(10);
    show("a", "one");
    start();
    for (const auto& row : table) {
        happen(row.begin);
        EXPECT_EQ(state(), TrackingState::away) << static_cast<int>(row.begin);
        EXPECT_EQ(monitor->published().live, std::nullopt);
        pass(100);
        EXPECT_EQ(state(), TrackingState::away) << static_cast<int>(row.begin);
        happen(row.end);
        EXPECT_EQ(state(), TrackingState::tracking) << static_cast<int>(row.begin);
    }
}

TEST_F(Monitor, everyReasonMustGoBeforeAwayEnds) {
    *input.idle = Seconds(10);
    show("a", "one");
    start();
    happen(SessionEvent::screenIsLocked);
    happen(SessionEvent::displaysDidSleep);
    happen(SessionEvent::screenIsUnlocked);
    EXPECT_EQ(state(), TrackingState::away);
    happen(SessionEvent::displaysDidWake);
    EXPECT_EQ(state(), TrackingState::tracking);
}

TEST_F(Monitor, sleepClosesTheSessionAtThatMomentAndHoldsTheMachineNoLonger) {
    show("a", "one");
    start();
    pass(5);
    events.happen(SessionEvent::willSleep);
    EXPECT_TRUE(events.isHeldBack());
    time.runPending();
    EXPECT_EQ(rows(), (Rows{"one 0-5"}));
    EXPECT_FALSE(events.isHeldBack());
    time.sleepMachine(Seconds(3600));
    *input.idle = Seconds(3605);
    happen(SessionEvent::didWake);
    *input.idle = Seconds(0);
    pass(2);
    EXPECT_EQ(state(), TrackingState::tracking);
    EXPECT_EQ(monitor->published().live->start,
              origin + Seconds(3607 - 1)); // the timer's grid stands still in sleep
}

TEST_F(Monitor, inputFromBeforeTheNoticeProvesNothing) {
    show("a", "one");
    start();
    pass(3);
    *input.idle = Seconds(0.5);
    happen(SessionEvent::willSleep); // the person chose "Suspend" half a second ago
    EXPECT_EQ(state(), TrackingState::away);
    passUntouched(1);
    time.sleepMachine(Seconds(600));
    pass(0.9); // awake, the notice of it not yet here
    EXPECT_EQ(state(), TrackingState::away);
    EXPECT_EQ(rows(), (Rows{"one 0-3"}));
}

TEST_F(Monitor, aLostWakeIsRecoveredByFreshInputInAnOrdinaryApplication) {
    struct Row {
        std::optional<Seconds> idle;
        const char* front; // empty for none
        TrackingState state;
    };
    const Row table[] = {
        {Seconds(3), "a", TrackingState::away},
        {std::nullopt, "a", TrackingState::away},
        {Seconds(0), "", TrackingState::away},
        {Seconds(0), "com.apple.loginwindow", TrackingState::away},
        {Seconds(0), "com.apple.ScreenSaver.Engine", TrackingState::away},
        {Seconds(0), "org.example.locker", TrackingState::away},
        {Seconds(2.9), "a", TrackingState::tracking},
    };
    for (const auto lost : {SessionEvent::willSleep, SessionEvent::displaysDidSleep}) {
        MonitorBench bench;
        *bench.input.idle = Seconds(10);
        bench.show("a", "one");
        bench.start();
        bench.happen(lost);
        for (const auto& row : table) {
            bench.input.idle = row.idle;
            bench.show(row.front, "x");
            if (!*row.front)
                bench.workspace.front.reset();
            bench.pass(2);
            EXPECT_EQ(bench.state(), row.state) << row.front << " after " << static_cast<int>(lost);
        }
    }
}

TEST_F(Monitor, aLostUnlockOrSwitchBackIsNotRecovered) {
    for (const auto event : {SessionEvent::screenIsLocked, SessionEvent::sessionDidResignActive}) {
        MonitorBench bench;
        bench.show("a", "one");
        bench.start();
        bench.happen(event);
        bench.happen(SessionEvent::willSleep);
        bench.pass(60);
        EXPECT_EQ(bench.state(), TrackingState::away) << static_cast<int>(event);
    }
}

TEST_F(Monitor, aLockScreenInFrontIsAwayThoughNoNoticeCame) {
    for (const char* id : {"com.apple.loginwindow", "com.apple.ScreenSaver.Engine", "org.example.locker"}) {
        activate("a", "one");
        if (!monitor)
            start();
        pass(2);
        EXPECT_EQ(state(), TrackingState::tracking);
        activate(id, "secret");
        EXPECT_EQ(state(), TrackingState::away) << id;
        EXPECT_EQ(monitor->published().live, std::nullopt);
    }
}

TEST_F(Monitor, aStateInForceAtTheStartIsHeardOf) {
    events.setInForce({SessionEvent::screenIsLocked});
    show("a", "one");
    start();
    EXPECT_EQ(state(), TrackingState::away);
}

// Transient prompts

TEST_F(Monitor, aPromptDoesNotBreakTheSessionUnderIt) {
    for (const char* prompt :
         {"com.apple.accessibility.universalAccessAuthWarn", "com.apple.UserNotificationCenter",
          "com.apple.coreservices.uiagent", "com.apple.SecurityAgent", "com.apple.tccd", "org.example.prompt"}) {
        MonitorBench bench;
        bench.show("a", "one");
        bench.start();
        bench.pass(4);
        bench.activate(prompt, "Password");
        bench.pass(10);
        EXPECT_EQ(bench.state(), TrackingState::tracking) << prompt;
        EXPECT_EQ(bench.monitor->published().live->sample.title, "one") << prompt;
        EXPECT_EQ(bench.monitor->published().live->lastSeen, origin + Seconds(14)) << prompt;
        bench.activate("a", "one");
        bench.pass(2);
        EXPECT_EQ(bench.shown(), (Rows{"one 0-16"})) << prompt;
    }
}

TEST_F(Monitor, aPromptWithNothingUnderItIsRecordedLikeAnyApplication) {
    show("com.apple.SecurityAgent", "Password");
    start();
    pass(4);
    EXPECT_EQ(shown(), (Rows{"Password 0-4"}));
}

TEST_F(Monitor, aPromptThatNobodyTouchesGoesIdleLikeTheRest) {
    show("a", "one");
    start();
    activate("com.apple.SecurityAgent", "Password");
    passUntouched(182);
    EXPECT_EQ(state(), TrackingState::idle);
}

// Pause

TEST_F(Monitor, aPauseClosesAtOnceAndEndsByItself) {
    show("a", "one");
    start();
    pass(3);
    monitor->pause(origin + Seconds(60));
    time.runPending();
    EXPECT_EQ(state(), TrackingState::paused);
    EXPECT_EQ(monitor->published().pausedUntil, origin + Seconds(60));
    EXPECT_EQ(rows(), (Rows{"one 0-3"}));
    pass(56.9);
    EXPECT_EQ(state(), TrackingState::paused);
    pass(0.1);
    EXPECT_EQ(state(), TrackingState::tracking);
    EXPECT_EQ(monitor->published().pausedUntil, std::nullopt);
    EXPECT_EQ(monitor->published().live->start, origin + Seconds(60));
}

TEST_F(Monitor, anAbsentDateResumes) {
    show("a", "one");
    start();
    monitor->pause(distantFuture);
    pass(1e6);
    EXPECT_EQ(state(), TrackingState::paused);
    monitor->pause(std::nullopt);
    time.runPending();
    EXPECT_EQ(state(), TrackingState::tracking);
}

TEST_F(Monitor, aPauseWithADateInThePastEndsAtTheNextTick) {
    show("a", "one");
    start();
    pass(1);
    monitor->pause(origin);
    time.runPending();
    EXPECT_EQ(state(), TrackingState::tracking);
    EXPECT_EQ(monitor->published().pausedUntil, std::nullopt);
}

TEST_F(Monitor, aPauseWinsOverEverythingElse) {
    show("a", "one");
    start();
    monitor->pause(distantFuture);
    happen(SessionEvent::screenIsLocked);
    EXPECT_EQ(state(), TrackingState::paused);
    workspace.front.reset();
    pass(2);
    EXPECT_EQ(state(), TrackingState::paused);
    *input.idle = Seconds(9999);
    pass(2);
    EXPECT_EQ(state(), TrackingState::paused);
}

// Stop and restart

TEST_F(Monitor, stoppingClosesEverythingAndEndsTheTicking) {
    const ActivitySample music{"player", "player", "song", {}, {}, {}, SessionKind::listening};
    collaborators.alongside = [&](const auto&, bool) { return AlongsideEvidence{{music}, {}}; };
    show("a", "one");
    start();
    pass(20.5);
    monitor->stop();
    EXPECT_EQ(state(), TrackingState::paused);
    EXPECT_EQ(monitor->published().live, std::nullopt);
    EXPECT_TRUE(monitor->published().alongside.empty());
    EXPECT_EQ(rows().size(), 2u);
    EXPECT_EQ(rows()[0].substr(rows()[0].find(' ')), " 0-20.5");
    EXPECT_EQ(rows()[1].substr(rows()[1].find(' ')), " 0-20.5");
    pass(60);
    EXPECT_EQ(rows().size(), 2u);
    EXPECT_TRUE(workspace.isObserved());
}

TEST_F(Monitor, nothingSurvivesARestartAndNoGapIsBridged) {
    show("a", "one");
    start();
    pass(10);
    monitor->stop();
    monitor.reset();
    pass(0.5);
    start();
    pass(10);
    monitor->stop();
    EXPECT_EQ(rows(), (Rows{"one 0-10", "one 10.5-20.5"}));
}

TEST_F(Monitor, mayBeGoneWhileItsNoticesAreOnTheirWay) {
    show("a", "one");
    start();
    workspace.announce(WorkspaceNotice::activated);
    monitor->pause(distantFuture);
    monitor.reset();
    pass(60);
    EXPECT_FALSE(workspace.isObserved());
}

// Alongside sessions

class MonitorAlongside : public Monitor {
protected:
    const ActivitySample music{"player", "player", "song", {}, {}, {}, SessionKind::listening};
    const ActivitySample film{"video", "video", "film", {}, {}, {}, SessionKind::watching};
    AlongsideEvidence evidence;
    int checks = 0;
    std::vector<bool> watchingAllowed;

    void begin() {
        collaborators.alongside = [this](const auto&, bool allowWatching) {
            ++checks;
            watchingAllowed.push_back(allowWatching);
            auto result = evidence;
            if (!allowWatching)
                std::erase_if(result.detected, [](const auto& s) { return s.kind == SessionKind::watching; });
            return result;
        };
        show("a", "one");
        start();
    }

    Rows alongsideRows() {
        Rows found;
        for (const auto& row : rows())
            if (row.find('(') != std::string::npos)
                found.push_back(row);
        return found;
    }
};

TEST_F(MonitorAlongside, isCheckedEveryFourSeconds) {
    begin();
    pass(20);
    EXPECT_EQ(checks, 6); // at 0, 4, 8, 12, 16, 20
}

TEST_F(MonitorAlongside, aSoundOfNineSecondsLeavesNoRowAndOneOfElevenDoes) {
    begin();
    evidence.detected = {music};
    pass(9); // checks at 4 and 8 see it
    evidence.detected.clear();
    pass(3);
    EXPECT_EQ(alongsideRows(), Rows{});
    evidence.detected = {music};
    pass(12); // from 16 to 24
    evidence.detected.clear();
    pass(8); // closed at 28
    EXPECT_EQ(alongsideRows(), (Rows{"song(Listening) 16-28"}));
}

TEST_F(MonitorAlongside, isPublishedAtOnceAndShownAmongTheSessionsAfterTenSeconds) {
    evidence.detected = {music};
    begin();
    pass(8);
    EXPECT_EQ(monitor->published().alongside.size(), 1u);
    EXPECT_EQ(shown(), (Rows{"one 0-8"}));
    pass(4);
    EXPECT_EQ(shown(), (Rows{"one 0-12", "song(Listening) 0-12"}));
}

TEST_F(MonitorAlongside, publishesWatchingBeforeListeningAndTheOldestFirst) {
    auto second = music;
    second.title = "second song";
    begin();
    evidence.detected = {music};
    pass(4);
    evidence.detected = {music, second};
    pass(4);
    evidence.detected = {second, music, film};
    pass(4);
    Rows seen;
    for (const auto& session : monitor->published().alongside)
        seen.push_back(session.sample.title);
    EXPECT_EQ(seen, (Rows{"film", "song", "second song"}));
}

TEST_F(MonitorAlongside, goesOnBehindALockedOrDarkScreenAndClosesAtSleep) {
    evidence.detected = {music};
    begin();
    *input.idle = Seconds(10);
    pass(4);
    happen(SessionEvent::displaysDidSleep);
    EXPECT_EQ(state(), TrackingState::away);
    pass(20);
    happen(SessionEvent::screenIsLocked);
    pass(20);
    EXPECT_EQ(monitor->published().alongside.size(), 1u);
    EXPECT_EQ(monitor->published().alongside[0].start, origin);
    EXPECT_FALSE(watchingAllowed.back());
    happen(SessionEvent::willSleep);
    EXPECT_TRUE(monitor->published().alongside.empty());
    EXPECT_EQ(alongsideRows(), (Rows{"song(Listening) 0-44"}));
}

TEST_F(MonitorAlongside, isCheckedWithoutAFrontApplicationToo) {
    begin();
    workspace.front.reset();
    pass(4);
    EXPECT_TRUE(watchingAllowed.back());
    activate("org.example.locker", "");
    pass(4);
    EXPECT_FALSE(watchingAllowed.back());
}

TEST_F(MonitorAlongside, aPauseClosesItAndChecksNoMore) {
    evidence.detected = {music};
    begin();
    pass(12);
    monitor->pause(distantFuture);
    const int before = checks;
    pass(20);
    EXPECT_EQ(checks, before);
    EXPECT_EQ(alongsideRows(), (Rows{"song(Listening) 0-12"}));
}

TEST_F(MonitorAlongside, aChangeOfTitleEndsOneRowAndBeginsTheNext) {
    evidence.detected = {music};
    begin();
    pass(20);
    auto next = music;
    next.title = "next song";
    evidence.detected = {next};
    pass(20);
    monitor->stop();
    EXPECT_EQ(alongsideRows(), (Rows{"song(Listening) 0-24", "next song(Listening) 24-40"}));
}

TEST_F(MonitorAlongside, losesAtMostOneFlushIntervalInACrash) {
    evidence.detected = {music};
    begin();
    pass(100);
    ASSERT_EQ(alongsideRows().size(), 1u);
    EXPECT_EQ(alongsideRows(), (Rows{"song(Listening) 0-96"}));
}

// Reading with live rows

TEST_F(Monitor, aLiveRowWithoutAnIdentifierFollowsTheStoredOnes) {
    show("a", "one");
    start();
    pass(4);
    activate("b", "two");
    pass(3);
    const auto found = monitor->sessions({origin, origin + Seconds(100)});
    ASSERT_EQ(found.size(), 2u);
    EXPECT_GT(found[0].id, 0);
    EXPECT_EQ(found[1].id, -1);
    EXPECT_EQ(found[1].end, origin + Seconds(6)); // the last tick, not now
}

TEST_F(Monitor, aLiveRowJustBegunIsNotShown) {
    show("a", "one");
    start();
    EXPECT_EQ(shown(), Rows{});
}

TEST_F(Monitor, liveRowsAreHeldAgainstTheInterval) {
    show("a", "one");
    start();
    pass(30);
    const auto at = [&](double from, double to) { return shown(origin + Seconds(from), origin + Seconds(to)); };
    EXPECT_EQ(at(0, 100), (Rows{"one 0-30"}));
    EXPECT_EQ(at(29, 100), Rows{}); // its row was last written at 18, and does not come back for this range
    EXPECT_EQ(at(17, 100), (Rows{"one 0-30"}));
    EXPECT_EQ(at(30, 100), Rows{});
    EXPECT_EQ(at(-100, 0), Rows{});
}

// Clocks that jump

TEST_F(Monitor, aSleepThatNobodyAnnouncedIsNotCounted) {
    show("a", "one");
    start();
    pass(5);
    time.sleepMachine(Seconds(3600));
    pass(5);
    monitor->stop();
    EXPECT_EQ(rows(), (Rows{"one 0-4", "one 3606-3610"}));
}

TEST_F(Monitor, aClockThatIsSetBackEndsTheSessionWhereItWasLastSeen) {
    show("a", "one");
    start();
    pass(40);
    time.jumpWallClock(Seconds(-3600));
    pass(1);
    EXPECT_EQ(rows(), (Rows{"one 0-34"}));
    pass(39);
    EXPECT_EQ(rows(), (Rows{"one -3558--3524", "one 0-40"})); // flushes go on, though the last was "later"
    monitor->stop();
    for (const auto& session : database.sessions(origin - Seconds(1e6), origin + Seconds(1e6)))
        EXPECT_GE(session.end, session.start);
}

TEST_F(Monitor, aClockThatCreepsBackMakesNoNegativeSession) {
    show("a", "one");
    start();
    activate("b", "two");
    time.jumpWallClock(Seconds(-0.9));
    pass(2);
    activate("c", "three");
    time.jumpWallClock(Seconds(-0.9));
    activate("d", "four");
    pass(10);
    monitor->stop();
    Date last = origin;
    for (const auto& session : database.sessions(origin - Seconds(1e6), origin + Seconds(1e6))) {
        EXPECT_GE(session.start, last);
        EXPECT_GE(session.end, session.start);
        last = session.end;
    }
}

TEST_F(Monitor, aJumpStartsTheAlongsideIntervalsOver) {
    const ActivitySample music{"player", "player", "song", {}, {}, {}, SessionKind::listening};
    collaborators.alongside = [&](const auto&, bool) { return AlongsideEvidence{{music}, {}}; };
    show("a", "one");
    start();
    pass(20);
    time.jumpWallClock(Seconds(-7200));
    pass(20);
    ASSERT_EQ(monitor->published().alongside.size(), 1u);
    EXPECT_EQ(monitor->published().alongside[0].start, origin + Seconds(20 + 2 - 7200));
}

TEST(ActivityMonitor, beginsAnewOnceEverythingWasDeleted) {
    MonitorBench bench;
    bench.show("org.example.editor", "Draft");
    bench.start();
    bench.pass(60);
    EXPECT_FALSE(bench.rows().empty());
    bench.monitor->beginAnew([&] { bench.database.deleteAll(); });
    bench.time.runPending();
    EXPECT_EQ(bench.rows(), Rows{});
    bench.pass(60);
    ASSERT_EQ(bench.rows().size(), 1U) << "what is still in front is recorded from then on";
    EXPECT_EQ(bench.rows().front().substr(0, 8), "Draft 60");
}

} // namespace
} // namespace kestrio
