#include "Kestrio/Platform/Linux/NativeHosts.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <map>
#include <nlohmann/json.hpp>
#include <set>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

const std::string file = "dev.haldorvinter.kestrio.tabs.json";

class NativeHostFiles : public testing::Test {
protected:
    /// Every file and link below the home, by its relative path.
    std::set<std::string> tree() const {
        std::set<std::string> all;
        for (const auto& each : fs::recursive_directory_iterator(home))
            if (!each.is_directory())
                all.insert(fs::relative(each.path(), home));
        return all;
    }
    static const Browser& browser(std::string_view bundleIdentifier) { return *knownBrowser(bundleIdentifier); }

    TemporaryFolder folder;
    fs::path home = folder.path() / "home";
    NativeHosts hosts{home, home / ".config", "/opt/kestrio/bin/kestrio-tabs"};

    void SetUp() override { fs::create_directory(home); }
};

TEST_F(NativeHostFiles, aManifestLetsOurExtensionAloneStartTheHost) {
    EXPECT_EQ(nativeHostManifest(BrowserFamily::chromium, "/opt/kestrio-tabs"), R"({
  "name": "dev.haldorvinter.kestrio.tabs",
  "description": "Tells Kestrio, on this computer, which tabs are open",
  "path": "/opt/kestrio-tabs",
  "type": "stdio",
  "allowed_origins": [
    "chrome-extension://hohgnikmikihpciphpobnoaofnnlmllm/"
  ]
}
)");
    EXPECT_EQ(nativeHostManifest(BrowserFamily::firefox, "/opt/a \"b\""), R"({
  "name": "dev.haldorvinter.kestrio.tabs",
  "description": "Tells Kestrio, on this computer, which tabs are open",
  "path": "/opt/a \"b\"",
  "type": "stdio",
  "allowed_extensions": [
    "tabs@kestrio.haldorvinter.dev"
  ]
}
)");
}

TEST_F(NativeHostFiles, thoseForEverybodyAreTheSame) {
    for (const auto& [family, name] :
         {std::pair(BrowserFamily::chromium, "chromium"), {BrowserFamily::firefox, "firefox"}}) {
        const auto place =
            fs::path(KESTRIO_SOURCE) / "Packaging/native-messaging-hosts" / (name + std::string(".json.in"));
        EXPECT_EQ(fileText(place), nativeHostManifest(family, "@KESTRIO_TABS@"));
    }
}

TEST_F(NativeHostFiles, everyBrowserHasItsPlaces) {
    struct Row {
        const char* bundleIdentifier;
        std::vector<std::string> user;
        const char* system;
    };
    const std::vector<std::string> mozilla{".mozilla/native-messaging-hosts/",
                                           ".config/mozilla/native-messaging-hosts/"};
    const Row rows[] = {
        {"com.google.Chrome",
         {".config/google-chrome/NativeMessagingHosts/"},
         "/etc/opt/chrome/native-messaging-hosts"},
        {"com.google.Chrome.beta",
         {".config/google-chrome-beta/NativeMessagingHosts/"},
         "/etc/opt/chrome/native-messaging-hosts"},
        {"com.google.Chrome.dev",
         {".config/google-chrome-unstable/NativeMessagingHosts/"},
         "/etc/opt/chrome/native-messaging-hosts"},
        {"com.google.Chrome.canary",
         {".config/google-chrome-canary/NativeMessagingHosts/"},
         "/etc/opt/chrome/native-messaging-hosts"},
        {"org.chromium.Chromium", {".config/chromium/NativeMessagingHosts/"}, "/etc/chromium/native-messaging-hosts"},
        {"com.brave.Browser",
         {".config/BraveSoftware/Brave-Browser/NativeMessagingHosts/"},
         "/etc/chromium/native-messaging-hosts"},
        {"com.brave.Browser.beta",
         {".config/BraveSoftware/Brave-Browser-Beta/NativeMessagingHosts/"},
         "/etc/chromium/native-messaging-hosts"},
        {"com.microsoft.edgemac",
         {".config/microsoft-edge/NativeMessagingHosts/"},
         "/etc/opt/edge/native-messaging-hosts"},
        {"com.microsoft.edgemac.Beta",
         {".config/microsoft-edge-beta/NativeMessagingHosts/"},
         "/etc/opt/edge/native-messaging-hosts"},
        {"com.vivaldi.Vivaldi", {".config/vivaldi/NativeMessagingHosts/"}, "/etc/opt/vivaldi/native-messaging-hosts"},
        {"com.operasoftware.Opera", {".config/opera/NativeMessagingHosts/"}, "/etc/opt/chrome/native-messaging-hosts"},
        {"org.mozilla.firefox", mozilla, "/usr/lib/mozilla/native-messaging-hosts"},
        {"org.mozilla.firefoxdeveloperedition", mozilla, "/usr/lib/mozilla/native-messaging-hosts"},
        {"org.mozilla.nightly", mozilla, "/usr/lib/mozilla/native-messaging-hosts"},
        {"app.zen-browser.zen", mozilla, "/usr/lib/mozilla/native-messaging-hosts"},
        {"net.waterfox.waterfox", mozilla, "/usr/lib/mozilla/native-messaging-hosts"},
    };
    EXPECT_EQ(std::size(rows), knownBrowsers().size());
    for (const auto& row : rows) {
        std::vector<fs::path> expected;
        for (const auto& place : row.user)
            expected.push_back(home / (place + file));
        EXPECT_EQ(hosts.manifests(browser(row.bundleIdentifier)), expected) << row.bundleIdentifier;
        EXPECT_EQ(browser(row.bundleIdentifier).systemFolder, row.system) << row.bundleIdentifier;
    }
}

