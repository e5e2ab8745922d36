#include "Kestrio/Base/VirtualQueue.h"
#include "Kestrio/Platform/Linux/BrowserProcess.h"
#include "Kestrio/Platform/Linux/Browsers.h"
#include "Tests/Support/TemporaryFolder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <set>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

/// A made-up /proc.
class BrowserProcess : public testing::Test {
protected:
    void process(pid_t number, pid_t parent, const std::string& program, const std::string& group = "/") {
        const auto place = fs::path("proc") / std::to_string(number);
        const auto name = fs::path(program).filename().string();
        folder.write(place / "stat", std::to_string(number) + " (" + name + ") S " + std::to_string(parent) +
                                         " 1 1 0 -1 0 0 0 0 0 0 0 0 0 20 0 1 0 4711 0 0\n");
        folder.write(place / "cmdline", program + '\0');
        folder.write(place / "cgroup", "0::" + group + "\n");
        fs::create_symlink(program, folder.path() / place / "exe");
    }

    std::optional<std::string> browser(pid_t number) { return browserOfProcess(identity, number); }

    TemporaryFolder folder;
    VirtualTime time{Date(0)};
    DesktopEntries entries{{folder.path() / "applications"}, "", time};
    ApplicationIdentity identity{entries, IdentityCatalogue::builtIn(), folder.path() / "proc"};
};

TEST_F(BrowserProcess, everyKnownBrowserIsKnownByItsProgram) {
    const std::pair<const char*, const char*> rows[] = {
        {"/opt/google/chrome/chrome", "com.google.Chrome"},
        {"/opt/google/chrome-beta/chrome", "com.google.Chrome.beta"},
        {"/opt/google/chrome-unstable/chrome", "com.google.Chrome.dev"},
        {"/opt/google/chrome-canary/chrome", "com.google.Chrome.canary"},
        {"/usr/lib/chromium/chromium", "org.chromium.Chromium"},
        {"/opt/brave.com/brave/brave", "com.brave.Browser"},
        {"/opt/brave.com/brave-beta/brave", "com.brave.Browser.beta"},
        {"/opt/microsoft/msedge/msedge", "com.microsoft.edgemac"},
        {"/opt/microsoft/msedge-beta/msedge", "com.microsoft.edgemac.Beta"},
        {"/opt/vivaldi/vivaldi-bin", "com.vivaldi.Vivaldi"},
        {"/usr/lib/x86_64-linux-gnu/opera/opera", "com.operasoftware.Opera"},
        {"/usr/lib/firefox-esr/firefox-esr", "org.mozilla.firefox"},
        {"/usr/lib/firefox/firefox", "org.mozilla.firefox"},
        {"/usr/lib/firefox-devedition/firefox", "org.mozilla.firefoxdeveloperedition"},
        {"/usr/lib/firefox-nightly/firefox", "org.mozilla.nightly"},
        {"/opt/zen/zen", "app.zen-browser.zen"},
        {"/opt/waterfox/waterfox", "net.waterfox.waterfox"},
        {"/usr/bin/xterm", nullptr},
        {"/usr/lib/thunderbird/thunderbird", nullptr},
    };
    pid_t number = 100;
    std::set<std::string> seen;
    for (const auto& [program, expected] : rows) {
        process(++number, 1, program);
        EXPECT_EQ(browser(number).value_or(""), expected ? expected : "") << program;
        seen.insert(browser(number).value_or(""));
    }
    for (const auto& known : knownBrowsers())
        EXPECT_TRUE(seen.contains(std::string(known.bundleIdentifier))) << known.name;
    EXPECT_EQ(browser(9999), std::nullopt);
}

TEST_F(BrowserProcess, whatABrowserWasStartedFromIsNotTheBrowser) {
    folder.write("applications/google-chrome.desktop",
                 "[Desktop Entry]\nType=Application\nName=Chrome\nExec=/usr/bin/google-chrome-stable\n");
    folder.write("applications/firefox.desktop",
                 "[Desktop Entry]\nType=Application\nName=Firefox\nExec=firefox %u\nStartupWMClass=firefox\n");
    folder.write(
        "applications/xfce4-terminal.desktop",
        "[Desktop Entry]\nType=Application\nName=Terminal\nExec=xfce4-terminal\nCategories=TerminalEmulator;\n");
    process(10, 1, "/usr/lib/firefox/firefox", "/app.slice/app-google\\x2dchrome-17.scope");
    process(11, 1, "/usr/lib/firefox/firefox", "/app.slice/app-xfce4\\x2dterminal-18.scope");
    EXPECT_EQ(browser(10), "org.mozilla.firefox");
    EXPECT_EQ(browser(11), "org.mozilla.firefox");
}

TEST_F(BrowserProcess, aHostServesTheNearestBrowserThatStartedIt) {
    process(10, 1, "/usr/lib/chromium/chromium");
    process(11, 10, "/usr/lib/firefox-esr/firefox-esr");
    process(12, 11, "/bin/sh");
    process(13, 12, "/usr/bin/kestrio-tabs");
    EXPECT_EQ(browserThatStarted(identity, 13), "org.mozilla.firefox");
    EXPECT_EQ(browserThatStarted(identity, 11), "org.chromium.Chromium");
    EXPECT_EQ(browserThatStarted(identity, 10), std::nullopt);
    EXPECT_EQ(browserThatStarted(identity, 4711), std::nullopt) << "it has gone";
}

TEST_F(BrowserProcess, aCircleOrALongLineOfParentsComesToAnEnd) {
    process(20, 21, "/bin/sh");
    process(21, 20, "/bin/sh");
    EXPECT_EQ(browserThatStarted(identity, 20), std::nullopt);
}

TEST_F(BrowserProcess, eachKnownBrowserHasPlacesOfItsOwn) {
    for (const auto& known : knownBrowsers()) {
        EXPECT_EQ(knownBrowser(known.bundleIdentifier), &known);
        EXPECT_FALSE(known.userFolders.empty()) << known.name;
        EXPECT_TRUE(known.systemFolder.starts_with('/')) << known.name;
        EXPECT_FALSE(IdentityCatalogue::builtIn().namesOf(known.bundleIdentifier).empty()) << known.name;
    }
    EXPECT_EQ(knownBrowser("org.example"), nullptr);
}

TEST_F(BrowserProcess, theRunningOnesAreThoseWithAProcessEachNamedOnce) {
    EXPECT_EQ(runningBrowsers(identity), std::set<std::string>()) << "no processes at all";
    process(100, 1, "/usr/lib/chromium/chromium");
    process(101, 100, "/usr/lib/chromium/chromium");
    process(102, 1, "/usr/lib/firefox-esr/firefox-esr");
    process(103, 1, "/usr/bin/xterm");
    folder.write("proc/self/stat", "");
    folder.write("proc/104x/stat", "");
    EXPECT_EQ(runningBrowsers(identity), (std::set<std::string>{"org.chromium.Chromium", "org.mozilla.firefox"}));
}

} // namespace
} // namespace kestrio
