#include "Kestrio/Views/Window/TimelineModel.h"
#include "Tests/Views/Window/DashboardScreen.h"
#include "Tests/Views/Window/PageScreen.h"

#include <QAbstractItemModelTester>

namespace kestrio {
namespace {

struct TimelineScreen : PageScreen<TimelineModel> {
    explicit TimelineScreen(std::vector<ActivitySession> history = exampleWorkday(), RangeMode mode = RangeMode::day)
        : PageScreen("Timeline", std::move(history), mode) {}

    /// Each row in a word and its title.
    std::vector<std::string> rows() {
        std::vector<std::string> all;
        for (int row = 0; row < model.rows()->rowCount(); ++row) {
            const auto index = model.rows()->index(row);
            const auto value = index.data(TimelineRows::valueRole).toMap();
            const auto kind = index.data(TimelineRows::kindRole).toString();
            const auto title = kind == "block" ? value["headline"] : value["title"];
            all.push_back((kind + ": " + title.toString()).toStdString());
        }
        return all;
    }

    int rowOf(const std::string& wanted) {
        const auto all = rows();
        return static_cast<int>(std::ranges::find(all, wanted) - all.begin());
    }
};

TEST(TimelineView, withoutAnythingSaysSo) {
    TimelineScreen screen{noHistory};
    EXPECT_TRUE(screen.shows("No activity yet"));
    EXPECT_FALSE(screen.shows("Hide brief"));
}

TEST(TimelineView, listsTheBlocksOfADayTheNewestFirst) {
    TimelineScreen screen;
    const auto rows = screen.rows();
    ASSERT_FALSE(rows.empty());
    EXPECT_EQ(rows.front(), "day: Today");
    EXPECT_EQ(screen.model.rows()->index(1).data(TimelineRows::dayRole), "Today");
    EXPECT_TRUE(screen.shows("When you were active"));
}

TEST(TimelineView, itsTimesAreWholeInEveryLocale) {
    struct LocalTimeline : WindowStage, Screen {
        explicit LocalTimeline(const char* locale) : WindowStage(exampleWorkday()) {
            calendar = Calendar(locale, "Europe/Berlin");
            model = std::make_unique<TimelineModel>(parts);
            model->setShown(true);
            for (int row = model->rows()->rowCount(); row-- > 0;)
                model->rows()->toggle(row);
            show("Pages/Timeline.qml", {{"page", QVariant::fromValue(model.get())}});
        }
        ~LocalTimeline() { close(); }
        std::unique_ptr<TimelineModel> model;
    };
    for (const auto* const locale : {"en_GB", "en_US", "de_DE", "ja_JP", "ar_EG", "ko_KR", "el_GR"}) {
        const LocalTimeline screen(locale);
        const auto cut = screen.items([](QQuickItem& item) { return item.property("truncated").toBool(); });
        for (const auto* const text : cut)
            ADD_FAILURE() << locale << ": " << text->property("text").toString().toStdString();
    }
}

TEST(TimelineView, theModelKeepsItsPromises) {
    TimelineScreen screen{exampleMonth(40), RangeMode::week};
    const QAbstractItemModelTester tester(screen.model.rows(), QAbstractItemModelTester::FailureReportingMode::Fatal);
    screen.model.setSearch("a");
    screen.model.setHideBrief(true);
    screen.model.rows()->toggle(1);
    screen.model.rows()->toggle(1);
    screen.model.setSearch("");
    screen.relive(exampleMonth(41));
    screen.relive(noHistory);
    screen.relive(exampleMonth(40));
}

TEST(TimelineView, aClickOnABlockShowsWhatItConsistedOf) {
    TimelineScreen screen;
    const auto before = screen.rows();
    screen.model.rows()->toggle(1);
    const auto opened = screen.rows();
    EXPECT_GT(opened.size(), before.size());
    EXPECT_TRUE(opened[2].starts_with("entry: ")) << opened[2];
    EXPECT_TRUE(screen.model.rows()->index(1).data(TimelineRows::isOpenRole).toBool());
    screen.model.rows()->toggle(1);
    EXPECT_EQ(screen.rows(), before);
    screen.model.rows()->toggle(0); // a day does not open
    screen.model.rows()->toggle(-1);
    screen.model.rows()->toggle(1000);
    EXPECT_EQ(screen.rows(), before);
}

TEST(TimelineView, aBlockThatIsOpenStaysOpenInAFreshReport) {
    TimelineScreen screen;
    screen.model.rows()->toggle(1);
    const auto opened = screen.rows();
    auto longer = exampleWorkday();
    longer.push_back(longer[1]);
    longer.back().id = 1000;
    longer.back().start = screen.calendar.date(2026, 11, 20, 16);
    longer.back().end = screen.calendar.date(2026, 11, 20, 16, 30);
    longer.back().title = "evening.md";
    screen.relive(longer);
    const auto rows = screen.rows();
    EXPECT_EQ(rows.size(), opened.size() + 1);
    EXPECT_TRUE(std::ranges::any_of(rows, [](const auto& row) { return row.starts_with("entry: "); }));
}

TEST(TimelineView, theSearchLeavesWhatItFinds) {
    TimelineScreen screen;
    screen.enter("Search titles, apps, URLs");
    screen.type("beta");
    EXPECT_EQ(screen.model.search(), "beta");
    ASSERT_EQ(screen.rows().size(), 2U);
    screen.type("zzz");
    EXPECT_TRUE(screen.rows().empty());
    EXPECT_TRUE(screen.shows("Nothing matches “betazzz”."));
    screen.press(Qt::Key_Escape);
    EXPECT_GT(screen.rows().size(), 2U);
}

TEST(TimelineView, whatWasBriefCanBeLeftOut) {
    TimelineScreen screen;
    const auto all = screen.rows().size();
    screen.click("Hide brief");
    EXPECT_TRUE(screen.model.hideBrief());
    EXPECT_LT(screen.rows().size(), all);
    screen.click("Hide brief");
    EXPECT_EQ(screen.rows().size(), all);
}

TEST(TimelineView, nothingIsWorkedOutWhileNobodySeesIt) {
    TimelineScreen screen;
    screen.model.setShown(false);
    const auto before = screen.rows();
    screen.relive(noHistory);
    EXPECT_EQ(screen.rows(), before);
    screen.model.setShown(true);
    EXPECT_TRUE(screen.rows().empty());
}

} // namespace
} // namespace kestrio
