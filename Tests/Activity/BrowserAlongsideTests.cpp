#include "Kestrio/Activity/BrowserAlongside.h"
#include "Kestrio/Base/Text.h"
#include "Tests/Activity/AlongsideBench.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

const Rectangle left{0, 0, 800, 600};
const Rectangle right{800, 0, 800, 600};

const BrowserTab mail = tab("https://mail.example/inbox", "(3) Inbox");
const BrowserTab news = tab("https://news.example/", "News");
const BrowserTab film = tab("https://www.netflix.com/watch/1", "A film");
const BrowserTab series = tab("https://www.twitch.tv/somebody", "A stream");
const BrowserTab song = tab("https://open.spotify.com/track/1", "A song");
const BrowserTab clip = tab("https://www.youtube.com/watch?v=abc", "A clip - YouTube");

constexpr bool front = true;
constexpr bool behind = false;

ScreenWindow onScreen(const Rectangle& bounds, bool isFrontOnDisplay, pid_t pid = 7) {
    return {pid, bounds, isFrontOnDisplay};
}

struct Browser {
    bool isFocused = false;
    bool playsVideo = false;
    bool playsAudio = false;
};

constexpr Browser focusedWithVideo{true, true, false};
constexpr Browser focusedWithSound{true, false, true};
constexpr Browser focusedWithBoth{true, true, true};
constexpr Browser withVideo{false, true, false};
constexpr Browser withSound{false, false, true};
constexpr Browser withBoth{false, true, true};

std::optional<ActivitySample> playing(const Browser& browser, const std::vector<BrowserWindow>& windows,
                                      const std::vector<ScreenWindow>& screen = {}) {
    return browserAlongside(
        {"com.google.Chrome", "Google Chrome", 7, browser.isFocused, browser.playsVideo, browser.playsAudio}, windows,
        screen);
}

/// "Watching TITLE" or "Listening TITLE", or nothing.
std::string found(const Browser& browser, const std::vector<BrowserWindow>& windows,
                  const std::vector<ScreenWindow>& screen = {}) {
    const auto sample = playing(browser, windows, screen);
    return sample ? fmt::format("{} {}", label(sample->kind), sample->title) : "";
}

TEST(BrowserAlongside, aSampleHoldsTheBrowserAndThePageAndNoProject) {
    const auto sample = playing(withVideo, {browserWindow(right, {film})}, {onScreen(right, front)});
    const ActivitySample expected{
        "com.google.Chrome", "Google Chrome",      "A film", "https://www.netflix.com/watch/1", "netflix.com",
        std::nullopt,        SessionKind::watching};
    EXPECT_EQ(sample, expected);
    EXPECT_EQ(playing(withSound, {browserWindow(right, {mail})})->kind, SessionKind::listening);
}

TEST(BrowserAlongside, nothingPlaysInABrowserWithoutWindowsOrWithoutEvidence) {
    EXPECT_EQ(found(withBoth, {}), "");
    EXPECT_EQ(found(focusedWithBoth, {}), "");
    EXPECT_EQ(found({}, {browserWindow(left, {film})}, {onScreen(left, front)}), "");
}

// Watching

TEST(BrowserAlongside, aVideoOnASecondDisplayIsWatchedWhileTheFrontWindowIsTheMainLines) {
    EXPECT_EQ(found(focusedWithBoth, {browserWindow(left, {mail}), browserWindow(right, {film})},
                    {onScreen(left, front), onScreen(right, front)}),
              "Watching A film");
}

TEST(BrowserAlongside, theFrontWindowOfAFocusedBrowserIsNeverWatchedAlongside) {
    const std::vector windows{browserWindow(left, {film})};
    const std::vector screen{onScreen(left, front)};
    EXPECT_EQ(found(focusedWithVideo, windows, screen), "");
    EXPECT_EQ(found(focusedWithBoth, windows, screen), "");
    EXPECT_EQ(found(withVideo, windows, screen), "Watching A film");
}

