// Alongside sessions from the evidence to the rows: the whole monitor with the whole detection, on a scripted desktop.
#include "Kestrio/Classification/TextTools.h"
#include "Tests/Activity/AlongsideBench.h"
#include "Tests/Activity/MonitorBench.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace kestrio {
namespace {

const std::string editor = "org.example.editor";
const std::string chrome = "com.google.Chrome";
const std::string vlc = "org.videolan.vlc";
const std::string spotify = "com.spotify.client";

constexpr pid_t chromePID = 2;
constexpr pid_t vlcPID = 3;
constexpr pid_t spotifyPID = 4;

const Rectangle left{0, 0, 1920, 1080};
const Rectangle right{1920, 0, 1920, 1080};

const BrowserTab mail = tab("https://mail.example/", "Inbox");
const BrowserTab news = tab("https://news.example/", "News");
const BrowserTab film = tab("https://www.netflix.com/watch/1", "A film");
const BrowserTab song = tab("https://open.spotify.com/track/1", "A song");

class AlongsideThroughTheMonitor : public testing::Test, protected MonitorBench {
protected:
    AlongsideBench bench{time, workspace, titles};

    AlongsideThroughTheMonitor() {
        bench.run(editor, "Editor", 1, "main.cpp");
        bench.run(chrome, "Google Chrome", chromePID, "Google Chrome");
        bench.run(vlc, "VLC media player", vlcPID, "film.mkv - VLC media player");
        bench.run(spotify, "Spotify", spotifyPID, "A band - A song");
        collaborators.activeTab = [this](const auto& id) { return bench.browsers.activeTab(id); };
        collaborators.isBrowser = BrowserInspector::isBrowser;
        collaborators.stripBrowserName = BrowserInspector::stripBrowserName;
        collaborators.cleanTitle = TitleCleaner::clean;
        collaborators.removingAppName = TitleCleaner::removingAppName;
        collaborators.domain = URLTools::domain;
        collaborators.alongside = [this](const auto& frontmost, bool allowWatching) {
            return bench.detection.evidence(frontmost, allowWatching);
        };
    }

    void putInFront(const std::string& id) { workspace.front = bench.running(id); }

    void begin(const std::string& front) {
        putInFront(front);
        start();
    }

    /// The browser as it is: all its windows, of which the first is in front.
    void browse(const std::vector<BrowserWindow>& windows) {
        bench.open(chrome, windows);
        const auto& page = windows.front().activeTab;
        bench.reader.frontTabs[chrome] =
            page.url + "\x1F" + page.title + "\x1F" + (page.isPrivate ? "incognito" : "normal");
    }

