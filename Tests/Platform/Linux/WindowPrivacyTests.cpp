#include "Kestrio/Platform/Linux/WindowPrivacy.h"

#include <gtest/gtest.h>

namespace kestrio {

void PrintTo(WindowPrivacy privacy, std::ostream* out) {
    *out << std::array{"ordinary", "private", "unknown"}.at(static_cast<std::size_t>(privacy));
}

namespace {

TEST(WindowPrivacy, aTitleTellsAsMuchAsItsBrowserPutsIntoIt) {
    const struct {
        const char* id;
        const char* title;
        WindowPrivacy privacy;
    } rows[] = {
        {"org.mozilla.firefox", "Mozilla Firefox", WindowPrivacy::ordinary},
        {"org.mozilla.firefox", "Page — Mozilla Firefox", WindowPrivacy::ordinary},
        {"org.mozilla.firefox", "Page — Work — Mozilla Firefox", WindowPrivacy::ordinary},
        {"org.mozilla.firefox", "Private Browsing — how it works — Mozilla Firefox", WindowPrivacy::ordinary},
        {"org.mozilla.firefox", "Page – Mozilla Firefox", WindowPrivacy::ordinary},
        {"org.mozilla.firefox", "Page - Mozilla Firefox", WindowPrivacy::ordinary},
        {"org.mozilla.nightly", "Page — Firefox Nightly", WindowPrivacy::ordinary},
        {"org.mozilla.firefoxdeveloperedition", "Page — Firefox Developer Edition", WindowPrivacy::ordinary},
        {"app.zen-browser.zen", "Page — Zen Browser", WindowPrivacy::ordinary},
        {"net.waterfox.waterfox", "Page — Waterfox", WindowPrivacy::ordinary},
        {"librewolf", "Page — LibreWolf", WindowPrivacy::ordinary},
        {"org.mozilla.firefox", "Mozilla Firefox Private Browsing", WindowPrivacy::isPrivate},
        {"org.mozilla.firefox", "Page — Mozilla Firefox Private Browsing", WindowPrivacy::isPrivate},
        {"org.mozilla.firefox", "Page — Mozilla Firefox Privater Modus", WindowPrivacy::isPrivate},
        {"org.mozilla.firefox", "Page — Mozilla Firefox Navegación privada", WindowPrivacy::isPrivate},
        {"org.mozilla.firefox", "Page — Navigation privée de Mozilla Firefox", WindowPrivacy::isPrivate},
        {"org.mozilla.firefox", "Page — Mozilla Firefox Navigazione anonima", WindowPrivacy::isPrivate},
        {"org.mozilla.firefox", "Page — Mozilla Firefox プライベートブラウジング", WindowPrivacy::isPrivate},
        {"org.mozilla.firefox", "Page — Mozilla Firefox-privénavigatie", WindowPrivacy::isPrivate},
        {"org.mozilla.firefox", "Page — Mozilla Firefox — tryb prywatny", WindowPrivacy::isPrivate},
        {"org.mozilla.firefox", "Page — Mozilla Firefox — navegação privativa", WindowPrivacy::isPrivate},
        {"org.mozilla.firefox", "Page — Приватный просмотр Mozilla Firefox", WindowPrivacy::isPrivate},
        {"org.mozilla.firefox", "Page — Mozilla Firefox 隐私浏览", WindowPrivacy::isPrivate},
        {"org.mozilla.firefox", "Page — Mozilla Firefox in words unknown", WindowPrivacy::unknown},
        {"org.mozilla.firefox", "Picture-in-Picture", WindowPrivacy::unknown},
        {"org.mozilla.firefox", "", WindowPrivacy::unknown},
        {"org.chromium.Chromium", "Page - Chromium", WindowPrivacy::unknown},
        {"org.chromium.Chromium", "Page — Mozilla Firefox", WindowPrivacy::unknown},
        {"com.microsoft.edgemac", "Page - [InPrivate] - Microsoft Edge", WindowPrivacy::isPrivate},
    };
    for (const auto& row : rows)
        EXPECT_EQ(privacyOfTitle(row.title, row.id), row.privacy) << row.id << ": " << row.title;
}

TEST(WindowPrivacy, aPrivateFrameOfChromiumEndsInABracketBehindTheApplicationsName) {
    const struct {
        const char* name;
        const char* application;
        std::vector<std::string> titles;
        bool isPrivate;
    } rows[] = {
        {"Page - Chromium", "Chromium", {}, false},
        {"Page - Chromium (Incognito)", "Chromium", {}, true},
        {"Page - Chromium (Incognito)", "Chromium", {"Page - Chromium"}, true},
        {"Page - Audio playing - Google Chrome (Incognito)", "Google Chrome", {"Page - Google Chrome"}, true},
        {"Page - Chromium（シークレット モード）", "Chromium", {}, true},
        {"Page - Chromium(ছদ্মবেশী)", "Chromium", {}, true},
        {"„„Page“ – „Chromium““ (Inkognito)", "Chromium", {}, true},
        {"Page - Chromium (Guest)", "Chromium", {}, true},
        {"A page (with brackets) - Chromium", "Chromium", {}, false},
        {"About Chromium (a page) - Chromium", "Chromium", {}, false},
        {"Page - Chromium - Work", "Chromium", {}, false},
        {"Page - Chromium - Ada (example.org)", "Chromium", {}, false},
        {"An application (its own window)", "Chromium", {"An application (its own window)"}, false},
        {"An application (Incognito)", "Chromium", {"An application"}, true},
        {"An application (Incognito)", "", {}, true},
        {"Page - [InPrivate] - Microsoft Edge", "Microsoft Edge", {"Page - [InPrivate] - Microsoft Edge"}, true},
        {"", "Chromium", {}, false},
    };
    for (const auto& row : rows)
        EXPECT_EQ(isPrivateFrame(row.name, row.application, row.titles), row.isPrivate) << row.name;
}

TEST(WindowPrivacy, aFrameIsNamedAfterItsWindowAndMaySayMore) {
    const struct {
        const char* frame;
        const char* title;
        NameMatch match;
    } rows[] = {
        {"Page - Chromium", "Page - Chromium", NameMatch::exact},
        {"Page - Chromium (Incognito)", "Page - Chromium", NameMatch::exact},
        {"Page - Chromium（無痕模式）", "Page - Chromium", NameMatch::exact},
        {"Page - Chromium - Work", "Page - Chromium", NameMatch::exact},
        {"Page - Audio playing - Chromium", "Page - Chromium", NameMatch::loose},
        {"Page - Audio playing - Chromium (Incognito)", "Page - Chromium", NameMatch::loose},
        {"Page of another - Chromium", "Page - Chromium", NameMatch::loose},
        {"Pages - Chromium", "Page - Chromium", NameMatch::none},
        {"Other - Chromium", "Page - Chromium", NameMatch::none},
        {"Open File", "Page - Chromium", NameMatch::none},
        {"Open File", "Open File", NameMatch::exact},
        {"", "Page - Chromium", NameMatch::none},
        {"Page - Chromium", "", NameMatch::none},
    };
    for (const auto& row : rows)
        EXPECT_EQ(matchNames(row.frame, row.title, "Chromium"), row.match) << row.frame << " | " << row.title;
}

} // namespace
} // namespace kestrio