TEST(BrowserAlongside, ofAFocusedBrowserThatKeepsTheDisplayAwakeNoSoundIsLookedFor) {
    // Another window holds a song, but the video is taken to be the front tab.
    const std::vector windows{browserWindow(left, {film}), browserWindow(right, {song})};
    EXPECT_EQ(found(focusedWithBoth, windows), "");
    EXPECT_EQ(found(focusedWithSound, windows), "Listening A song");
}

TEST(BrowserAlongside, aWindowOutOfSightIsNotWatched) {
    const std::vector windows{browserWindow(left, {film})};
    EXPECT_EQ(found(withVideo, windows), "");
    EXPECT_EQ(found(withVideo, windows, {onScreen(right, front)}), "");
    EXPECT_EQ(found(withVideo, windows, {onScreen(left, front, 8)}), ""); // of another application
    EXPECT_EQ(found(withBoth, windows), "Listening A film");
}

TEST(BrowserAlongside, aBrowserWithoutAProcessHasNoWindowInSight) {
    const PlayingApplication browser{"com.google.Chrome", "Google Chrome", std::nullopt, false, true, false};
    EXPECT_EQ(browserAlongside(browser, {browserWindow(left, {film})}, {onScreen(left, front)}), std::nullopt);
}

TEST(BrowserAlongside, aWindowIsFoundOnTheScreenWithinSixPointsAtEachEdge) {
    struct Row {
        Rectangle bounds;
        bool isFound;
    };
    const Row rows[] = {
        {{100, 100, 800, 600}, true},      {{106, 100, 800, 600}, true},      {{94, 100, 800, 600}, true},
        {{100, 106, 800, 600}, true},      {{100, 94, 800, 600}, true},       {{100, 100, 806, 600}, true},
        {{100, 100, 794, 600}, true},      {{100, 100, 800, 606}, true},      {{100, 100, 800, 594}, true},
        {{106, 94, 806, 594}, true},       {{106.001, 100, 800, 600}, false}, {{93.999, 100, 800, 600}, false},
        {{100, 106.001, 800, 600}, false}, {{100, 93.999, 800, 600}, false},  {{100, 100, 806.001, 600}, false},
        {{100, 100, 793.999, 600}, false}, {{100, 100, 800, 606.001}, false}, {{100, 100, 800, 593.999}, false},
    };
    for (const auto& row : rows)
        EXPECT_EQ(found(withVideo, {browserWindow({100, 100, 800, 600}, {film})}, {onScreen(row.bounds, front)}),
                  row.isFound ? "Watching A film" : "")
            << row.bounds.x << " " << row.bounds.y << " " << row.bounds.width << " " << row.bounds.height;
}

TEST(BrowserAlongside, theFirstEntryOfTheScreensThatFitsDecides) {
    const std::vector windows{browserWindow(left, {mail})};
    EXPECT_EQ(found(withVideo, windows, {onScreen({5, 0, 800, 600}, behind), onScreen(left, front)}), "");
    EXPECT_EQ(found(withVideo, windows, {onScreen({5, 0, 800, 600}, front), onScreen(left, behind)}), "Watching Inbox");
    EXPECT_EQ(found(withVideo, windows, {onScreen(left, behind, 8), onScreen(left, front)}), "Watching Inbox");
}

