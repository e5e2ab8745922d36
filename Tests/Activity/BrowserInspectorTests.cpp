#include "Kestrio/Activity/BrowserInspector.h"
#include "Kestrio/Base/VirtualQueue.h"
#include "Kestrio/Platform/Testing/ScriptedBrowserReader.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

using Engine = BrowserInspector::Engine;

const std::string chrome = "com.google.Chrome";
const std::string page = "https://a.example/\x1F"
                         "A\x1F"
                         "normal";
const std::string window = "0\x1F"
                           "0\x1F"
                           "1\x1F"
                           "1\x1F"
                           "normal\x1F"
                           "u\x1F"
                           "t\x1F"
                           "u\x1F"
                           "t";

class Inspector : public testing::Test {
protected:
    VirtualTime time{Date(1'700'000'000)};
    ScriptedBrowserReader reader;
    BrowserInspector inspector{reader, time, {"org.mozilla.firefox"}};
};

TEST(BrowserTables, holdEveryBrowserWithItsEngine) {
    const std::map<std::string, Engine, std::less<>> scriptable{
        {"com.google.Chrome", Engine::chromium},
        {"com.google.Chrome.beta", Engine::chromium},
        {"com.google.Chrome.dev", Engine::chromium},
        {"com.google.Chrome.canary", Engine::chromium},
        {"org.chromium.Chromium", Engine::chromium},
        {"com.brave.Browser", Engine::chromium},
        {"com.brave.Browser.beta", Engine::chromium},
        {"com.microsoft.edgemac", Engine::chromium},
        {"com.microsoft.edgemac.Beta", Engine::chromium},
        {"com.vivaldi.Vivaldi", Engine::chromium},
        {"com.operasoftware.Opera", Engine::chromium},
        {"company.thebrowser.Browser", Engine::arc},
        {"com.apple.Safari", Engine::safari},
        {"com.apple.SafariTechnologyPreview", Engine::safari},
    };
    EXPECT_EQ(BrowserInspector::scriptable(), scriptable);
    const std::set<std::string, std::less<>> titleOnly{"org.mozilla.firefox", "org.mozilla.firefoxdeveloperedition",
                                                       "org.mozilla.nightly", "app.zen-browser.zen",
                                                       "com.kagi.kagimacOS",  "net.waterfox.waterfox",
                                                       "com.openai.atlas"};
    EXPECT_EQ(BrowserInspector::titleOnly(), titleOnly);
    EXPECT_TRUE(BrowserInspector::isBrowser(chrome));
    EXPECT_TRUE(BrowserInspector::isBrowser("org.mozilla.firefox"));
    EXPECT_FALSE(BrowserInspector::isBrowser("com.google.chrome"));
    EXPECT_FALSE(BrowserInspector::isBrowser("xterm"));
}

TEST_F(Inspector, readsTheFrontTabAndTheWindows) {
    reader.frontTabs[chrome] = page;
    reader.allWindows[chrome] = window;
    EXPECT_EQ(inspector.activeTab(chrome), (BrowserTab{"https://a.example/", "A", false}));
    EXPECT_EQ(inspector.windows(chrome)->size(), 1u);
}

TEST_F(Inspector, asksOnlyBrowsersThatCanBeRead) {
    EXPECT_EQ(inspector.activeTab("xterm"), std::nullopt);
    EXPECT_EQ(inspector.windows("net.waterfox.waterfox"), std::nullopt);
    EXPECT_TRUE(reader.asked.empty());
    reader.frontTabs["org.mozilla.firefox"] = page; // which this host can read
    EXPECT_TRUE(inspector.activeTab("org.mozilla.firefox"));
}

TEST_F(Inspector, anEmptyTextIsNoAnswer) {
    EXPECT_EQ(inspector.activeTab(chrome), std::nullopt);
    EXPECT_EQ(inspector.windows(chrome), std::nullopt);
    reader.frontTabs[chrome] = std::string("\x1F"
                                           "New Tab\x1F"
                                           "normal");
    EXPECT_EQ(inspector.activeTab(chrome), std::nullopt);
}

TEST_F(Inspector, aPrivateWindowIsToldAsOne) {
    reader.frontTabs[chrome] = std::string("https://a.example/\x1F"
                                           "A\x1F"
                                           "incognito");
    EXPECT_TRUE(inspector.activeTab(chrome)->isPrivate);
}

TEST_F(Inspector, oneThatRefusedIsLeftAloneForThirtySeconds) {
    reader.frontTabs[chrome] = BrowserRefusal();
    reader.frontTabs["com.brave.Browser"] = page;
    EXPECT_EQ(inspector.activeTab(chrome), std::nullopt);
    reader.frontTabs[chrome] = page;
    reader.allWindows[chrome] = window;
    time.advance(Seconds(29.9));
    EXPECT_EQ(inspector.activeTab(chrome), std::nullopt);
    EXPECT_EQ(inspector.windows(chrome), std::nullopt);
    EXPECT_EQ(reader.asked.size(), 1u);
    EXPECT_TRUE(inspector.activeTab("com.brave.Browser")) << "another browser is not concerned";
    time.advance(Seconds(0.1));
    EXPECT_TRUE(inspector.activeTab(chrome));
    EXPECT_TRUE(inspector.windows(chrome));
}

TEST_F(Inspector, anEmptyAnswerIsAskedForAgainAtOnce) {
    EXPECT_EQ(inspector.activeTab(chrome), std::nullopt);
    reader.frontTabs[chrome] = page;
    EXPECT_TRUE(inspector.activeTab(chrome));
}

TEST_F(Inspector, aClockThatIsSetBackSilencesNoBrowser) {
    reader.frontTabs[chrome] = BrowserRefusal();
    inspector.activeTab(chrome);
    reader.frontTabs[chrome] = page;
    time.jumpWallClock(Seconds(-86'400));
    time.advance(Seconds(30));
    EXPECT_TRUE(inspector.activeTab(chrome));
}

TEST(StripBrowserName, takesTheNameAndWhatFollowsIt) {
    struct Row {
        const char* title;
        const char* appName;
        const char* stripped;
    };
    const Row rows[] = {
        {"Mail - Gmail - Google Chrome", "Chrome", "Mail - Gmail"},
        {"Docs — Chromium - Work", "Chromium", "Docs"},
        {"Docs - Chromium — Work", "Chromium", "Docs"},
        {"Firefox release notes", "Firefox", "Firefox release notes"},
        {"News - Waterfox", "Waterfox", "News"},
        {"News - Waterfox", "Other", "News - Waterfox"},
        {"News — Mozilla Firefox", "Firefox", "News"},
        {"News - Mozilla Firefox", "", "News"},
        {"News – Brave", "", "News"},
        {"Inbox - Microsoft\u200B Edge", "Edge", "Inbox"},
        {"Inbox - Microsoft Edge", "", "Inbox"},
        {"Page — Zen Browser", "", "Page"},
        {"Page — Zen", "", "Page"},
        {"Page - Vivaldi", "", "Page"},
        {"Page - Opera", "", "Page"},
        {"Page - Orion", "", "Page"},
        {"Page - Safari", "", "Page"},
        {"Page - Safaris", "", "Page - Safaris"},
        {"page - safari", "", "page - safari"},
        {"About - Chromium and more", "", "About - Chromium and more"},
        {"A — Firefox - Google Chrome", "", "A — Firefox"}, // the hyphen is preferred
        {"Google Chrome", "", "Google Chrome"},
        {"", "Firefox", ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(BrowserInspector::stripBrowserName(row.title, row.appName), row.stripped) << row.title;
}

} // namespace
} // namespace kestrio
