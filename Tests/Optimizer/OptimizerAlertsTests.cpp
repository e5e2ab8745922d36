#include "Kestrio/Base/VirtualQueue.h"
#include "Kestrio/Optimizer/OptimizerAlerts.h"
#include "Kestrio/Platform/Testing/MemoryKeyValueStore.h"
#include "Kestrio/Platform/Testing/ScriptedNotifications.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

using Texts = std::vector<std::string>;

AppProcesses app(const std::string& id, const std::string& name, double cores = 0, std::uint64_t footprint = 0,
                 std::uint64_t resident = 0) {
    return {.id = id,
            .name = name,
            .appPath = {},
            .bundleID = id,
            .cpuCores = cores,
            .footprint = footprint,
            .resident = resident,
            .processes = {}};
}

struct AlertsBench {
    static constexpr std::uint64_t gigabyte = 1'000'000'000;

    VirtualTime time{Date(1'700'000'000)};
    Calendar calendar{"en_GB", "UTC"};
    MemoryKeyValueStore settings{{{OptimizerAlerts::memoryAlertsKey, true}, {OptimizerAlerts::runawayAlertsKey, true}}};
    ScriptedNotifications notifications;
    std::vector<ResourceEvent> events;
    int opened = 0;
    OptimizerAlerts alerts{{time, calendar, settings, notifications},
                           {.ownBundleID = "dev.example.optimizer",
                            .log = [this](const ResourceEvent& event) { events.push_back(event); },
                            .openDashboard = [this] { ++opened; }}};

    std::vector<AppProcesses> apps;
    std::optional<std::string> front = "org.example.editor";
    MemoryPressure pressure = MemoryPressure::normal;
    bool hasCPU = true;

    void check() { alerts.check({apps, hasCPU, pressure}, front); }
    /// A sample every ten seconds, the first one at once.
    void checkFor(double seconds) {
        for (double passed = 0; passed < seconds; passed += 10) {
            check();
            time.advance(Seconds(10));
        }
    }
    std::size_t posted() const { return notifications.posted.size(); }
    std::string body() const { return notifications.posted.empty() ? "" : notifications.posted.back().body; }

    /// The body of the alert that pressure brings.
    std::string underPressure() {
        pressure = MemoryPressure::warning;
        checkFor(70);
        return body();
    }
};

TEST(OptimizerAlerts, pressureIsToldAfterAMinute) {
    AlertsBench bench;
    bench.pressure = MemoryPressure::warning;
    bench.check();
    bench.time.advance(Seconds(59.9));
    bench.check();
    EXPECT_EQ(bench.posted(), 0U);
    bench.time.advance(Seconds(0.1));
    bench.check();
    ASSERT_EQ(bench.posted(), 1U);
    EXPECT_EQ(bench.notifications.posted[0], (Notification{"memory", "Memory is under pressure",
                                                           ". Closing windows and tabs you aren't using helps most."}));
    EXPECT_TRUE(bench.events.empty());
}

TEST(OptimizerAlerts, aSingleNormalSampleBeginsTheMinuteAnew) {
    AlertsBench bench;
    for (int spell = 0; spell < 2; ++spell) {
        bench.pressure = MemoryPressure::critical;
        bench.check();
        bench.time.advance(Seconds(59));
        bench.check();
        bench.pressure = MemoryPressure::normal;
        bench.check();
    }
    EXPECT_EQ(bench.posted(), 0U);
}

TEST(OptimizerAlerts, lastingPressureIsToldEveryHalfHourInPlaceOfTheEarlierAlert) {
    AlertsBench bench;
    bench.pressure = MemoryPressure::warning;
    bench.checkFor(3600);
    EXPECT_EQ(bench.posted(), 2U); // at 60 and 1860 seconds
    bench.checkFor(70);
    EXPECT_EQ(bench.posted(), 3U);
    EXPECT_EQ(bench.notifications.shown.size(), 1U);
}

TEST(OptimizerAlerts, theHalfHourCountsAcrossSpells) {
    AlertsBench bench;
    bench.underPressure();
    bench.pressure = MemoryPressure::normal;
    bench.check();
    bench.pressure = MemoryPressure::warning;
    bench.checkFor(1700);
    EXPECT_EQ(bench.posted(), 1U);
    bench.checkFor(100);
    EXPECT_EQ(bench.posted(), 2U);
}

TEST(OptimizerAlerts, theTwoFirstApplicationsAreNamedWithWhatTheyHold) {
    constexpr auto gigabyte = AlertsBench::gigabyte;
    constexpr auto bound = OptimizerAlerts::worthTelling;
    const auto advice = std::string(" Closing windows and tabs you aren't using helps most.");
    const std::tuple<const char*, std::vector<AppProcesses>, std::string> cases[] = {
        {"none", {}, "."},
        {"one", {app("a", "Ada", 0, 1'500 * gigabyte / 1000, gigabyte)}, "Ada holds 1.5 GB."},
        {"three",
         {app("a", "Ada", 0, 3 * gigabyte, 3 * gigabyte), app("b", "Bob", 0, 500'000'000), app("c", "Cy", 0, gigabyte)},
         "Ada holds 3 GB; Bob holds 500 MB."},
        {"just not squeezed", {app("a", "Ada", 0, gigabyte + bound, gigabyte)}, "Ada holds 1.54 GB."},
        {"squeezed",
         {app("a", "Ada", 0, gigabyte + bound + 1, gigabyte)},
         "Ada holds 1.54 GB (536.9 MB of it squeezed out of RAM)."},
        {"more resident than held", {app("a", "Ada", 0, gigabyte, 9 * gigabyte)}, "Ada holds 1 GB."},
    };
    for (const auto& [what, apps, body] : cases) {
        AlertsBench bench;
        bench.apps = apps;
        EXPECT_EQ(bench.underPressure(), body + advice) << what;
    }
}

TEST(OptimizerAlerts, ofSeveralOpenBrowsersTheFirstTwoAreNamed) {
    const auto chrome = app("com.google.Chrome", "Chrome");
    const auto firefox = app("org.mozilla.firefox", "Firefox");
    const auto vivaldi = app("com.vivaldi.Vivaldi", "Vivaldi");
    const auto other = app("org.example.other", "Other");
    const std::string closing = " Closing windows and tabs you aren't using helps most.";
    const std::tuple<std::vector<AppProcesses>, std::string> cases[] = {
        {{chrome}, "Chrome holds 0 bytes." + closing},
        {{other, firefox}, "Other holds 0 bytes; Firefox holds 0 bytes." + closing},
        {{other, other, firefox, chrome},
         "Other holds 0 bytes; Other holds 0 bytes. Firefox and Chrome are both open — quitting one frees the most."},
        {{vivaldi, chrome, firefox},
         "Vivaldi holds 0 bytes; Chrome holds 0 bytes. Vivaldi and Chrome are both open — quitting one frees the "
         "most."},
    };
    for (const auto& [apps, body] : cases) {
        AlertsBench bench;
        bench.apps = apps;
        EXPECT_EQ(bench.underPressure(), body);
    }
}

TEST(OptimizerAlerts, everyKnownBrowserCounts) {
    for (const auto* id :
         {"com.google.Chrome", "com.brave.Browser", "com.apple.Safari", "com.microsoft.edgemac", "org.mozilla.firefox",
          "company.thebrowser.Browser", "com.operasoftware.Opera", "com.vivaldi.Vivaldi"}) {
        AlertsBench bench;
        bench.apps = {app(id, "A"), app(id, "B")};
        EXPECT_NE(bench.underPressure().find("A and B are both open"), std::string::npos) << id;
    }
}

TEST(OptimizerAlerts, aBackgroundApplicationThatKeepsACoreBusyIsToldAfterFiveMinutes) {
    AlertsBench bench;
    bench.apps = {app("org.example.chat", "Chat", 0.9)};
    bench.check();
    bench.time.advance(Seconds(299.9));
    bench.check();
    EXPECT_EQ(bench.posted(), 0U);
    bench.time.advance(Seconds(0.1));
    bench.apps[0].cpuCores = 1.25;
    bench.check();
    const std::string body = "Chat has kept 1.2 cores busy for 5 minutes while you weren't using it.";
    ASSERT_EQ(bench.posted(), 1U);
    EXPECT_EQ(bench.notifications.posted[0],
              (Notification{"runaway-org.example.chat", "Chat is working hard in the background", body}));
    ASSERT_EQ(bench.events.size(), 1U);
    EXPECT_EQ(bench.events[0], (ResourceEvent{.at = bench.time.now(),
                                              .kind = ResourceEventKind::runaway,
                                              .appID = "org.example.chat",
                                              .appName = "Chat",
                                              .detail = body}));
}

TEST(OptimizerAlerts, whatBreaksASpellOfBeingBusy) {
    const std::tuple<const char*, std::function<void(AlertsBench&)>, std::size_t> cases[] = {
        {"nothing", [](AlertsBench&) {}, 1},
        {"a dip below the threshold", [](AlertsBench& bench) { bench.apps[0].cpuCores = 0.89; }, 0},
        {"coming to the front", [](AlertsBench& bench) { bench.front = "org.example.chat"; }, 0},
        {"ending", [](AlertsBench& bench) { bench.apps.clear(); }, 0},
        {"a sample without CPU figures doesn't",
         [](AlertsBench& bench) {
             bench.hasCPU = false;
             bench.apps[0].cpuCores = 0;
         },
         1},
        {"a pause of the alerts doesn't",
         [](AlertsBench& bench) { bench.settings.set(OptimizerAlerts::runawayAlertsKey, false); }, 1},
    };
    for (const auto& [what, interrupt, alerts] : cases) {
        AlertsBench bench;
        bench.apps = {app("org.example.chat", "Chat", 1)};
        bench.checkFor(200);
        interrupt(bench);
        bench.check();
        bench.apps = {app("org.example.chat", "Chat", 1)};
        bench.front.reset();
        bench.hasCPU = true;
        bench.settings.set(OptimizerAlerts::runawayAlertsKey, true);
        bench.checkFor(200);
        EXPECT_EQ(bench.posted(), alerts) << what;
    }
}

TEST(OptimizerAlerts, anApplicationBelowTheThresholdNeverCounts) {
    AlertsBench bench;
    bench.apps = {app("org.example.chat", "Chat", 0.89)};
    bench.checkFor(4000);
    EXPECT_EQ(bench.posted(), 0U);
}

TEST(OptimizerAlerts, oneApplicationIsToldAgainAfterAnHourAndEachForItself) {
    AlertsBench bench;
    bench.apps = {app("a", "Ada", 1), app("b", "Bob", 1)};
    bench.checkFor(3890);
    EXPECT_EQ(bench.posted(), 2U);
    bench.checkFor(30);
    EXPECT_EQ(bench.posted(), 4U);
    EXPECT_EQ(bench.notifications.shown.size(), 2U);
}

TEST(OptimizerAlerts, theHourOfAnApplicationOutlivesItsSpell) {
    AlertsBench bench;
    bench.apps = {app("a", "Ada", 1)};
    bench.checkFor(310);
    bench.apps[0].cpuCores = 0;
    bench.check();
    bench.apps[0].cpuCores = 1;
    bench.checkFor(3500);
    EXPECT_EQ(bench.posted(), 1U);
}

TEST(OptimizerAlerts, thisProgramAndWithoutAFrontWhatHasNoIdentifierIsLeftOut) {
    AlertsBench bench;
    auto nameless = app("/usr/bin/cruncher", "cruncher", 1);
    nameless.bundleID.reset();
    bench.apps = {app("dev.example.optimizer", "Self", 4), nameless};
    bench.front.reset();
    bench.checkFor(400);
    EXPECT_EQ(bench.posted(), 0U) << "two absent identifiers count as equal";
    bench.front = "org.example.editor";
    bench.checkFor(400);
    EXPECT_EQ(bench.posted(), 1U);
    EXPECT_EQ(bench.notifications.posted[0].id, "runaway-/usr/bin/cruncher");
}

TEST(OptimizerAlerts, whatIsSwitchedOffIsNotTold) {
    AlertsBench bench;
    bench.settings.set(OptimizerAlerts::memoryAlertsKey, false);
    bench.settings.set(OptimizerAlerts::runawayAlertsKey, false);
    bench.pressure = MemoryPressure::critical;
    bench.apps = {app("a", "Ada", 4)};
    bench.checkFor(4000);
    EXPECT_EQ(bench.posted(), 0U);
    EXPECT_TRUE(bench.events.empty());
}

TEST(OptimizerAlerts, clickingOnAnAlertOpensTheDashboard) {
    AlertsBench bench;
    EXPECT_EQ(bench.notifications.observations, 0) << "nobody listens before the first alert";
    bench.underPressure();
    bench.checkFor(2000);
    EXPECT_EQ(bench.notifications.observations, 1);
    bench.notifications.click("memory");
    EXPECT_EQ(bench.opened, 1);
}

TEST(OptimizerAlerts, permissionIsAskedForOnlyWhenThePersonTurnsAnAlertOn) {
    AlertsBench bench;
    bench.underPressure();
    EXPECT_EQ(bench.notifications.permissionRequests, 0);
    bench.alerts.requestPermission();
    EXPECT_EQ(bench.notifications.permissionRequests, 1);
}

} // namespace
} // namespace kestrio