TEST(BrowserAlongside, theWindowThatFitsAVideoBestIsTheOneWatched) {
    struct Row {
        BrowserTab first;
        bool firstIsInFront;
        BrowserTab second;
        bool secondIsInFront;
        const char* watched;
    };
    const Row rows[] = {
        {mail, behind, news, behind, ""},                   // 0 and 0
        {mail, behind, news, front, "Watching News"},       // 0 and 1
        {mail, front, news, front, "Watching Inbox"},       // 1 and 1
        {mail, front, film, behind, "Watching A film"},     // 1 and 2
        {film, behind, mail, front, "Watching A film"},     // 2 and 1
        {film, behind, series, behind, "Watching A film"},  // 2 and 2
        {film, behind, series, front, "Watching A stream"}, // 2 and 3
        {film, front, series, behind, "Watching A film"},   // 3 and 2
        {film, front, series, front, "Watching A film"},    // 3 and 3
        {mail, behind, film, behind, "Watching A film"},    // 0 and 2
    };
    for (const auto& row : rows)
        EXPECT_EQ(found(withVideo, {browserWindow(left, {row.first}), browserWindow(right, {row.second})},
                        {onScreen(left, row.firstIsInFront), onScreen(right, row.secondIsInFront)}),
                  row.watched)
            << row.first.title << " " << row.firstIsInFront << ", " << row.second.title << " " << row.secondIsInFront;
}

TEST(BrowserAlongside, onlyTheActiveTabOfAWindowCanBeWatched) {
    EXPECT_EQ(found(withVideo, {browserWindow(left, {mail, film})}, {onScreen(left, behind)}), "");
    EXPECT_EQ(found(withVideo, {browserWindow(left, {mail, film})}, {onScreen(left, front)}), "Watching Inbox");
}

TEST(BrowserAlongside, aPrivateWindowIsNotWatched) {
    const auto hidden = privateWindow(browserWindow(right, {film}));
    const std::vector screen{onScreen(right, front), onScreen(left, behind)};
    EXPECT_EQ(found(withVideo, {hidden}, screen), "");
    EXPECT_EQ(found(withVideo, {hidden, browserWindow(left, {series})}, screen), "Watching A stream");
    EXPECT_EQ(found(focusedWithVideo, {hidden, browserWindow(left, {series})}, screen), "Watching A stream");
    EXPECT_EQ(found(focusedWithVideo, {browserWindow(left, {series}), hidden}, screen), "");
}

TEST(BrowserAlongside, aBrowserBehindWithoutAWatchedWindowIsSearchedForSound) {
    EXPECT_EQ(found(withBoth, {browserWindow(left, {mail, song})}), "Listening A song");
    EXPECT_EQ(found(withVideo, {browserWindow(left, {mail, song})}), "");
}

TEST(BrowserAlongside, aWatchedWindowComesBeforeSound) {
    EXPECT_EQ(found(withBoth, {browserWindow(left, {song}), browserWindow(right, {film})},
                    {onScreen(left, behind), onScreen(right, front)}),
              "Watching A film");
}

// Listening

TEST(BrowserAlongside, musicInABackgroundTabOfTheFocusedBrowserIsHeardWhateverIsInFront) {
    for (const auto& inFront : {mail, news, tab("https://mail.example/other", "Other")})
        EXPECT_EQ(found(focusedWithSound, {browserWindow(left, {inFront, song})}), "Listening A song");
}

TEST(BrowserAlongside, theFrontPageOfAFocusedBrowserIsTheMainLines) {
    EXPECT_EQ(found(focusedWithSound, {browserWindow(left, {song, mail})}), "");
    // The same page in another tab or window is the same page.
    EXPECT_EQ(found(focusedWithSound, {browserWindow(left, {song, song})}), "");
    EXPECT_EQ(found(focusedWithSound, {browserWindow(left, {song}), browserWindow(right, {song})}), "");
    EXPECT_EQ(found(focusedWithSound, {browserWindow(left, {song, clip})}), "Listening A clip - YouTube");
    EXPECT_EQ(found(withSound, {browserWindow(left, {song, clip})}), "Listening A song");
}

TEST(BrowserAlongside, anActiveTabIsHeardBeforeOneInTheBackground) {
    EXPECT_EQ(found(withSound, {browserWindow(left, {mail, song}), browserWindow(right, {series})}),
              "Listening A stream");
    EXPECT_EQ(found(focusedWithSound, {browserWindow(left, {mail, song}), browserWindow(right, {series})}),
              "Listening A stream");
    EXPECT_EQ(found(withSound, {browserWindow(left, {mail, song}), browserWindow(right, {news, series})}),
              "Listening A song");
    EXPECT_EQ(found(withSound, {browserWindow(left, {film}), browserWindow(right, {series})}), "Listening A film");
}

