#include "Kestrio/Base/VirtualQueue.h"
#include "Tests/Activity/AlongsideBench.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

const std::string chrome = "com.google.Chrome";
const std::string firefox = "org.mozilla.firefox";
const std::string zen = "app.zen-browser.zen"; // cannot be read
const std::string vlc = "org.videolan.vlc";
const std::string spotify = "com.spotify.client";
const std::string editor = "org.example.editor";

const Rectangle whole{0, 0, 1920, 1080};
const BrowserTab song = tab("https://open.spotify.com/track/1", "A song");
const BrowserTab mail = tab("https://mail.example/", "Inbox");

using Lines = std::vector<std::string>;

class AlongsideDetecting : public testing::Test {
protected:
    VirtualTime time{Date(1'700'000'000)};
    ScriptedWorkspace workspace;
    ScriptedWindowTitles titles;
    AlongsideBench bench{time, workspace, titles};

    AlongsideDetecting() {
        bench.run(editor, "Editor", 1, "main.cpp");
        bench.run(chrome, "Google Chrome", 2);
        bench.run(vlc, "VLC media player", 3, "film.mkv - VLC media player");
        bench.run(spotify, "Spotify", 4, "A band - A song");
    }

    /// What is detected with this application in front, a line each.
    Lines detected(const std::optional<std::string>& front = editor, bool allowWatching = true) {
        const auto frontmost = front ? std::optional(bench.running(*front)) : std::nullopt;
        Lines lines;
        for (const auto& sample : bench.detection.evidence(frontmost, allowWatching).detected)
            lines.push_back(described(sample));
        return lines;
    }
};

TEST_F(AlongsideDetecting, withNothingPlayingOnlySoundAndAwakeDisplaysAreAskedFor) {
    EXPECT_EQ(detected(), Lines{});
    EXPECT_EQ(bench.audioQuestions, 1);
    EXPECT_EQ(bench.videoQuestions, 1);
    EXPECT_EQ(bench.screenQuestions, 0);
    EXPECT_TRUE(bench.reader.asked.empty());
}

TEST_F(AlongsideDetecting, theScreensAreAskedForOnlyWhenADisplayIsKeptAwake) {
    bench.audio = {spotify};
    detected();
    EXPECT_EQ(bench.screenQuestions, 0);
    bench.video = {vlc};
    detected();
    EXPECT_EQ(bench.screenQuestions, 1);
}

TEST_F(AlongsideDetecting, onADarkScreenOnlySoundCounts) {
    bench.audio = {vlc};
    bench.video = {vlc};
    bench.screen = {{3, whole, true}};
    EXPECT_EQ(detected(), (Lines{"Watching org.videolan.vlc (VLC media player) \"film.mkv\""}));
    EXPECT_EQ(detected(std::nullopt, false), (Lines{"Listening org.videolan.vlc (VLC media player) \"film.mkv\""}));
    EXPECT_EQ(bench.videoQuestions, 1);
    EXPECT_EQ(bench.screenQuestions, 1);
}

TEST_F(AlongsideDetecting, whoKeepsTheDisplayAwakeIsTold) {
    bench.video = {"org.example.nobody", vlc};
    EXPECT_EQ(bench.detection.evidence(std::nullopt, true).appsPlayingVideo, bench.video);
    EXPECT_TRUE(bench.detection.evidence(std::nullopt, false).appsPlayingVideo.empty());
}

TEST_F(AlongsideDetecting, anApplicationThatDoesNotRunIsSkipped) {
    bench.audio = {"org.example.nobody", spotify};
    EXPECT_EQ(detected(), (Lines{"Listening com.spotify.client (Spotify) \"A band - A song\""}));
    bench.audio = {firefox};
    bench.open(firefox, {browserWindow(whole, {song})});
    EXPECT_EQ(detected(), Lines{});
    EXPECT_TRUE(bench.reader.asked.empty());
}

TEST_F(AlongsideDetecting, theFrontApplicationIsTheMainLinesBusiness) {
    bench.audio = {spotify};
    bench.video = {vlc};
    bench.screen = {{3, whole, true}};
    EXPECT_EQ(detected(spotify), (Lines{"Watching org.videolan.vlc (VLC media player) \"film.mkv\""}));
    EXPECT_EQ(detected(vlc), (Lines{"Listening com.spotify.client (Spotify) \"A band - A song\""}));
}

TEST_F(AlongsideDetecting, theFrontApplicationIsToldByItsProcess) {
    bench.audio = {spotify};
    const auto front = [&](std::optional<std::string> id, std::optional<pid_t> pid) {
        return bench.detection.evidence(RunningApplication{std::move(id), "Any", pid}, true).detected.empty();
    };
    EXPECT_TRUE(front(spotify, 4));
    EXPECT_TRUE(front(std::nullopt, 4));
    EXPECT_FALSE(front(spotify, 5)); // another process of the same application
    EXPECT_TRUE(front(spotify, std::nullopt)) << "where no process is told the identifier decides";
    EXPECT_FALSE(front(vlc, std::nullopt));
    EXPECT_FALSE(front(std::nullopt, std::nullopt));
}

TEST_F(AlongsideDetecting, theFirstProcessOfAnApplicationStandsForIt) {
    bench.run(spotify, "Spotify", 9, "Second");
    bench.audio = {spotify};
    EXPECT_EQ(detected(), (Lines{"Listening com.spotify.client (Spotify) \"A band - A song\""}));
}

TEST_F(AlongsideDetecting, kindFollowsFromSightVideoAndSound) {
    struct Row {
        bool isVisible, playsVideo, playsAudio;
        std::string kind;
    };
    const Row rows[] = {
        {true, true, true, "Watching"},   {true, true, false, "Watching"}, {true, false, true, "Listening"},
        {false, true, true, "Listening"}, {false, true, false, ""},        {false, false, true, "Listening"},
        {true, false, false, ""},         {false, false, false, ""},
    };
    for (const auto& row : rows) {
        bench.screen = row.isVisible ? std::vector{ScreenWindow{1, whole, true}, ScreenWindow{3, whole, false}}
                                     : std::vector{ScreenWindow{1, whole, true}};
        bench.video = row.playsVideo ? std::set{vlc} : std::set<std::string>();
        bench.audio = row.playsAudio ? std::set{vlc} : std::set<std::string>();
        const auto line = row.kind + " org.videolan.vlc (VLC media player) \"film.mkv\"";
        EXPECT_EQ(detected(), row.kind.empty() ? Lines{} : Lines{line})
            << row.isVisible << row.playsVideo << row.playsAudio;
    }
}

TEST_F(AlongsideDetecting, anotherApplicationsVideoDoesNotMakeASoundWatched) {
    bench.video = {vlc};
    bench.audio = {spotify};
    bench.screen = {{4, whole, true}};
    EXPECT_EQ(detected(), (Lines{"Listening com.spotify.client (Spotify) \"A band - A song\""}));
}

TEST_F(AlongsideDetecting, resultsComeInTheOrderOfIdentifiers) {
    bench.audio = {vlc, spotify, chrome};
    bench.open(chrome, {browserWindow(whole, {song})});
    const Lines expected{
        "Listening com.google.Chrome (Google Chrome) \"A song\" https://open.spotify.com/track/1 of open.spotify.com",
        "Listening com.spotify.client (Spotify) \"A band - A song\"",
        "Listening org.videolan.vlc (VLC media player) \"film.mkv\"",
    };
    EXPECT_EQ(detected(), expected);
    std::reverse(bench.workspace.running.begin(), bench.workspace.running.end());
    EXPECT_EQ(detected(), expected);
}

TEST_F(AlongsideDetecting, aTitleIsCleanedUnsignedAndEmptyWhenItOnlyNamesTheApplication) {
    struct Row {
        std::optional<std::string> title;
        std::string becomes;
    };
    const Row rows[] = {
        {"A band - A song", "A band - A song"},
        {"● (2) A song - Spotify", "A song"},
        {"A song | Spotify", "A song"},
        {"Spotify", ""},
        {"\u200ESpotify ", ""},
        {"Spotify - Spotify", ""},
        {"spotify", "spotify"},
        {"Spotify Premium", "Spotify Premium"},
        {"", ""},
        {std::nullopt, ""},
    };
    bench.audio = {spotify};
    for (const auto& row : rows) {
        bench.titles.titles.erase(4);
        if (row.title)
            bench.titles.titles[4] = *row.title;
        EXPECT_EQ(detected(), (Lines{"Listening com.spotify.client (Spotify) \"" + row.becomes + "\""}))
            << row.title.value_or("absent");
    }
}

TEST_F(AlongsideDetecting, anApplicationIsNamedByWhatItHas) {
    bench.workspace.running = {{"org.a", "A\u200Eye", 10}, {"org.b", std::nullopt, std::nullopt}};
    bench.titles.titles[10] = "A\u200Eye";
    bench.audio = {"org.a", "org.b"};
    EXPECT_EQ(detected(), (Lines{"Listening org.a (Aye) \"\"", "Listening org.b (org.b) \"\""}));
}

TEST_F(AlongsideDetecting, aSampleOfAnApplicationHasNoAddressAndNoProject) {
    bench.audio = {spotify};
    const auto samples = bench.detection.evidence(std::nullopt, true).detected;
    const ActivitySample expected{spotify, "Spotify", "A band - A song", {}, {}, {}, SessionKind::listening};
    EXPECT_EQ(samples, std::vector{expected});
}

TEST_F(AlongsideDetecting, aFocusedBrowserIsLookedInto) {
    bench.audio = {chrome};
    bench.open(chrome, {browserWindow(whole, {mail, song})});
    const Lines expected{
        "Listening com.google.Chrome (Google Chrome) \"A song\" https://open.spotify.com/track/1 of open.spotify.com"};
    EXPECT_EQ(detected(chrome), expected);
    bench.open(chrome, {browserWindow(whole, {song, mail})});
    EXPECT_EQ(detected(chrome), Lines{});
    EXPECT_EQ(detected(editor), expected);
}

TEST_F(AlongsideDetecting, aBrowserThatOnlyThisHostReadsIsLookedIntoToo) {
    bench.run(firefox, "Firefox", 5, "A song — Mozilla Firefox");
    bench.audio = {firefox};
    bench.open(firefox, {browserWindow(whole, {mail, song})});
    EXPECT_EQ(detected(), (Lines{"Listening org.mozilla.firefox (Firefox) \"A song\" https://open.spotify.com/track/1 "
                                 "of open.spotify.com"}));
}

TEST_F(AlongsideDetecting, aBrowserThatCannotBeReadIsAnApplicationLikeAnyOther) {
    bench.run(zen, "Zen Browser", 6, "A song — Zen Browser");
    bench.audio = {zen};
    EXPECT_EQ(detected(), (Lines{"Listening app.zen-browser.zen (Zen Browser) \"A song\""}));
    EXPECT_EQ(detected(zen), Lines{});
    EXPECT_TRUE(bench.reader.asked.empty());
}

TEST_F(AlongsideDetecting, aBrowserThatRefusesOrHasNoWindowLeavesNothingEvenWhileItSounds) {
    bench.audio = {chrome, spotify};
    bench.titles.titles[2] = "A song - Google Chrome";
    const Lines others{"Listening com.spotify.client (Spotify) \"A band - A song\""};
    EXPECT_EQ(detected(), others); // an empty text
    bench.reader.allWindows[chrome] = std::string("rubbish");
    EXPECT_EQ(detected(), others);
    bench.reader.allWindows[chrome] = BrowserRefusal();
    EXPECT_EQ(detected(), others);
    bench.open(chrome, {browserWindow(whole, {song})});
    EXPECT_EQ(detected(), others) << "left alone after a refusal";
    time.advance(BrowserInspector::retryInterval);
    EXPECT_EQ(detected().size(), 2u);
}

TEST_F(AlongsideDetecting, aBrowserGivesOneSampleAndAsksItsWindowsOnce) {
    bench.audio = bench.video = {chrome};
    const Rectangle right{1920, 0, 1920, 1080};
    bench.open(chrome, {browserWindow(whole, {song}), browserWindow(right, {tab("https://vimeo.com/1", "A clip")})});
    bench.screen = {{2, whole, true}, {2, right, true}};
    EXPECT_EQ(detected(), (Lines{"Watching com.google.Chrome (Google Chrome) \"A song\" "
                                 "https://open.spotify.com/track/1 of open.spotify.com"}));
    EXPECT_EQ(detected(chrome),
              (Lines{"Watching com.google.Chrome (Google Chrome) \"A clip\" https://vimeo.com/1 of vimeo.com"}));
    EXPECT_EQ(bench.reader.asked, (Lines{"windows com.google.Chrome", "windows com.google.Chrome"}));
}

TEST_F(AlongsideDetecting, aMutedVideoInAHiddenWindowIsNeitherWatchedNorHeard) {
    bench.video = {chrome};
    bench.open(chrome, {browserWindow(whole, {tab("https://vimeo.com/1", "A clip")})});
    bench.screen = {{1, whole, true}};
    EXPECT_EQ(detected(), Lines{});
}

} // namespace
} // namespace kestrio
