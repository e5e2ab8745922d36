#include "Kestrio/Pages/YouTubePage.h"
#include "Tests/Pages/PagesBench.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

ActivityReport watchedReport() {
    const PagesBench bench;
    auto report = ActivityReport::empty(bench.day, Granularity::hour);
    report.total = Seconds(10'000);
    report.youtubeTime = Seconds(1000);
    report.videos = {watchedVideo("long", 600), watchedVideo("short", 60, 0, true), watchedVideo("late", 50),
                     watchedVideo("late too", 40)};
    report.videos[0].lastWatched = bench.at(9);
    report.videos[1].lastWatched = bench.at(12);
    report.videos[2].lastWatched = bench.at(15);
    report.videos[3].lastWatched = bench.at(15);
    return report;
}

YouTubePage page(const ActivityReport& report, const VideoChoice& choice = {}) {
    const PagesBench bench;
    return std::get<YouTubePage>(youtubePage(report, choice, bench.viewpoint()));
}

TEST(YouTubePage, withoutAnythingSaysWhatWouldShow) {
    const PagesBench bench;
    auto report = ActivityReport::empty(bench.day, Granularity::hour);
    EXPECT_EQ(std::get<EmptyActivity>(youtubePage(report, {}, bench.viewpoint())),
              (EmptyActivity{"No YouTube activity", "play.rectangle",
                             "Videos you watch on YouTube in Chrome, Safari, Brave, Edge or Arc show up here with how "
                             "long you watched each one."}));
    report.youtubeAlongsideTime = Seconds(1);
    EXPECT_EQ(page(report).message, "You browsed YouTube but didn't open a video.");
    report.youtubeAlongsideTime = Seconds(0);
    report.youtubeTime = Seconds(1);
    EXPECT_EQ(page(report).message, "You browsed YouTube but didn't open a video.");
}

TEST(YouTubePage, hasFourFigures) {
    auto report = watchedReport();
    report.youtubeSearches = {item("bread", 10, Date())};
    struct Row {
        const char* title;
        const char* symbol;
        const char* value;
        const char* detail;
    };
    const Row rows[] = {
        {"Time on YouTube", "play.rectangle.fill", "16m", "10% of active time"},
        {"Videos", "film", "3", "watched 11m"},
        {"Shorts", "iphone", "1", "watched 1m"},
        {"Browsing & Searching", "magnifyingglass", "4m", "1 search"},
    };
    const auto stats = youtubeStats(report);
    ASSERT_EQ(stats.size(), std::size(rows));
    for (std::size_t i = 0; i < stats.size(); ++i) {
        EXPECT_EQ(stats[i].title, rows[i].title);
        EXPECT_EQ(stats[i].symbol, rows[i].symbol) << rows[i].title;
        EXPECT_EQ(stats[i].value, rows[i].value) << rows[i].title;
        EXPECT_EQ(stats[i].detail, rows[i].detail) << rows[i].title;
        EXPECT_TRUE(stats[i].help) << rows[i].title;
    }
}

TEST(YouTubePage, tellsFocusedAndAlongsideApart) {
    auto report = watchedReport();
    report.youtubeAlongsideTime = Seconds(600);
    EXPECT_EQ(youtubeStats(report)[0].value, "26m");
    EXPECT_EQ(youtubeStats(report)[0].detail, "16m focused · 10m alongside");
}

TEST(YouTubePage, browsingIsNeverLessThanNothing) {
    auto report = watchedReport();
    report.youtubeTime = Seconds(100); // the rest of the watching was alongside
    EXPECT_EQ(youtubeStats(report)[3].value, "0s");
    EXPECT_EQ(youtubeStats(report)[3].detail, "0 searches");
    report.youtubeSearches.resize(2);
    EXPECT_EQ(youtubeStats(report)[3].detail, "2 searches");
}

TEST(YouTubePage, sortsStablyAndFilters) {
    const auto report = watchedReport();
    struct Row {
        VideoSort sort;
        const char* filter;
        Texts videos;
        std::optional<std::string> message;
    };
    const Row rows[] = {
        {VideoSort::watchTime, "", {"Video long", "Video short", "Video late", "Video late too"}, std::nullopt},
        {VideoSort::recent, "", {"Video late", "Video late too", "Video short", "Video long"}, std::nullopt},
        {VideoSort::watchTime, " LATE ", {"Video late", "Video late too"}, std::nullopt},
        {VideoSort::recent, "short", {"Video short"}, std::nullopt},
        {VideoSort::recent, "zzz", {}, "No matches."},
    };
    for (const auto& row : rows) {
        const auto shown = page(report, {.sort = row.sort, .filter = ItemFilter(row.filter)});
        EXPECT_EQ(titles(shown.videos), row.videos) << row.filter;
        EXPECT_EQ(shown.message, row.message) << row.filter;
    }
    EXPECT_EQ(label(VideoSort::watchTime), "Watch time");
    EXPECT_EQ(label(VideoSort::recent), "Recent");
    EXPECT_STREQ(YouTubePage::sortTitle, "Sort");
}

TEST(YouTubePage, listsSearchesBelow) {
    const PagesBench bench;
    auto report = watchedReport();
    EXPECT_FALSE(page(report).searches);
    report.youtubeSearches = {item("best bread flour", 100, bench.at(9, 5), 2)};
    const auto shown = page(report);
    EXPECT_EQ(shown.videosHead, (CardHead{"Videos", "play.rectangle.on.rectangle"}));
    ASSERT_TRUE(shown.searches);
    ASSERT_EQ(shown.searches->rows.size(), 1u);
    EXPECT_EQ(shown.searches->rows[0].detail, "2 times · last 09:05");
    EXPECT_DOUBLE_EQ(shown.searches->rows[0].fraction, 0.1);
}

} // namespace
} // namespace kestrio