TEST(BrowserAlongside, whichTabIsActiveIsToldByTheAddress) {
    auto window = browserWindow(left, {mail, song, series});
    window.activeTab = tab(series.url, "The same page under another title");
    EXPECT_EQ(found(withSound, {window}), "Listening A stream");
}

TEST(BrowserAlongside, aBrowserBehindPlaysItsFrontPageWhenNoSiteIsKnown) {
    EXPECT_EQ(found(withSound, {browserWindow(left, {mail, news}), browserWindow(right, {news})}), "Listening Inbox");
    EXPECT_EQ(found(focusedWithSound, {browserWindow(left, {mail, news}), browserWindow(right, {news})}), "");
}

TEST(BrowserAlongside, soundInAPrivateWindowLeavesNothing) {
    const auto hidden = privateWindow(browserWindow(left, {song, film}));
    EXPECT_EQ(found(withSound, {hidden}), "");
    EXPECT_EQ(found(focusedWithSound, {hidden}), "");
    EXPECT_EQ(found(withSound, {hidden, browserWindow(right, {mail})}), "Listening Inbox");
    EXPECT_EQ(found(withSound, {hidden, browserWindow(right, {mail, clip})}), "Listening A clip - YouTube");
    EXPECT_EQ(found(focusedWithSound, {hidden, browserWindow(right, {mail})}), "");
}

TEST(BrowserAlongside, aPageIsAMediaPageByTheWholeOfItsAddress) {
    const auto untitled = tab(clip.url, "");
    EXPECT_EQ(found(withSound, {browserWindow(left, {mail, untitled})}), "Listening ");
    EXPECT_EQ(found(focusedWithSound, {browserWindow(left, {mail, tab("https://www.youtube.com/feed", "Feed")})}), "");
}

TEST(BrowserAlongside, theTitleIsCleanedAndKeepsTheSitesSignature) {
    const auto marked = tab(clip.url, "\u200E● (12) A clip - Google Chrome");
    EXPECT_EQ(found(withSound, {browserWindow(left, {marked})}), "Listening A clip - Google Chrome");
}

TEST(BrowserAlongside, anAddressIsCutAt2048CharactersAndStillGivesItsDomain) {
    const std::string start = "https://user:";
    const struct {
        std::string url;
        std::string recorded;
    } rows[] = {
        {start + std::string(2048 - start.size(), 'x'), start + std::string(2048 - start.size(), 'x')},
        {start + std::string(3000, 'x') + "@netflix.com/", start + std::string(2048 - start.size(), 'x')},
    };
    for (const auto& row : rows)
        EXPECT_EQ(playing(withSound, {browserWindow(left, {tab(row.url, "Long")})})->url, row.recorded);
    EXPECT_EQ(playing(withSound, {browserWindow(left, {tab(rows[1].url, "Long")})})->domain, "netflix.com");

    std::string accents = "https://netflix.com/";
    const auto plain = accents.size();
    for (int i = 0; i < 3000; ++i)
        accents += "e\u0301"; // three bytes and two scalars, one character
    const auto recorded = playing(withSound, {browserWindow(left, {tab(accents, "Long")})})->url.value_or("");
    EXPECT_EQ(text::characterCount(recorded), 2048u);
    EXPECT_EQ(recorded.size(), plain + 3 * (2048 - plain));
}

TEST(BrowserAlongside, aPageWithoutAWebAddressHasNoDomain) {
    const auto sample = playing(withSound, {browserWindow(left, {tab("file:///home/x/song.html", "My song")})});
    ASSERT_TRUE(sample);
    EXPECT_EQ(sample->url, "file:///home/x/song.html");
    EXPECT_EQ(sample->domain, std::nullopt);
}

} // namespace
} // namespace kestrio