TEST_F(NativeHostFiles, aFolderThatWouldMoveSomebodysProfilesIsNotMade) {
    const auto& firefox = browser("org.mozilla.firefox");
    fs::create_directories(home / ".config/mozilla/firefox");
    hosts.install(firefox);
    EXPECT_EQ(tree(), std::set<std::string>{".config/mozilla/native-messaging-hosts/" + file});
    fs::create_directories(home / ".mozilla/firefox");
    hosts.install(firefox);
    EXPECT_EQ(tree(), (std::set<std::string>{".config/mozilla/native-messaging-hosts/" + file,
                                             ".mozilla/native-messaging-hosts/" + file}));
    fs::create_directories(home / ".waterfox");
    hosts.install(browser("net.waterfox.waterfox"));
    EXPECT_TRUE(tree().contains(".waterfox/native-messaging-hosts/" + file));
}

TEST_F(NativeHostFiles, whatIsInstalledIsRemovedAgain) {
    for (const auto& each : knownBrowsers()) {
        EXPECT_FALSE(hosts.isInstalled(each, folder.path())) << each.name;
        EXPECT_FALSE(hosts.install(each)) << each.name;
        EXPECT_TRUE(hosts.isInstalled(each, folder.path())) << each.name;
        EXPECT_FALSE(hosts.install(each)) << "again";
        for (const auto& manifest : hosts.manifests(each))
            EXPECT_EQ(fileText(manifest), nativeHostManifest(each.family, "/opt/kestrio/bin/kestrio-tabs"));
        EXPECT_FALSE(hosts.remove(each)) << each.name;
        EXPECT_FALSE(hosts.isInstalled(each, folder.path())) << each.name;
        EXPECT_FALSE(hosts.remove(each)) << "again";
    }
    EXPECT_TRUE(tree().empty());
}

TEST_F(NativeHostFiles, aManifestForAProgramElsewhereIsNone) {
    const auto& chromium = browser("org.chromium.Chromium");
    NativeHosts(home, home / ".config", "/tmp/old/kestrio-tabs").install(chromium);
    EXPECT_FALSE(hosts.isInstalled(chromium, folder.path()));
    hosts.install(chromium);
    EXPECT_TRUE(hosts.isInstalled(chromium, folder.path()));
}

TEST_F(NativeHostFiles, aManifestForEverybodyWillDo) {
    folder.write("etc/chromium/native-messaging-hosts/" + file, "{}");
    EXPECT_TRUE(hosts.isInstalled(browser("org.chromium.Chromium"), folder.path()));
    EXPECT_FALSE(hosts.isInstalled(browser("com.google.Chrome"), folder.path()));
}

TEST_F(NativeHostFiles, aPlaceThatCannotBeWrittenIsAnError) {
    writeFile(home / ".config", "a file");
    EXPECT_TRUE(hosts.install(browser("org.chromium.Chromium")));
}

TEST_F(NativeHostFiles, thePlacesFollowTheDesktopsFoldersButNotOurs) {
    std::map<std::string, std::string> variables{{"HOME", "/home/ada"}, {"KESTRIO_HOME", "/tmp/trial"}};
    const auto environment = [&](const std::string& name) -> std::optional<std::string> {
        const auto found = variables.find(name);
        return found == variables.end() ? std::nullopt : std::optional(found->second);
    };
    const auto place = [&] {
        return NativeHosts::ofPerson(environment, "/bin/kestrio-tabs")
            ->manifests(browser("org.chromium.Chromium"))
            .front();
    };
    EXPECT_EQ(place(), "/home/ada/.config/chromium/NativeMessagingHosts/" + file);
    variables["XDG_CONFIG_HOME"] = "/home/ada/settings";
    EXPECT_EQ(place(), "/home/ada/settings/chromium/NativeMessagingHosts/" + file);
    variables.erase("HOME");
    EXPECT_FALSE(NativeHosts::ofPerson(environment, "/bin/kestrio-tabs"));
}

TEST(NativeHostExtension, itsNameFollowsFromTheKeyInItsManifest) {
    // The browsers' rule: the first half of the key's SHA-256, its digits as letters from a on. Made by
    //   base64 -d | sha256sum | head -c 32 | tr 0-9a-f a-p
    const auto manifest = nlohmann::json::parse(fileText(fs::path(KESTRIO_SOURCE) / "Extension/chromium.json"));
    EXPECT_EQ(manifest["key"].get<std::string>().substr(44, 12), "m/OrIboqLn1H");
    const auto other = nlohmann::json::parse(fileText(fs::path(KESTRIO_SOURCE) / "Extension/firefox.json"));
    EXPECT_EQ(other["browser_specific_settings"]["gecko"]["id"], firefoxExtension);
    for (const auto& each : {manifest, other}) {
        EXPECT_EQ(each["permissions"], (nlohmann::json{"nativeMessaging", "tabs"}));
        EXPECT_EQ(each["incognito"], "not_allowed");
    }
    const auto background = fileText(fs::path(KESTRIO_SOURCE) / "Extension/background.js");
    EXPECT_NE(background.find("\"" + std::string(nativeHostName) + "\""), std::string::npos);
}

} // namespace
} // namespace kestrio
