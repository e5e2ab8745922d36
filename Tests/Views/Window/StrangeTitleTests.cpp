// Titles are what any program may write into its window: very long, of several lines, in other scripts, of emoji. Every
// page shows them, and no row is taller for it.
#include "Kestrio/Views/Window/AppsModel.h"
#include "Kestrio/Views/Window/OverviewModel.h"
#include "Kestrio/Views/Window/ProjectsModel.h"
#include "Kestrio/Views/Window/TimelineModel.h"
#include "Kestrio/Views/Window/WebsitesModel.h"
#include "Kestrio/Views/Window/YouTubeModel.h"
#include "Tests/Views/Window/PageScreen.h"

#include <set>

namespace kestrio {
namespace {

const std::vector<std::string>& strangeTitles() {
    static const std::vector<std::string> all{
        std::string(500, 'W'),
        "one line\nand another\r\nand a third\u2028and a fourth",
        "\tbetween\ttabs\t",
        "مرحبا بالعالم — صفحة طويلة جدا عن كل شيء",
        "שלום, עולם (example.org) 2026",
        "👩‍💻🇩🇪🏴‍☠️ 🧑🏿‍🚀",
        "Z\u0351\u0343\u0300a\u0318\u0319\u031Cl\u0315g\u0300\u0301\u0302o",
        "<b>bold</b> & <img src='https://example.org/x.png'>",
        "\u202Egnirts desrever\u202C",
        " ",
        "%1 %s {} {0} \\n",
    };
    return all;
}

/// Each title as that of a window, an application, a project, a page, a video, and something played.
std::vector<ActivitySession> strangeHistory() {
    ReportBench bench;
    double start = 8 * hour;
    int number = 0;
    for (const auto& title : strangeTitles()) {
        const auto id = std::to_string(++number);
        const auto video = "https://www.youtube.com/watch?v=" + std::to_string(10'000'000'000 + number);
        bench.add(start, 300, {.app = title, .title = title, .project = title, .bundleID = "org.example.app" + id})
            .add(start + 300, 200, {.app = "Browser", .title = title, .url = "https://s" + id + ".org/" + title})
            .add(start + 500, 200, {.app = "Browser", .title = title, .url = video})
            .add(start, 700,
                 {.app = title, .title = title, .kind = SessionKind::listening, .bundleID = "org.example.app" + id});
        start += 1000;
    }
    return bench.sessions;
}

template <class Model>
struct StrangeScreen : PageScreen<Model> {
    explicit StrangeScreen(const char* page) : PageScreen<Model>(page, strangeHistory()) {}

    /// The heights of all rows with a property of this name.
    std::set<double> heights(const char* property) {
        std::set<double> all;
        for (auto* const row : this->items([&](QQuickItem& item) { return item.property(property).isValid(); }))
            all.insert(row->height());
        return all;
    }

    /// Every text of one line is of one line and within its row.
    void expectSingleLines() {
        for (auto* const text : this->items([](QQuickItem& item) { return item.property("maximumLineCount") == 1; }))
            EXPECT_LE(text->property("lineCount").toInt(), 1) << text->property("text").toString().toStdString();
    }
};

template <class Model>
void expectSoundPanes(StrangeScreen<Model>& screen) {
    for (int place = 0; place < screen.model.rows()->count(); ++place) {
        screen.model.selectPlace(place);
        screen.settle();
        EXPECT_TRUE(screen.shows("When")) << place;
        screen.expectSingleLines();
    }
}

TEST(StrangeTitles, standInTheListAndThePanesOfApps) {
    StrangeScreen<AppsModel> screen("Apps");
    expectSoundPanes(screen);
    EXPECT_LE(screen.heights("selected").size(), 2u) << "with and without a second line";
}

TEST(StrangeTitles, standInTheListAndThePanesOfWebsites) {
    StrangeScreen<WebsitesModel> screen("Websites");
    expectSoundPanes(screen);
    EXPECT_EQ(screen.heights("selected").size(), 1u);
}

TEST(StrangeTitles, standInTheListAndThePanesOfProjects) {
    StrangeScreen<ProjectsModel> screen("Projects");
    EXPECT_GT(screen.model.rows()->count(), 5);
    expectSoundPanes(screen);
    EXPECT_EQ(screen.heights("selected").size(), 1u);
}

TEST(StrangeTitles, standAmongVideos) {
    StrangeScreen<YouTubeModel> screen("YouTube");
    EXPECT_EQ(screen.model.videos()->count(), static_cast<int>(strangeTitles().size()));
    screen.expectSingleLines();
}

TEST(StrangeTitles, standInTheOverview) {
    StrangeScreen<OverviewModel> screen("Overview");
    screen.expectSingleLines();
}

TEST(StrangeTitles, standInTheTimeline) {
    StrangeScreen<TimelineModel> screen("Timeline");
    for (int row = screen.model.rows()->rowCount(); row-- > 0;)
        screen.model.rows()->toggle(row);
    screen.settle();
    screen.expectSingleLines();
    for (const auto* const kind : {"block", "entry"}) {
        std::set<double> heights;
        for (auto* const row : screen.items([&](QQuickItem& item) { return item.property("kind") == kind; }))
            heights.insert(row->height());
        EXPECT_EQ(heights.size(), 1u) << kind;
    }
}

} // namespace
} // namespace kestrio
