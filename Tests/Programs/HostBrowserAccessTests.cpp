#include "Kestrio/Base/VirtualQueue.h"
#include "Programs/Window/HostBrowserAccess.h"
#include "Tests/Link/ScriptedAgent.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;
using enum AutomationStatus;

constexpr auto chromium = "org.chromium.Chromium";
constexpr auto firefox = "org.mozilla.firefox";

/// A home with two browsers installed, and an agent that follows a script.
struct BrowserAccessOfHost : testing::Test {
    BrowserAccessOfHost() {
        install("chromium", "Chromium", "/usr/bin/chromium %U");
        install("firefox-esr", "Firefox ESR", "/usr/lib/firefox-esr/firefox-esr %u");
        link.start();
        time.runPending();
    }

    void install(const std::string& id, const std::string& name, const std::string& exec) {
        folder.write("share/applications/" + id + ".desktop",
                     "[Desktop Entry]\nType=Application\nName=" + name + "\nExec=" + exec + "\n");
    }

    HostBrowserAccess& host() {
        if (!made) {
            made = std::make_unique<HostBrowserAccess>(
                main, worker, link, time,
                HostBrowserAccess::Host{[this](const std::string& name) -> std::optional<std::string> {
                                            if (name == "HOME")
                                                return (folder.path() / "home").string();
                                            if (name == "XDG_DATA_DIRS")
                                                return (folder.path() / "share").string();
                                            return std::nullopt;
                                        },
                                        folder.path() / "bin", "en_GB",
                                        [this](const std::vector<std::string>& command, bool inBackground) {
                                            std::string line = inBackground ? "in the background:" : "";
                                            for (const auto& word : command)
                                                line += (line.empty() ? "" : " ") + word;
                                            started.push_back(line);
                                        }});
            time.runPending();
        }
        return *made;
    }

    /// The agent says something else from now on.
    void tell(std::optional<std::vector<BrowserReading>> browsers) {
        script.browsers = std::move(browsers);
        script.browserChanges.emit();
        time.runPending();
    }

    void request(const std::string& id, const std::string& name) {
        host().access().request({id, name});
        time.runPending();
    }

    std::vector<BrowserPermission> permissions() { return host().access().permissions().value(); }
    std::optional<BrowserStep> step(const std::string& id) {
        const auto& steps = host().access().stepsLeft().value();
        const auto found = steps.find(id);
        return found == steps.end() ? std::nullopt : std::optional(found->second);
    }

    std::string manifest(const std::string& place) const {
        return fileText(folder.path() / "home" / place / "dev.haldorvinter.kestrio.tabs.json");
    }
    std::string path(const std::string& place) const { return (folder.path() / place).string(); }

