#include "Kestrio/Shell/Settings.h"
#include "Kestrio/Views/Window/OverviewModel.h"
#include "Tests/Views/Window/PageScreen.h"

namespace kestrio {
namespace {

struct OverviewScreen : PageScreen<OverviewModel> {
    explicit OverviewScreen(std::vector<ActivitySession> history = exampleWorkday(), RangeMode mode = RangeMode::day)
        : PageScreen("Overview", std::move(history), mode) {}
};

TEST(OverviewView, withoutAnythingSaysSo) {
    const OverviewScreen screen{noHistory};
    EXPECT_TRUE(screen.shows("No activity yet"));
    EXPECT_FALSE(screen.shows("Active Time"));
}

TEST(OverviewView, showsTheFiguresAndTheCards) {
    const OverviewScreen screen;
    for (const auto* const text : {"Active Time", "Productive", "Distracting", "Alongside", "App Switches", "Activity",
                                   "Categories", "Top Apps", "Top Websites", "YouTube", "Watched & listened alongside",
                                   "Projects", "No YouTube videos watched.", "Editor", "a.org", "harbour", "Song"})
        EXPECT_TRUE(screen.shows(text)) << text;
}

TEST(OverviewView, aCardWithoutAnythingIsLeftOut) {
    auto history = exampleWorkday();
    std::erase_if(history, [](const auto& session) { return session.project || session.kind != SessionKind::focus; });
    const OverviewScreen screen{history};
    EXPECT_FALSE(screen.shows("Projects"));
    EXPECT_FALSE(screen.shows("Watched & listened alongside"));
}

TEST(OverviewView, turnsFromNothingToSomethingAndBack) {
    OverviewScreen screen{noHistory};
    screen.relive(exampleWorkday());
    EXPECT_TRUE(screen.shows("Active Time"));
    screen.relive(noHistory);
    EXPECT_TRUE(screen.shows("No activity yet"));
    EXPECT_FALSE(screen.shows("Active Time"));
}

TEST(OverviewView, asksForPicturesOnlyOnceTheyAreWanted) {
    auto history = exampleWorkday();
    history[0].url = "https://www.youtube.com/watch?v=abcdefghijk";
    history[0].domain = "youtube.com";
    OverviewScreen screen{history};
    const auto address = [&] {
        const auto rows = screen.model.content()["youtube"].toMap()["rows"].toList();
        return rows.isEmpty() ? QVariant("no row") : rows[0].toMap()["icon"].toMap()["url"];
    };
    EXPECT_FALSE(address().isValid());
    screen.settings.set(settingKey::showYouTubeThumbnails, true);
    EXPECT_TRUE(address().isValid());
    screen.settings.set(settingKey::showYouTubeThumbnails, false); // before anybody asks the network
}

} // namespace
} // namespace kestrio
