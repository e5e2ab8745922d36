// Whether the browsers that the inspector knows are recognised under the names that they bear on this host.
#include "Kestrio/Activity/BrowserInspector.h"
#include "Kestrio/Platform/Linux/IdentityCatalogue.h"

#include <gtest/gtest.h>
#include <set>
#include <vector>

namespace kestrio {
namespace {

struct Browser {
    const char* identifier;
    std::vector<const char*> debian;  // desktop ids and window classes of packages, the makers' own among them
    std::vector<const char*> flathub; // or where else the maker offers a Flatpak
    std::vector<const char*> snap;
};

const Browser browsersOfThisHost[] = {
    {"com.google.Chrome", {"google-chrome", "Google-chrome"}, {"com.google.Chrome"}, {}},
    {"com.google.Chrome.beta", {"google-chrome-beta", "Google-chrome-beta"}, {}, {}},
    {"com.google.Chrome.dev", {"google-chrome-unstable", "Google-chrome-unstable"}, {"com.google.ChromeDev"}, {}},
    {"com.google.Chrome.canary", {"google-chrome-canary", "Google-chrome-canary"}, {}, {}},
    {"org.chromium.Chromium",
     {"chromium", "Chromium", "chromium-browser", "Chromium-browser"},
     {"org.chromium.Chromium", "io.github.ungoogled_software.ungoogled_chromium"},
     {"chromium_chromium"}},
    {"com.brave.Browser", {"brave-browser", "Brave-browser"}, {"com.brave.Browser"}, {"brave_brave"}},
    {"com.brave.Browser.beta", {"brave-browser-beta", "Brave-browser-beta"}, {}, {}},
    {"com.microsoft.edgemac", {"microsoft-edge", "Microsoft-edge"}, {"com.microsoft.Edge"}, {}},
    {"com.microsoft.edgemac.Beta", {"microsoft-edge-beta", "Microsoft-edge-beta"}, {}, {}},
    {"com.vivaldi.Vivaldi", {"vivaldi-stable", "Vivaldi-stable"}, {"com.vivaldi.Vivaldi"}, {"vivaldi_vivaldi-stable"}},
    {"com.operasoftware.Opera", {"opera", "Opera"}, {"com.opera.Opera"}, {"opera_opera"}},
    {"org.mozilla.firefox",
     {"firefox-esr", "firefox", "Firefox-esr", "firefox-beta"},
     {"org.mozilla.firefox"},
     {"firefox_firefox"}},
    {"org.mozilla.firefoxdeveloperedition",
     {"firefox-devedition", "firefox-aurora"},
     {"org.mozilla.FirefoxDevEdition"},
     {}},
    {"org.mozilla.nightly", {"firefox-nightly"}, {"org.mozilla.FirefoxNightly"}, {}},
    {"app.zen-browser.zen", {"zen"}, {"app.zen_browser.zen"}, {}},
    {"net.waterfox.waterfox", {"waterfox"}, {"net.waterfox.waterfox"}, {}},
};

/// There are none of these for this host.
const std::set<std::string_view> ofOtherHosts{"company.thebrowser.Browser", "com.apple.Safari",
                                              "com.apple.SafariTechnologyPreview", "com.kagi.kagimacOS",
                                              "com.openai.atlas"};

TEST(BrowserIdentity, everyBrowserThatTheInspectorKnowsIsOfThisHostOrOfAnother) {
    std::set<std::string_view> told(ofOtherHosts);
    for (const auto& browser : browsersOfThisHost)
        EXPECT_TRUE(told.insert(browser.identifier).second) << browser.identifier;
    std::set<std::string_view> known(BrowserInspector::titleOnly().begin(), BrowserInspector::titleOnly().end());
    for (const auto& [identifier, engine] : BrowserInspector::scriptable())
        known.insert(identifier);
    EXPECT_EQ(told, known);
}

TEST(BrowserIdentity, aBrowserIsRecognisedUnderTheNamesOfEveryPackager) {
    const auto& catalogue = IdentityCatalogue::builtIn();
    for (const auto& browser : browsersOfThisHost) {
        EXPECT_EQ(catalogue.identifierOfDesktopID(browser.identifier), browser.identifier);
        for (const auto& names : {browser.debian, browser.flathub, browser.snap})
            for (const auto* name : names)
                EXPECT_EQ(catalogue.identifierOfDesktopID(name), browser.identifier) << name;
    }
}

TEST(BrowserIdentity, noOtherNameLeadsToABrowserOfAnotherHost) {
    for (const auto identifier : ofOtherHosts)
        EXPECT_TRUE(IdentityCatalogue::builtIn().namesOf(identifier).empty()) << identifier;
}

} // namespace
} // namespace kestrio