    Rows alongsideRows() {
        auto found = rows();
        std::erase_if(found, [](const auto& row) { return !isAlongside(row); });
        return found;
    }
    Rows focusRows() {
        auto found = rows();
        std::erase_if(found, isAlongside);
        return found;
    }

private:
    static bool isAlongside(const std::string& row) {
        return row.find("(Watching)") != row.npos || row.find("(Listening)") != row.npos;
    }
};

TEST_F(AlongsideThroughTheMonitor, aVideoOnASecondDisplayIsOneWatchingSessionWhileFocusGoesOn) {
    browse({browserWindow(left, {mail}), browserWindow(right, {film})});
    bench.audio = bench.video = {chrome};
    bench.screen = {{chromePID, left, true}, {chromePID, right, true}};
    begin(chrome);
    pass(20);
    putInFront(editor);
    pass(20);
    monitor->stop();
    EXPECT_EQ(alongsideRows(), (Rows{"A film(Watching) 0-40"}));
    EXPECT_EQ(focusRows(), (Rows{"Inbox 0-22", "main.cpp 22-40"}));
    for (const auto& row : database.sessions(origin, origin + Seconds(100)))
        if (row.kind == SessionKind::watching) {
            EXPECT_EQ(row.url, film.url);
            EXPECT_EQ(row.domain, "netflix.com");
            EXPECT_EQ(row.project, std::nullopt);
            EXPECT_EQ(row.bundleID, chrome);
        }
}

TEST_F(AlongsideThroughTheMonitor, musicInABackgroundTabIsNotDisturbedByAChangeOfFrontTab) {
    auto window = browserWindow(left, {mail, news, song});
    browse({window});
    bench.audio = {chrome};
    begin(chrome);
    pass(20);
    window.activeTab = news;
    browse({window});
    pass(20);
    monitor->stop();
    EXPECT_EQ(alongsideRows(), (Rows{"A song(Listening) 0-40"}));
    EXPECT_EQ(focusRows(), (Rows{"Inbox 0-22", "News 22-40"}));
}

TEST_F(AlongsideThroughTheMonitor, theOnlyWindowsFrontTabIsTheMainLinesAlone) {
    browse({browserWindow(left, {film, mail})});
    bench.audio = bench.video = {chrome};
    bench.screen = {{chromePID, left, true}};
    begin(chrome);
    pass(40);
    monitor->stop();
    EXPECT_EQ(rows(), (Rows{"A film 0-40"}));
}

TEST_F(AlongsideThroughTheMonitor, aMutedVideoInAHiddenWindowLeavesNoRow) {
    browse({browserWindow(left, {film})});
    bench.video = {chrome};
    bench.screen = {{1, left, true}};
    begin(editor);
    pass(40);
    monitor->stop();
    EXPECT_EQ(rows(), (Rows{"main.cpp 0-40"}));
}

TEST_F(AlongsideThroughTheMonitor, nothingOfAPrivateWindowReachesTheStore) {
    const auto hidden = privateWindow(browserWindow(left, {film, song}));
    browse({hidden, privateWindow(browserWindow(right, {song}))});
    bench.audio = bench.video = {chrome};
    bench.screen = {{chromePID, left, true}, {chromePID, right, true}};
    begin(chrome);
    pass(20);
    putInFront(editor);
    pass(20);
    monitor->stop();
    EXPECT_EQ(rows(), (Rows{"Private Browsing 0-22", "main.cpp 22-40"}));
    for (const auto& row : database.sessions(origin, origin + Seconds(100)))
        EXPECT_EQ(row.url, std::nullopt);
}

TEST_F(AlongsideThroughTheMonitor, aSoundOfNineSecondsLeavesNoRow) {
    begin(editor);
    pass(0.1);
    bench.audio = {spotify}; // heard at 4 and at 8
    pass(9);
    bench.audio.clear();
    EXPECT_EQ(monitor->published().alongside.size(), 1u);
    pass(20);
    EXPECT_TRUE(monitor->published().alongside.empty());
    EXPECT_EQ(alongsideRows(), Rows{});
}

TEST_F(AlongsideThroughTheMonitor, aSoundOfElevenSecondsLeavesARowThoughItReachedNoFlush) {
    begin(editor);
    pass(3.9);
    bench.audio = {spotify}; // heard at 4, 8 and 12; the flush is due at 16
    pass(11);
    bench.audio.clear();
    EXPECT_EQ(alongsideRows(), Rows{});
    pass(20);
    EXPECT_EQ(alongsideRows(), (Rows{"A band - A song(Listening) 4-16"}));
}

TEST_F(AlongsideThroughTheMonitor, aSoundThatReachedAFlushHasItsRowBeforeItEnds) {
    begin(editor);
    pass(3.9);
    bench.audio = {spotify}; // heard at 4, 8, 12 and 16
    pass(13);
    bench.audio.clear();
    EXPECT_EQ(alongsideRows(), (Rows{"A band - A song(Listening) 4-16"}));
    pass(20);
    EXPECT_EQ(alongsideRows(), (Rows{"A band - A song(Listening) 4-20"}));
}

TEST_F(AlongsideThroughTheMonitor, alongsideActivityCannotFlashForLessThanTheMinimum) {
    begin(editor);
    for (int i = 0; i < 5; ++i) {
        bench.audio = {spotify};
        pass(8);
        bench.audio.clear();
        pass(4);
    }
    monitor->stop();
    EXPECT_EQ(alongsideRows(), Rows{});
}

TEST_F(AlongsideThroughTheMonitor, aLockTurnsWatchingIntoListening) {
    bench.audio = bench.video = {vlc};
    bench.screen = {{vlcPID, right, true}};
    begin(editor);
    *input.idle = Seconds(10);
    pass(21);
    happen(SessionEvent::screenIsLocked);
    pass(23);
    EXPECT_EQ(state(), TrackingState::away);
    monitor->stop();
    EXPECT_EQ(alongsideRows(), (Rows{"film.mkv(Watching) 0-24", "film.mkv(Listening) 24-44"}));
}

TEST_F(AlongsideThroughTheMonitor, aSilentVideoEndsAtTheLock) {
    bench.video = {vlc};
    bench.screen = {{vlcPID, right, true}};
    begin(editor);
    *input.idle = Seconds(10);
    pass(20);
    happen(SessionEvent::screenIsLocked);
    pass(20);
    monitor->stop();
    EXPECT_EQ(alongsideRows(), (Rows{"film.mkv(Watching) 0-24"}));
}

TEST_F(AlongsideThroughTheMonitor, behindALockScreenThePageThatWasInFrontIsHeard) {
    browse({browserWindow(left, {song, mail})});
    bench.audio = {chrome};
    begin(chrome);
    *input.idle = Seconds(10);
    pass(20);
    EXPECT_TRUE(monitor->published().alongside.empty());
    workspace.front = RunningApplication{"org.example.locker", "Locker", 9};
    pass(20);
    monitor->stop();
    EXPECT_EQ(alongsideRows(), (Rows{"A song(Listening) 24-40"}));
}

TEST_F(AlongsideThroughTheMonitor, musicGoesOnBehindADarkScreenAndEndsAtSleep) {
    bench.audio = {spotify};
    begin(editor);
    *input.idle = Seconds(10);
    pass(8);
    happen(SessionEvent::displaysDidSleep);
    pass(22);
    EXPECT_EQ(state(), TrackingState::away);
    happen(SessionEvent::willSleep);
    EXPECT_TRUE(monitor->published().alongside.empty());
    pass(20);
    EXPECT_EQ(rows(), (Rows{"main.cpp 0-8", "A band - A song(Listening) 0-30"}));
}

TEST_F(AlongsideThroughTheMonitor, aSwitchOfSessionAndAPauseCloseEverythingAndAskNoMore) {
    bench.audio = {spotify, vlc};
    begin(editor);
    pass(18);
    happen(SessionEvent::sessionDidResignActive);
    EXPECT_EQ(alongsideRows(), (Rows{"A band - A song(Listening) 0-18", "film.mkv(Listening) 0-18"}));
    const int asked = bench.audioQuestions;
    pass(12);
    EXPECT_EQ(bench.audioQuestions, asked);
    happen(SessionEvent::sessionDidBecomeActive); // at 30
    pass(15);
    monitor->pause(distantFuture);
    time.runPending();
    EXPECT_TRUE(monitor->published().alongside.empty());
    const int askedBeforeThePause = bench.audioQuestions;
    pass(20);
    EXPECT_EQ(bench.audioQuestions, askedBeforeThePause);
    const auto found = alongsideRows();
    ASSERT_EQ(found.size(), 4u);
    EXPECT_EQ(std::count(found.begin(), found.end(), "A band - A song(Listening) 30-45"), 1);
    EXPECT_EQ(std::count(found.begin(), found.end(), "film.mkv(Listening) 30-45"), 1);
}

TEST_F(AlongsideThroughTheMonitor, aChangeOfTitleWhilePlayingEndsOneRowAndBeginsTheNext) {
    bench.audio = {spotify};
    begin(editor);
    pass(21);
    titles.titles[spotifyPID] = "A band - Another song";
    pass(23);
    titles.titles[spotifyPID] = "\u200EA band - Another song - Spotify"; // to a reader the same
    pass(8);
    monitor->stop();
    EXPECT_EQ(alongsideRows(), (Rows{"A band - A song(Listening) 0-24", "A band - Another song(Listening) 24-52"}));
}

TEST_F(AlongsideThroughTheMonitor, aChangeOfAddressAloneEndsARowToo) {
    browse({browserWindow(left, {mail, song})});
    bench.audio = {chrome};
    begin(chrome);
    pass(20);
    browse({browserWindow(left, {mail, tab(song.url + "2", song.title)})});
    pass(20);
    monitor->stop();
    EXPECT_EQ(alongsideRows(), (Rows{"A song(Listening) 0-24", "A song(Listening) 24-40"}));
}

TEST_F(AlongsideThroughTheMonitor, aBrowserThatDoesNotAnswerEndsTheSessionUntilItDoesAgain) {
    browse({browserWindow(left, {mail, song})});
    bench.audio = {chrome};
    begin(editor);
    pass(14);
    bench.reader.allWindows[chrome] = std::string();
    pass(4); // not seen at 16
    bench.open(chrome, {browserWindow(left, {mail, song})});
    pass(22);
    monitor->stop();
    EXPECT_EQ(alongsideRows(), (Rows{"A song(Listening) 0-16", "A song(Listening) 20-40"}));
}

// Being there without input

TEST_F(AlongsideThroughTheMonitor, aVideoInFrontOfTheFocusedBrowserCountsAsBeingThere) {
    browse({browserWindow(left, {film})});
    bench.audio = bench.video = {chrome};
    bench.screen = {{chromePID, left, true}};
    begin(chrome);
    passUntouched(600);
    EXPECT_EQ(state(), TrackingState::tracking);
    bench.video.clear();
    passUntouched(10);
    EXPECT_EQ(state(), TrackingState::idle);
    EXPECT_EQ(rows(), (Rows{"A film 0-602"})); // the last tick before the check at 604 that saw it end
}

TEST_F(AlongsideThroughTheMonitor, aVideoInFrontOfAnotherApplicationCountsAsBeingThere) {
    bench.audio = bench.video = {vlc};
    bench.screen = {{vlcPID, left, true}};
    begin(vlc);
    passUntouched(600);
    EXPECT_EQ(state(), TrackingState::tracking);
    EXPECT_EQ(alongsideRows(), Rows{});
}

TEST_F(AlongsideThroughTheMonitor, aVideoOnTheSecondDisplayDoesNotKeepItsBrowserInFrontOpen) {
    browse({browserWindow(left, {mail}), browserWindow(right, {film})});
    bench.audio = bench.video = {chrome};
    bench.screen = {{chromePID, left, true}, {chromePID, right, true}};
    begin(chrome);
    pass(10);
    passUntouched(190);
    EXPECT_EQ(state(), TrackingState::idle);
    monitor->stop();
    EXPECT_EQ(focusRows(), (Rows{"Inbox 0-10"}));
    EXPECT_EQ(alongsideRows(), (Rows{"A film(Watching) 0-200"}));
}

TEST_F(AlongsideThroughTheMonitor, aVideoOfAnotherApplicationDoesNotKeepTheFrontOneOpen) {
    bench.video = {vlc};
    bench.screen = {{vlcPID, right, true}};
    begin(editor);
    pass(10);
    passUntouched(190);
    EXPECT_EQ(state(), TrackingState::idle);
    monitor->stop();
    EXPECT_EQ(focusRows(), (Rows{"main.cpp 0-10"}));
    EXPECT_EQ(alongsideRows(), (Rows{"film.mkv(Watching) 0-200"}));
}

TEST_F(AlongsideThroughTheMonitor, soundAloneIsNotBeingThere) {
    bench.audio = {spotify};
    begin(spotify);
    pass(10);
    passUntouched(190);
    EXPECT_EQ(state(), TrackingState::idle);
    EXPECT_EQ(rows(), (Rows{"A band - A song 0-10"}));
}

} // namespace
} // namespace kestrio
