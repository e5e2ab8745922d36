#include "Kestrio/Activity/Permissions.h"

#include <gtest/gtest.h>
#include <map>

namespace kestrio {
namespace {

using enum AutomationStatus;
using Asking = Permissions::Asking;

struct PermissionsTest : testing::Test {
    std::map<std::string, std::string> names;
    std::map<std::string, BrowserReadiness> readiness;
    std::vector<std::string> asked;
    std::vector<std::string> panes;
    std::function<void(BrowserReadiness&)> answer = [](BrowserReadiness&) {};

    Permissions make(const std::set<std::string>& browsers = {}, const std::string& locale = "en_US") {
        Permissions::Host host;
        host.applicationName = [this](const std::string& id) {
            const auto found = names.find(id);
            return found == names.end() ? std::nullopt : std::optional(found->second);
        };
        host.readiness = [this](const std::string& id) {
            const auto found = readiness.find(id);
            return found == readiness.end() ? std::nullopt : std::optional(found->second);
        };
        host.askForConsent = [this](const std::string& id) {
            asked.push_back(id);
            answer(readiness[id]);
        };
        host.openPrivacyPane = [this](const std::string& anchor) { panes.push_back(anchor); };
        return {browsers, locale, host};
    }
};

TEST_F(PermissionsTest, theStatusFollowsFromWhatTheBrowserOffers) {
    const struct {
        BrowserReadiness readiness;
        AutomationStatus status;
    } rows[] = {
        {{false, false, false, false}, notRunning}, {{false, false, false, true}, notRunning},
        {{false, true, true, false}, notRunning},   {{true, false, false, false}, notDetermined},
        {{true, true, false, false}, granted},      {{true, false, true, false}, granted},
        {{true, true, true, false}, granted},       {{true, false, false, true}, denied},
        {{true, true, false, true}, denied},        {{true, false, true, true}, denied},
        {{true, true, true, true}, denied},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Permissions::status(row.readiness), row.status)
            << row.readiness.isRunning << row.readiness.isBridgeConnected << row.readiness.isAccessibilityReadable
            << row.readiness.isRefused;
    EXPECT_EQ(Permissions::status(std::nullopt), unknown);
}

TEST_F(PermissionsTest, onlyInstalledBrowsersThatCanBeReadAreListed) {
    names = {{"org.example.one", "One"}, {"org.example.editor", "Editor"}};
    EXPECT_EQ(make({"org.example.one", "org.example.absent"}).installedScriptableBrowsers(),
              (std::vector<BrowserApp>{{"org.example.one", "One"}}));
    EXPECT_TRUE(make().installedScriptableBrowsers().empty());
}

TEST_F(PermissionsTest, browsersAreListedByNameAsThePersonsLanguageOrdersThem) {
    names = {{"a", "Vivaldi"}, {"b", "chromium"}, {"c", "Ångström"}, {"d", "Brave"}, {"e", "CHROMIUM"}};
    const auto order = [this](const std::string& locale) {
        std::string ids;
        for (const auto& browser : make({"a", "b", "c", "d", "e"}, locale).installedScriptableBrowsers())
            ids += browser.bundleID;
        return ids;
    };
    EXPECT_EQ(order("en_US"), "cdbea") << "names that differ in case alone keep the order of their identifiers";
    EXPECT_EQ(order("sv_SE"), "dbeac");
}

TEST_F(PermissionsTest, withoutAskingNobodyIsAsked) {
    readiness["org.example.one"] = {.isRunning = true};
    EXPECT_EQ(make().automationStatus("org.example.one", Asking::no), notDetermined);
    EXPECT_TRUE(asked.empty());
}

TEST_F(PermissionsTest, askingIsNeededOnlyWhileNothingIsDecided) {
    readiness = {{"runs", {.isRunning = true}},
                 {"absent", {}},
                 {"open", {.isRunning = true, .isBridgeConnected = true}},
                 {"refused", {.isRunning = true, .isRefused = true}}};
    answer = [](BrowserReadiness& one) { one.isAccessibilityReadable = true; };
    const auto permissions = make();
    EXPECT_EQ(permissions.automationStatus("runs", Asking::ifNeeded), granted);
    EXPECT_EQ(permissions.automationStatus("absent", Asking::ifNeeded), notRunning);
    EXPECT_EQ(permissions.automationStatus("open", Asking::ifNeeded), granted);
    EXPECT_EQ(permissions.automationStatus("refused", Asking::ifNeeded), denied);
    EXPECT_EQ(permissions.automationStatus("unheard of", Asking::ifNeeded), unknown);
    EXPECT_EQ(asked, std::vector<std::string>{"runs"});
}

TEST_F(PermissionsTest, theAnswerOfThePersonCounts) {
    readiness["org.example.one"] = {.isRunning = true};
    EXPECT_EQ(make().automationStatus("org.example.one", Asking::ifNeeded), notDetermined) << "no answer";
    answer = [](BrowserReadiness& one) { one.isRefused = true; };
    EXPECT_EQ(make().automationStatus("org.example.one", Asking::ifNeeded), denied);
}

TEST_F(PermissionsTest, aHostThatOffersNothingAnswersNothing) {
    const Permissions permissions({"org.example.one"}, "", {});
    EXPECT_TRUE(permissions.installedScriptableBrowsers().empty());
    EXPECT_EQ(permissions.automationStatus("org.example.one", Asking::ifNeeded), unknown);
    permissions.openInBackground({"org.example.one", "One"});
    permissions.openPrivacyPane(Permissions::automationPane);
}

TEST_F(PermissionsTest, privacyPanesAreOpenedByTheirNames) {
    const auto permissions = make();
    permissions.openPrivacyPane(Permissions::accessibilityPane);
    permissions.openPrivacyPane(Permissions::automationPane);
    EXPECT_EQ(panes, (std::vector<std::string>{"Privacy_Accessibility", "Privacy_Automation"}));
}

TEST(Permissions, aStepIsWhatTheHostSaysAndNothingWhereItSaysNothing) {
    const BrowserApp browser{"org.example.one", "One"};
    const Permissions silent({}, "en_US", {});
    EXPECT_EQ(silent.stepLeft(browser), std::nullopt);
    silent.openStep(browser);
    std::vector<std::string> opened;
    Permissions::Host host;
    host.stepLeft = [](const BrowserApp& app) { return BrowserStep{"Do this in " + app.name + ".", "There"}; };
    host.openStep = [&](const BrowserApp& app) { opened.push_back(app.bundleID); };
    const Permissions permissions({}, "en_US", host);
    EXPECT_EQ(permissions.stepLeft(browser), (BrowserStep{"Do this in One.", "There"}));
    permissions.openStep(browser);
    EXPECT_EQ(opened, std::vector<std::string>{"org.example.one"});
}

} // namespace
} // namespace kestrio
