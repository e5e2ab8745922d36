#include "Kestrio/Base/VirtualQueue.h"
#include "Kestrio/Shell/BrowserAccess.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace kestrio {
namespace {

using enum AutomationStatus;

constexpr auto browserID = "org.example.browser";

struct BrowserAccessTest : testing::Test {
    VirtualTime time{Date(1'700'000'000)};
    VirtualQueue worker{time, "worker"};
    VirtualQueue main{time, "main"};
    BrowserReadiness readiness;
    bool isInstalled = true;
    std::vector<std::string> steps; // what was done, "STEP" or "STEP while main"
    std::function<void()> consent = [] {};
    std::optional<BrowserStep> left = {};
    std::unique_ptr<Permissions> permissions;
    std::unique_ptr<BrowserAccess> access;
    const BrowserApp browser{browserID, "Browser"};

    BrowserAccessTest() {
        Permissions::Host host;
        host.applicationName = [this](const std::string&) {
            return isInstalled ? std::optional<std::string>("Browser") : std::nullopt;
        };
        host.readiness = [this](const std::string&) { return std::optional(readiness); };
        host.askForConsent = [this](const std::string&) {
            note("ask");
            consent();
        };
        host.openInBackground = [this](const BrowserApp& app) { note("open " + app.bundleID); };
        host.openPrivacyPane = [this](const std::string& anchor) { note("pane " + anchor); };
        host.stepLeft = [this](const BrowserApp&) { return left; };
        host.openStep = [this](const BrowserApp& app) { note("step of " + app.bundleID); };
        permissions = std::make_unique<Permissions>(std::set<std::string>{browserID}, "en_US", host);
        access = std::make_unique<BrowserAccess>(main, worker, *permissions);
    }

    void note(const std::string& step) { steps.push_back(step + (main.isCurrent() ? " while main" : "")); }

    std::vector<AutomationStatus> statuses() const {
        std::vector<AutomationStatus> result;
        for (const auto& permission : access->permissions().value())
            result.push_back(permission.status);
        return result;
    }
};

using Steps = std::vector<std::string>;
using Statuses = std::vector<AutomationStatus>;

TEST_F(BrowserAccessTest, nothingIsKnownBeforeTheFirstRefresh) {
    time.runPending();
    EXPECT_TRUE(access->permissions().value().empty());
}

TEST_F(BrowserAccessTest, aRefreshReadsEveryInstalledBrowserAndAsksNobody) {
    access->refresh();
    EXPECT_TRUE(access->permissions().value().empty()) << "waited for the answer";
    time.runPending();
    EXPECT_EQ(access->permissions().value(), (std::vector<BrowserPermission>{{browser, notRunning}}));
    readiness.isRunning = true;
    access->refresh();
    time.runPending();
    EXPECT_EQ(statuses(), Statuses{notDetermined});
    isInstalled = false;
    access->refresh();
    time.runPending();
    EXPECT_TRUE(access->permissions().value().empty());
    EXPECT_TRUE(steps.empty());
}

TEST_F(BrowserAccessTest, observersHearOnlyOfChanges) {
    int told = 0;
    const auto token = access->permissions().observe([&](const auto&) { ++told; });
    for (int i = 0; i < 3; ++i) {
        access->refresh();
        time.runPending();
    }
    EXPECT_EQ(told, 1);
}

TEST_F(BrowserAccessTest, aRunningBrowserIsAskedAtOnceAndOffTheMainThread) {
    readiness.isRunning = true;
    consent = [this] { readiness.isBridgeConnected = true; };
    access->request(browser);
    time.runPending();
    EXPECT_EQ(steps, Steps{"ask"});
    EXPECT_EQ(statuses(), Statuses{granted});
}

TEST_F(BrowserAccessTest, aBrowserThatDoesNotRunIsStartedAndAskedTwoSecondsLater) {
    access->request(browser);
    time.runPending();
    EXPECT_EQ(steps, Steps{"open org.example.browser"});
    readiness.isRunning = true;
    time.advance(Seconds(1.9));
    EXPECT_EQ(steps.size(), 1U);
    consent = [this] { readiness.isAccessibilityReadable = true; };
    time.advance(Seconds(0.1));
    EXPECT_EQ(steps, (Steps{"open org.example.browser", "ask"}));
    EXPECT_EQ(statuses(), Statuses{granted});
    time.advance(Seconds(60));
    EXPECT_EQ(steps.size(), 2U);
}

TEST_F(BrowserAccessTest, aBrowserThatDoesNotStartReadsAsNotRunning) {
    access->request(browser);
    time.advance(Seconds(3));
    EXPECT_EQ(steps, Steps{"open org.example.browser"});
    EXPECT_EQ(statuses(), Statuses{notRunning});
}

TEST_F(BrowserAccessTest, whereTheAnswerWasNoThePrivacyPaneOpens) {
    readiness = {.isRunning = true, .isRefused = true};
    access->request(browser);
    time.runPending();
    EXPECT_EQ(steps, Steps{"pane Privacy_Automation"}) << "asking again is no use";
    EXPECT_EQ(statuses(), Statuses{denied});
}

TEST_F(BrowserAccessTest, aNoJustGivenOpensThePrivacyPaneToo) {
    readiness.isRunning = true;
    consent = [this] { readiness.isRefused = true; };
    access->request(browser);
    time.runPending();
    EXPECT_EQ(steps, (Steps{"ask", "pane Privacy_Automation"}));
    EXPECT_EQ(statuses(), Statuses{denied});
}

TEST_F(BrowserAccessTest, pickingABrowserTwiceWhileItStartsAsksOnce) {
    access->request(browser);
    time.advance(Seconds(1));
    access->request(browser);
    time.runPending();
    readiness.isRunning = true;
    time.advance(Seconds(10));
    EXPECT_EQ(std::count(steps.begin(), steps.end(), "ask"), 1);
}

TEST_F(BrowserAccessTest, whatIsLeftToThePersonIsToldUntilTheBrowserCanBeRead) {
    readiness.isRunning = true;
    left = BrowserStep{"Do this.", "There"};
    int told = 0;
    const auto token = access->stepsLeft().observe([&](const auto&) { ++told; });
    access->refresh();
    time.runPending();
    EXPECT_TRUE(access->stepsLeft().value().empty()) << "nobody asked";
    access->request(browser);
    time.runPending();
    EXPECT_EQ(access->stepsLeft().value(), (BrowserAccess::Steps{{browserID, *left}}));
    access->openStep(browser);
    time.runPending();
    EXPECT_EQ(steps, (Steps{"ask", "step of org.example.browser"}));
    readiness.isRunning = false;
    access->refresh();
    time.runPending();
    EXPECT_EQ(access->stepsLeft().value().size(), 1U) << "closed, and to be opened again";
    readiness = {.isRunning = true, .isBridgeConnected = true};
    access->refresh();
    time.runPending();
    EXPECT_EQ(statuses(), Statuses{granted});
    EXPECT_TRUE(access->stepsLeft().value().empty());
    EXPECT_EQ(told, 2);
}

TEST_F(BrowserAccessTest, whoeverGivesConsentAtOnceHasNothingLeftToDo) {
    readiness.isRunning = true;
    left = BrowserStep{"Do this.", std::nullopt};
    consent = [this] { readiness.isAccessibilityReadable = true; };
    access->request(browser);
    time.runPending();
    EXPECT_EQ(statuses(), Statuses{granted});
    EXPECT_TRUE(access->stepsLeft().value().empty());
}

TEST_F(BrowserAccessTest, aStepIsReplacedByTheNextOneOrByNone) {
    readiness.isRunning = true;
    for (const auto& next : {std::optional(BrowserStep{"One.", "A"}), std::optional(BrowserStep{"Two.", std::nullopt}),
                             std::optional<BrowserStep>()}) {
        left = next;
        access->request(browser);
        time.runPending();
        EXPECT_EQ(access->stepsLeft().value(),
                  next ? BrowserAccess::Steps({{browserID, *next}}) : BrowserAccess::Steps());
    }
}

TEST_F(BrowserAccessTest, anAnswerThatComesTooLateIsDropped) {
    access->refresh();
    access->request(browser);
    access.reset();
    time.advance(Seconds(10));
    access = std::make_unique<BrowserAccess>(main, worker, *permissions);
    EXPECT_TRUE(access->permissions().value().empty());
}

} // namespace
} // namespace kestrio