    TemporaryFolder folder;
    VirtualTime time{Date(1'700'000'000)};
    VirtualQueue main{time, "main"};
    VirtualQueue worker{time, "worker"};
    AgentScript script;
    bool isAgentThere = true;
    std::function<void()> gone;
    AgentLink link{main, worker, [this](auto left) -> std::optional<AgentConnection> {
                       if (!isAgentThere)
                           return std::nullopt;
                       gone = left;
                       return AgentConnection{std::make_unique<ScriptedAgent>(script), [] {}, {}};
                   }};
    std::vector<std::string> started;
    std::unique_ptr<HostBrowserAccess> made;
};

const BrowserApp chromiumApp{chromium, "Chromium"};
const BrowserApp firefoxApp{firefox, "Firefox ESR"};
using All = std::vector<BrowserPermission>;

TEST_F(BrowserAccessOfHost, everyWayOfReadingABrowserIsAStatus) {
    const struct {
        std::vector<BrowserReading> told;
        AutomationStatus chromium;
    } rows[] = {
        {{}, notRunning},
        {{{firefox, "Firefox", true, true}}, notRunning},
        {{{chromium, "Chromium", false, false}}, notDetermined},
        {{{chromium, "Chromium", true, false}}, granted},
        {{{chromium, "Chromium", false, true}}, granted},
        {{{chromium, "Chromium", true, true}}, granted},
    };
    for (const auto& row : rows) {
        tell(row.told);
        ASSERT_EQ(permissions().size(), 2U);
        EXPECT_EQ(permissions().front(), (BrowserPermission{chromiumApp, row.chromium}));
    }
}

TEST_F(BrowserAccessOfHost, aChangeIsTakenOverWithoutBeingAskedFor) {
    EXPECT_EQ(permissions(), (All{{chromiumApp, notRunning}, {firefoxApp, notRunning}}));
    tell({{{firefox, "Firefox", false, false}}});
    EXPECT_EQ(permissions(), (All{{chromiumApp, notRunning}, {firefoxApp, notDetermined}}));
    tell({{{firefox, "Firefox", true, false}}});
    EXPECT_EQ(permissions(), (All{{chromiumApp, notRunning}, {firefoxApp, granted}}));
    tell({{}});
    EXPECT_EQ(permissions(), (All{{chromiumApp, notRunning}, {firefoxApp, notRunning}}));
}

TEST_F(BrowserAccessOfHost, ofAnAgentThatCannotTellNothingIsKnown) {
    tell(std::nullopt);
    EXPECT_EQ(permissions(), All());
    tell({{{chromium, "Chromium", false, false}}});
    EXPECT_EQ(permissions().front().status, notDetermined);
}

TEST_F(BrowserAccessOfHost, anAgentThatComesBackIsAskedAnew) {
    tell({{{chromium, "Chromium", true, false}}});
    EXPECT_EQ(permissions().front().status, granted);
    isAgentThere = false;
    gone();
    time.runPending();
    host().access().refresh();
    time.runPending();
    EXPECT_EQ(permissions(), All()) << "nobody knows";
    isAgentThere = true;
    script.browsers = {{chromium, "Chromium", false, false}};
    time.advance(AgentLink::retryInterval);
    time.runPending();
    EXPECT_EQ(permissions().front().status, notDetermined);
}

TEST_F(BrowserAccessOfHost, allowingChromiumLetsItStartTheHostAndSaysWhatIsLeft) {
    tell({{{chromium, "Chromium", false, false}}});
    request(chromium, "Chromium");
    EXPECT_NE(manifest(".config/chromium/NativeMessagingHosts").find(path("bin/kestrio-tabs")), std::string::npos);
    EXPECT_EQ(manifest(".mozilla/native-messaging-hosts"), "");
    EXPECT_EQ(step(chromium),
              (BrowserStep{"Chromium may now tell of its tabs, and one step is left to you. Open chrome://extensions, "
                           "switch on Developer mode, choose Load unpacked and the folder " +
                               path("share/kestrio/extension/chromium") + ".",
                           "Show Folder"}));
    EXPECT_EQ(permissions().front().status, notDetermined);
    host().access().openStep(chromiumApp);
    time.runPending();
    EXPECT_EQ(started, std::vector<std::string>{"xdg-open " + path("share/kestrio/extension")});
    tell({{{chromium, "Chromium", true, false}}});
    EXPECT_EQ(permissions().front().status, granted);
    EXPECT_EQ(step(chromium), std::nullopt);
}

TEST_F(BrowserAccessOfHost, allowingFirefoxLeadsToItsOwnPage) {
    tell({{{firefox, "Firefox", false, false}}});
    request(firefox, "Firefox ESR");
    EXPECT_NE(manifest(".mozilla/native-messaging-hosts").find(path("bin/kestrio-tabs")), std::string::npos);
    EXPECT_NE(manifest(".config/mozilla/native-messaging-hosts"), "");
    EXPECT_EQ(step(firefox),
              (BrowserStep{"Firefox ESR may now tell of its tabs, and one step is left to you. Open about:debugging, "
                           "choose This Firefox, Load Temporary Add-on and the file " +
                               path("share/kestrio/extension/firefox/manifest.json") +
                               "; where unsigned add-ons are allowed, install " +
                               path("share/kestrio/extension/firefox.xpi") + " for good.",
                           "Open Settings"}));
    host().access().openStep(firefoxApp);
    time.runPending();
    EXPECT_EQ(started,
              std::vector<std::string>{"/usr/lib/firefox-esr/firefox-esr about:debugging#/runtime/this-firefox"});
}

TEST_F(BrowserAccessOfHost, aBrowserThatDoesNotRunIsLetInAndStartedInTheBackground) {
    request(chromium, "Chromium");
    EXPECT_EQ(started, std::vector<std::string>{"in the background: /usr/bin/chromium"});
    EXPECT_NE(manifest(".config/chromium/NativeMessagingHosts"), "") << "it looks for it as it starts";
    tell({{{chromium, "Chromium", false, false}}});
    time.advance(BrowserAccess::patienceAfterStart);
    time.runPending();
    EXPECT_TRUE(step(chromium)) << "its extension is not there yet";
}

TEST_F(BrowserAccessOfHost, whereNothingCanBeWrittenItIsDeniedUntilThatIsMended) {
    folder.write("home/.config/chromium", "in the way");
    tell({{{chromium, "Chromium", false, false}}});
    request(chromium, "Chromium");
    EXPECT_EQ(permissions().front().status, denied);
    const auto left = step(chromium);
    ASSERT_TRUE(left);
    EXPECT_EQ(left->text, "Chromium could not be let in: in " + path("home/.config/chromium/NativeMessagingHosts") +
                              " nothing can be written (Not a directory). Mend that, and it goes on by itself.");
    EXPECT_EQ(left->button, "Show Folder");
    host().access().openStep(chromiumApp);
    time.runPending();
    EXPECT_EQ(started, std::vector<std::string>{"xdg-open " + path("home/.config")});
    fs::remove(folder.path() / "home/.config/chromium");
    host().access().refresh();
    time.runPending();
    EXPECT_EQ(permissions().front().status, notDetermined);
    EXPECT_NE(manifest(".config/chromium/NativeMessagingHosts"), "");
    request(chromium, "Chromium");
    EXPECT_NE(step(chromium)->text.find("one step is left"), std::string::npos);
}

TEST_F(BrowserAccessOfHost, aBrowserThatCanBeReadIsNotDeniedWhateverCouldNotBeWritten) {
    folder.write("home/.config/chromium", "in the way");
    tell({{{chromium, "Chromium", false, false}}});
    request(chromium, "Chromium");
    tell({{{chromium, "Chromium", false, true}}});
    EXPECT_EQ(permissions().front().status, granted);
}

TEST_F(BrowserAccessOfHost, aBrowserInASandboxIsReadByAccessibilityAlone) {
    install("chromium", "Chromium", "/snap/bin/chromium %U");
    tell({{{chromium, "Chromium", false, false}}});
    request(chromium, "Chromium");
    EXPECT_EQ(manifest(".config/chromium/NativeMessagingHosts"), "");
    EXPECT_EQ(permissions().front().status, notDetermined);
    EXPECT_EQ(step(chromium),
              (BrowserStep{"Chromium runs in a sandbox that keeps it from telling of its tabs by an extension. Switch "
                           "on accessibility for this desktop and start it again; very large pages then take it longer "
                           "to show. In a terminal: gsettings set org.gnome.desktop.interface toolkit-accessibility "
                           "true",
                           std::nullopt}));
}

TEST_F(BrowserAccessOfHost, whatTheAgentTellsAfterItsEndIsNotHeard) {
    host();
    made.reset();
    tell({{{chromium, "Chromium", true, false}}});
}

} // namespace
} // namespace kestrio
