#include "Programs/CommandLine/BrowserTable.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace kestrio {
namespace {

BrowserFinding firefox() {
    BrowserFinding finding;
    finding.bundleIdentifier = "org.mozilla.firefox";
    finding.name = "Firefox";
    finding.family = BrowserFamily::firefox;
    return finding;
}

BrowserFinding chromium() {
    BrowserFinding finding;
    finding.bundleIdentifier = "org.chromium.Chromium";
    finding.name = "Chromium";
    return finding;
}

const std::string chromiumStep =
    "Open chrome://extensions, switch on Developer mode, choose Load unpacked and the folder /x/chromium";
const std::string firefoxStep =
    "Open about:debugging, choose This Firefox, Load Temporary Add-on and the file /x/firefox/manifest.json; where "
    "unsigned add-ons are allowed, install /x/firefox.xpi for good";

TEST(BrowserTable, eachSituationHasItsRemedy) {
    const struct {
        bool mayStartHost, isRunning;
        std::optional<bool> isConnected;
        std::string remedy;
    } rows[] = {
        {false, false, std::nullopt, "Run: kestrioctl browsers --install"},
        {false, true, false, "Run: kestrioctl browsers --install"},
        {true, true, std::nullopt, "Start the agent with: kestrio"},
        {true, false, false, ""},
        {true, true, false, chromiumStep},
        {true, true, true, ""},
        {false, true, true, ""},
    };
    for (const auto& row : rows) {
        auto finding = chromium();
        finding.mayStartHost = row.mayStartHost;
        finding.isRunning = row.isRunning;
        finding.isConnected = row.isConnected;
        EXPECT_EQ(browserRemedy(finding, "/x"), row.remedy) << row.remedy;
    }
}

TEST(BrowserTable, thoseThatAreHereHaveALineEach) {
    auto one = chromium();
    one.isInstalled = one.isRunning = one.mayStartHost = true;
    one.isConnected = false;
    auto other = firefox();
    other.isInstalled = other.mayStartHost = true;
    other.isConnected = true;
    other.isAccessible = true;
    BrowserFinding absent;
    absent.name = "Opera";
    EXPECT_EQ(browserTable({one, other, absent}, "/x", {80, false}),
              "  Browser                    Installed  Running  Connected  Accessible\n"
              "  Chromium                   yes        yes      no         unknown\n"
              "    " +
                  chromiumStep +
                  "\n"
                  "  Firefox                    yes        no       yes        yes\n");
    EXPECT_TRUE(browserTable({one}, "/x", {80, true}).starts_with("\x1B[1m  Browser"));
    EXPECT_EQ(browserTable({absent}, "/x", {80, false}), "  No browser that Kestrio knows is here.\n");
}

TEST(BrowserTable, asJSONWhatIsUnknownIsNull) {
    EXPECT_EQ(toJSON(firefox(), "/x").dump(),
              R"({"bundleID":"org.mozilla.firefox","name":"Firefox","installed":false,"running":false,)"
              R"("mayStartHost":false,"connected":null,"accessible":null,"remedy":null})");
    auto here = firefox();
    here.isInstalled = here.isRunning = here.mayStartHost = true;
    here.isConnected = false;
    EXPECT_EQ(toJSON(here, "/x").dump(),
              R"({"bundleID":"org.mozilla.firefox","name":"Firefox","installed":true,"running":true,)"
              R"("mayStartHost":true,"connected":false,"accessible":null,"remedy":")" +
                  firefoxStep + R"("})");
}

} // namespace
} // namespace kestrio
