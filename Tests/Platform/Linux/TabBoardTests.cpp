#include "Kestrio/Platform/Linux/BridgeBrowserReader.h"
#include "Tests/Support/Eventually.h"

#include <gtest/gtest.h>
#include <thread>

namespace kestrio {
namespace {

const std::string firefox = "org.mozilla.firefox";

BridgedWindow window(std::int64_t id, bool isFocused, const std::string& name) {
    return {
        id, false, false, isFocused, {0, 0, 800, 600}, {{"https://" + name + ".example/", name, true, false, false}}};
}

std::string text(const BrowserAnswer& answer) {
    return std::get<std::string>(answer);
}

std::vector<std::int64_t> order(const TabBoard& board) {
    std::vector<std::int64_t> ids;
    const auto windows = board.windows(firefox);
    for (std::size_t at = 0; windows && at < windows->size(); ++at)
        ids.push_back((*windows)[at].id);
    return ids;
}

TEST(TabBoard, knowsNothingOfABrowserThatIsNotConnected) {
    TabBoard board;
    board.put(1, "org.chromium.Chromium", {window(1, true, "a")});
    EXPECT_FALSE(board.isConnected(firefox));
    EXPECT_FALSE(board.windows(firefox));
    EXPECT_FALSE(board.focusedWindow(firefox, Seconds(0)));
    EXPECT_TRUE(board.audibleTabs(firefox).empty());
    EXPECT_EQ(board.browsers(), std::vector<std::string>{"org.chromium.Chromium"});
}

TEST(TabBoard, tellsWhichBrowsersComeAndGoAndOfNothingElse) {
    TabBoard board;
    std::vector<std::size_t> told; // how many browsers there were
    auto token = board.observeBrowsers([&] { told.push_back(board.browsers().size()); });
    board.put(1, firefox, {});
    board.put(1, firefox, {window(1, true, "a")});
    board.put(2, firefox, {}); // another profile of it
    board.put(3, "org.chromium.Chromium", {});
    board.remove(1);
    board.remove(1);
    board.remove(4);
    EXPECT_EQ(told, (std::vector<std::size_t>{1, 2}));
    board.remove(2);
    EXPECT_EQ(told, (std::vector<std::size_t>{1, 2, 1}));
    token.cancel();
    board.remove(3);
    EXPECT_EQ(told.size(), 3U);
}

TEST(TabBoard, whoObservesMayOutliveIt) {
    Subscription token;
    {
        const TabBoard board;
        token = board.observeBrowsers([] {});
    }
    token.cancel();
}

TEST(TabBoard, windowsStandInTheOrderOfTheirLastFocus) {
    TabBoard board;
    board.put(1, firefox, {window(1, true, "a"), window(2, false, "b"), window(3, false, "c")});
    EXPECT_EQ(order(board), (std::vector<std::int64_t>{1, 2, 3}));
    board.put(1, firefox, {window(1, false, "a"), window(2, false, "b"), window(3, true, "c")});
    EXPECT_EQ(order(board), (std::vector<std::int64_t>{3, 1, 2}));
    board.put(1, firefox, {window(1, false, "a"), window(2, false, "b"), window(3, false, "c")});
    EXPECT_EQ(order(board), (std::vector<std::int64_t>{3, 1, 2})) << "another application is in front";
    board.put(1, firefox, {window(2, true, "b"), window(3, false, "c"), window(4, false, "d")});
    EXPECT_EQ(order(board), (std::vector<std::int64_t>{2, 3, 4}));
}

TEST(TabBoard, theProfilesOfABrowserAreOneBrowser) {
    TabBoard board;
    board.put(1, firefox, {window(1, true, "a")});
    board.put(2, firefox, {window(1, false, "b"), window(2, false, "c")});
    EXPECT_EQ(board.browsers(), std::vector<std::string>{firefox});
    EXPECT_EQ(board.windows(firefox)->size(), 3U);
    EXPECT_EQ(board.focusedWindow(firefox, Seconds(0))->activeTab()->title, "a");
    // The one that gained the focus speaks before the one that lost it.
    board.put(2, firefox, {window(1, true, "b"), window(2, false, "c")});
    EXPECT_EQ(board.focusedWindow(firefox, Seconds(0))->activeTab()->title, "b");
    board.put(1, firefox, {window(1, false, "a")});
    EXPECT_EQ(board.focusedWindow(firefox, Seconds(0))->activeTab()->title, "b");
    board.remove(2);
    EXPECT_TRUE(board.isConnected(firefox)) << "by the other";
    EXPECT_FALSE(board.focusedWindow(firefox, Seconds(0)));
    board.remove(1);
    EXPECT_FALSE(board.isConnected(firefox));
}

TEST(TabBoard, soundThatIsMutedCannotBeHeard) {
    TabBoard board;
    auto one = window(1, false, "a");
    one.tabs = {
        {"u1", "silent", true, false, false}, {"u2", "loud", false, true, false}, {"u3", "muted", false, true, true}};
    board.put(1, firefox, {one});
    const auto audible = board.audibleTabs(firefox);
    ASSERT_EQ(audible.size(), 1U);
    EXPECT_EQ(audible.front().title, "loud");
}

TEST(TabBoard, aFocusThatIsToldALittleLateIsWaitedFor) {
    TabBoard board;
    board.put(1, firefox, {window(1, false, "a")});
    std::thread browser([&] { board.put(1, firefox, {window(1, true, "a")}); });
    EXPECT_EQ(board.focusedWindow(firefox, Seconds(10))->id, 1);
    browser.join();
    board.put(1, firefox, {window(1, false, "a")});
    std::thread closing([&] { board.remove(1); });
    EXPECT_FALSE(board.focusedWindow(firefox, Seconds(10))) << "and nobody waits for a browser that went";
    closing.join();
}

TEST(BridgeBrowserReader, aBrowserWithoutTheBridgeSaysNothing) {
    TabBoard board;
    BridgeBrowserReader reader(board);
    EXPECT_EQ(text(reader.frontTab(firefox)), "");
    EXPECT_EQ(text(reader.windows(firefox)), "");
}

TEST(BridgeBrowserReader, theFrontTabHasThreeFields) {
    TabBoard board;
    BridgeBrowserReader reader(board, Seconds(0));
    board.put(1, firefox, {window(1, false, "a"), window(2, true, "b")});
    EXPECT_EQ(text(reader.frontTab(firefox)), "https://b.example/\x1F"
                                              "b\x1Fnormal");
}

TEST(BridgeBrowserReader, whenNoKnownWindowHasTheFocusAPrivateOneHas) {
    TabBoard board;
    BridgeBrowserReader reader(board, Seconds(0));
    board.put(1, firefox, {window(1, false, "a")});
    EXPECT_EQ(text(reader.frontTab(firefox)), "about:private\x1F\x1Fincognito");
    board.put(1, firefox, {});
    EXPECT_EQ(text(reader.frontTab(firefox)), "about:private\x1F\x1Fincognito") << "the only window is private";
}

TEST(BridgeBrowserReader, aWindowOfTheDevelopersToolsShowsNoPage) {
    TabBoard board;
    BridgeBrowserReader reader(board, Seconds(0));
    auto tool = window(2, true, "devtools");
    tool.isTool = true;
    board.put(1, firefox, {window(1, false, "a"), tool});
    EXPECT_EQ(text(reader.frontTab(firefox)), "");
    EXPECT_EQ(text(reader.windows(firefox)).find("devtools"), std::string::npos);
}

TEST(BridgeBrowserReader, everyWindowHasNineFields) {
    TabBoard board;
    BridgeBrowserReader reader(board, Seconds(0));
    auto first = window(1, true, "a");
    first.bounds = {-10, 20, 800, 600.5};
    first.tabs.insert(first.tabs.begin(), {"https://z.example/", "z", false, false, false});
    auto without = window(3, false, "c");
    without.tabs.clear();
    board.put(1, firefox, {window(2, false, "b"), first, without});
    EXPECT_EQ(text(reader.windows(firefox)), "-10\x1F"
                                             "20\x1F"
                                             "790\x1F"
                                             "620.5\x1Fnormal\x1Fhttps://a.example/\x1F"
                                             "a\x1F"
                                             "https://z.example/\x1Dhttps://a.example/\x1Fz\x1D"
                                             "a\x1E"
                                             "0\x1F"
                                             "0\x1F"
                                             "800\x1F"
                                             "600\x1Fnormal\x1Fhttps://b.example/\x1F"
                                             "b\x1Fhttps://b.example/\x1F"
                                             "b");
}

TEST(BridgeBrowserReader, boundsAreWithoutTheShadowThatTheWindowSystemKnowsOf) {
    TabBoard board;
    const TitledWindow placed{
        .id = 7, .process = 1, .title = "", .bounds = {664, 60, 592, 596}, .extents = {660, 60, 600, 600}};
    BridgeBrowserReader reader(board, Seconds(0), [&](const auto&) { return std::vector{placed}; });
    auto shadowed = window(1, true, "a");
    shadowed.bounds = {660, 61, 600, 599};
    board.put(1, firefox, {shadowed, window(2, false, "b")});
    const auto answer = text(reader.windows(firefox));
    EXPECT_TRUE(answer.starts_with("664\x1F"
                                   "60\x1F"
                                   "1256\x1F"
                                   "656\x1Fnormal"))
        << answer;
    EXPECT_NE(answer.find("0\x1F"
                          "0\x1F"
                          "800\x1F"
                          "600\x1Fnormal"),
              std::string::npos)
        << "no window of the window system is this one";
}

} // namespace
} // namespace kestrio
