#include "Kestrio/Views/Window/YouTubeModel.h"
#include "Tests/Views/Window/PageScreen.h"

namespace kestrio {
namespace {

ReportBench& watch(ReportBench& bench, int number, double start, double length) {
    const auto id = std::to_string(10'000'000'000 + number);
    return bench.add(
        start, length,
        {.app = "Browser", .title = "Video " + std::to_string(number), .url = "https://www.youtube.com/watch?v=" + id});
}

/// So many videos, the first one longest and the last one latest.
std::vector<ActivitySession> watched(int count) {
    ReportBench bench;
    double start = 8 * hour;
    for (int i = 1; i <= count; ++i) {
        const double length = 400 - i;
        watch(bench, i, start, length);
        start += length;
    }
    return bench.sessions;
}

struct YouTubeScreen : PageScreen<YouTubeModel> {
    explicit YouTubeScreen(std::vector<ActivitySession> history) : PageScreen("YouTube", std::move(history)) {}

    std::string first() {
        return model.videos()
            ->data(model.videos()->index(0), RowList::rowRole)
            .toMap()["title"]
            .toString()
            .toStdString();
    }
};

TEST(YouTubeView, withoutAnythingSaysSo) {
    YouTubeScreen screen(exampleWorkday());
    EXPECT_TRUE(screen.shows("No YouTube activity"));
    EXPECT_FALSE(screen.shows("Videos"));
}

TEST(YouTubeView, listsTheVideosInTheChosenOrder) {
    YouTubeScreen screen(watched(3));
    EXPECT_TRUE(screen.shows("Time on YouTube"));
    EXPECT_EQ(screen.first(), "Video 1");
    screen.click("Watch time");
    screen.click("Recent");
    EXPECT_EQ(screen.first(), "Video 3");
    EXPECT_TRUE(screen.shows("Recent"));
    screen.model.sortBy(7);
    EXPECT_EQ(screen.model.sort(), "Recent");
}

TEST(YouTubeView, filtersTheVideos) {
    YouTubeScreen screen(watched(12));
    screen.enter("Filter");
    screen.type("video 11");
    EXPECT_EQ(screen.model.videos()->count(), 1);
    screen.type("1");
    EXPECT_TRUE(screen.shows("No matches."));
    screen.press(Qt::Key_Escape);
    EXPECT_EQ(screen.model.videos()->count(), 12);
}

TEST(YouTubeView, showsALongListInPortions) {
    YouTubeScreen screen(watched(130));
    EXPECT_EQ(screen.model.videos()->count(), 25);
    EXPECT_EQ(screen.model.moreTitle(), "Show 100 more");
    screen.model.showMore();
    EXPECT_EQ(screen.model.videos()->count(), 125);
    EXPECT_EQ(screen.model.moreTitle(), "Show 5 more");
    screen.load();
    EXPECT_EQ(screen.model.videos()->count(), 125) << "a fresh report keeps what was asked for";
    screen.model.showMore();
    EXPECT_EQ(screen.model.moreTitle(), "");
    EXPECT_EQ(screen.model.videos()->count(), 130);
}

TEST(YouTubeView, asksForPicturesOnlyWhereTheyAreWanted) {
    YouTubeScreen screen(watched(1));
    const auto url = [&] {
        return screen.model.videos()
            ->data(screen.model.videos()->index(0), RowList::rowRole)
            .toMap()["thumbnail"]
            .toMap()["url"];
    };
    EXPECT_FALSE(url().isValid());
}

} // namespace
} // namespace kestrio
