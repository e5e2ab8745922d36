#include "Kestrio/Platform/Linux/Browsers.h"

#include <algorithm>
#include <array>

namespace kestrio {
namespace {

using Base = NativeHostFolder::Base;
using When = NativeHostFolder::When;

constexpr std::string_view chromiumRest = "NativeMessagingHosts";
constexpr std::string_view firefoxRest = "native-messaging-hosts";

constexpr NativeHostFolder chromiumFolder(std::string_view top) {
    return {Base::config, top, chromiumRest};
}

constexpr std::array chrome{chromiumFolder("google-chrome")};
constexpr std::array chromeBeta{chromiumFolder("google-chrome-beta")};
constexpr std::array chromeDev{chromiumFolder("google-chrome-unstable")};
constexpr std::array chromeCanary{chromiumFolder("google-chrome-canary")};
constexpr std::array chromium{chromiumFolder("chromium")};
constexpr std::array brave{chromiumFolder("BraveSoftware/Brave-Browser")};
constexpr std::array braveBeta{chromiumFolder("BraveSoftware/Brave-Browser-Beta")};
constexpr std::array edge{chromiumFolder("microsoft-edge")};
constexpr std::array edgeBeta{chromiumFolder("microsoft-edge-beta")};
constexpr std::array vivaldi{chromiumFolder("vivaldi")};
constexpr std::array opera{chromiumFolder("opera")};

// Newer ones keep everything below ~/.config/mozilla and look there alone, unless there is a ~/.mozilla.
constexpr std::array mozilla{
    NativeHostFolder{Base::home, ".mozilla", firefoxRest, When::ifTopExistsOrNoOtherDoes},
    NativeHostFolder{Base::config, "mozilla", firefoxRest},
};
constexpr std::array waterfox{
    NativeHostFolder{Base::home, ".mozilla", firefoxRest, When::ifTopExistsOrNoOtherDoes},
    NativeHostFolder{Base::config, "mozilla", firefoxRest},
    NativeHostFolder{Base::home, ".waterfox", firefoxRest, When::ifTopExists},
};

constexpr std::string_view chromeSystem = "/etc/opt/chrome/native-messaging-hosts";
constexpr std::string_view chromiumSystem = "/etc/chromium/native-messaging-hosts";
constexpr std::string_view edgeSystem = "/etc/opt/edge/native-messaging-hosts";
constexpr std::string_view vivaldiSystem = "/etc/opt/vivaldi/native-messaging-hosts";
constexpr std::string_view mozillaSystem = "/usr/lib/mozilla/native-messaging-hosts";

constexpr auto chromiumFamily = BrowserFamily::chromium;
constexpr auto firefoxFamily = BrowserFamily::firefox;

// Chrome's development channel bears the word "unstable" in its names on this host.
constexpr Browser browsers[] = {
    {"com.google.Chrome", "Google Chrome", chromiumFamily, "", chrome, chromeSystem},
    {"com.google.Chrome.beta", "Google Chrome Beta", chromiumFamily, "chrome-beta", chromeBeta, chromeSystem},
    {"com.google.Chrome.dev", "Google Chrome Dev", chromiumFamily, "chrome-unstable", chromeDev, chromeSystem},
    {"com.google.Chrome.canary", "Google Chrome Canary", chromiumFamily, "chrome-canary", chromeCanary, chromeSystem},
    {"org.chromium.Chromium", "Chromium", chromiumFamily, "", chromium, chromiumSystem},
    {"com.brave.Browser", "Brave", chromiumFamily, "", brave, chromiumSystem},
    {"com.brave.Browser.beta", "Brave Beta", chromiumFamily, "brave-beta", braveBeta, chromiumSystem},
    {"com.microsoft.edgemac", "Microsoft Edge", chromiumFamily, "", edge, edgeSystem},
    {"com.microsoft.edgemac.Beta", "Microsoft Edge Beta", chromiumFamily, "msedge-beta", edgeBeta, edgeSystem},
    {"com.vivaldi.Vivaldi", "Vivaldi", chromiumFamily, "", vivaldi, vivaldiSystem},
    {"com.operasoftware.Opera", "Opera", chromiumFamily, "", opera, chromeSystem},
    {"org.mozilla.firefox", "Firefox", firefoxFamily, "", mozilla, mozillaSystem},
    {"org.mozilla.firefoxdeveloperedition", "Firefox Developer Edition", firefoxFamily, "firefox-devedition", mozilla,
     mozillaSystem},
    {"org.mozilla.nightly", "Firefox Nightly", firefoxFamily, "firefox-nightly", mozilla, mozillaSystem},
    {"app.zen-browser.zen", "Zen", firefoxFamily, "", mozilla, mozillaSystem},
    {"net.waterfox.waterfox", "Waterfox", firefoxFamily, "", waterfox, mozillaSystem},
};

} // namespace

std::span<const Browser> knownBrowsers() {
    return browsers;
}

const Browser* knownBrowser(std::string_view bundleIdentifier) {
    const auto found = std::find_if(std::begin(browsers), std::end(browsers), [&](const Browser& browser) {
        return browser.bundleIdentifier == bundleIdentifier;
    });
    return found == std::end(browsers) ? nullptr : found;
}

} // namespace kestrio
