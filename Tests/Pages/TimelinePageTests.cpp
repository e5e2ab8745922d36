#include "Kestrio/Pages/TimelinePage.h"
#include "Tests/Pages/PagesBench.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

TimelineBlock block(std::int64_t id, Date start, double active, std::string appName, Texts entryTitles = {}) {
    TimelineBlock made;
    made.id = id;
    made.start = start;
    made.end = start + Seconds(active);
    made.active = Seconds(active);
    made.appName = std::move(appName);
    made.headline = made.appName;
    for (auto& title : entryTitles)
        made.entries.push_back({id, start, made.end, Seconds(active), std::move(title), std::nullopt, std::nullopt});
    return made;
}

struct Timeline : PagesBench {
    Timeline() {
        report.blocks = {
            block(1, calendar.date(2026, 11, 18, 23, 59), 120, "Editor", {"main.cpp"}),
            block(2, calendar.date(2026, 11, 19, 8), 59.9, "Browser", {"Alpha"}),
            block(3, calendar.date(2026, 11, 19, 9), 60, "Browser", {"Beta"}),
            block(4, at(10), 3600, "Terminal", {"ninja", "git log"}),
        };
        report.blocks[1].entries[0].domain = "Example.org";
    }

    std::vector<std::vector<std::int64_t>> ids(const TimelineSearch& search) const {
        std::vector<std::vector<std::int64_t>> all;
        for (const auto& section : page(search).sections) {
            all.emplace_back();
            for (const auto place : section.blocks)
                all.back().push_back(report.blocks[place].id);
        }
        return all;
    }
    TimelinePage page(const TimelineSearch& search = {}) const {
        return std::get<TimelinePage>(timelinePage(report, search, viewpoint()));
    }

    ActivityReport report;
};

using Sections = std::vector<std::vector<std::int64_t>>;

TEST(TimelinePage, withoutBlocksIsTheEmptyPage) {
    const PagesBench bench;
    EXPECT_EQ(std::get<EmptyActivity>(timelinePage(ActivityReport(), {}, bench.viewpoint())), noActivityYet());
}

TEST(TimelinePage, runsFromTheNewestDayToTheOldest) {
    const Timeline timeline;
    EXPECT_EQ(timeline.ids({}), (Sections{{4}, {3, 2}, {1}}));
    const auto sections = timeline.page().sections;
    EXPECT_EQ(titles(sections), (Texts{"Today", "Yesterday", "Wednesday, 18 Nov"}));
    EXPECT_EQ(sections[0].total, "1h");
    EXPECT_EQ(sections[1].total, "2m");
    EXPECT_EQ(sections[1].day, timeline.calendar.date(2026, 11, 19));
}

TEST(TimelinePage, aBlockOverMidnightStandsUnderTheDayOfItsBeginning) {
    Timeline timeline;
    timeline.report.blocks = {block(1, timeline.calendar.date(2026, 11, 18, 23, 30), 3600, "Editor"),
                              block(2, timeline.calendar.date(2026, 11, 19), 60, "Browser"),
                              block(3, timeline.calendar.date(2026, 11, 19, 23, 59, 59), 5, "Editor")};
    EXPECT_EQ(timeline.ids({}), (Sections{{3, 2}, {1}}));
    EXPECT_EQ(timeline.page().sections[1].total, "1h");
}

TEST(TimelinePage, daysOfAnyLengthAreDays) {
    Timeline timeline;
    timeline.report.blocks.clear();
    const int days[][2] = {{3, 28},  {3, 29},  {3, 30},
                           {10, 24}, {10, 25}, {10, 26}}; // the clocks change on the 29th, 25th
    std::int64_t id = 0;
    for (const auto& [month, day] : days)
        for (const int hour : {0, 2, 3, 23})
            timeline.report.blocks.push_back(
                block(++id, timeline.calendar.date(2026, month, day, hour, 30), 60, "Editor"));
    EXPECT_EQ(
        timeline.ids({}),
        (Sections{{24, 23, 22, 21}, {20, 19, 18, 17}, {16, 15, 14, 13}, {12, 11, 10, 9}, {8, 7, 6, 5}, {4, 3, 2, 1}}));
}

TEST(TimelinePage, itsTimesAreMeasuredByTheLocalesOwn) {
    struct Row {
        const char* locale;
        TimelineSamples samples;
    };
    const Row rows[] = {
        {"en_GB", {{"10:00 – 10:00", "22:00 – 22:00"}, {"10:00", "22:00"}}},
        {"en_US", {{"10:00 AM – 10:00 AM", "10:00 PM – 10:00 PM"}, {"10:00 AM", "10:00 PM"}}},
    };
    for (const auto& row : rows) {
        auto samples = timelineSamples(Calendar(row.locale, "Europe/Berlin"));
        for (auto* const texts : {&samples.ranges, &samples.times})
            std::ranges::transform(*texts, texts->begin(), withPlainBlanks);
        EXPECT_EQ(samples, row.samples) << row.locale;
    }
}

TEST(TimelinePage, hidesWhatIsBriefAndFindsWhatIsTyped) {
    const Timeline timeline;
    struct Row {
        const char* text;
        bool hideBrief;
        Sections found;
        std::optional<std::string> message;
    };
    const Row rows[] = {
        {"", true, {{4}, {3}, {1}}, std::nullopt},
        {"  ", false, {{4}, {3, 2}, {1}}, std::nullopt},
        {" BROWSER ", false, {{3, 2}}, std::nullopt},
        {"example.ORG", false, {{2}}, std::nullopt},
        {"example.org", true, {}, "Nothing matches “example.org”."},
        {"git", false, {{4}}, std::nullopt},
        {"terminal ninja", false, {{4}}, std::nullopt},
        {" No Such ", false, {}, "Nothing matches “No Such”."},
        {"nïnja", false, {}, "Nothing matches “nïnja”."},
    };
    for (const auto& row : rows) {
        const TimelineSearch search{row.text, row.hideBrief};
        EXPECT_EQ(timeline.ids(search), row.found) << row.text;
        EXPECT_EQ(timeline.page(search).message, row.message) << row.text;
    }
}

TEST(TimelinePage, nothingLeftWithoutASearchNeedsNoWords) {
    Timeline timeline;
    timeline.report.blocks.resize(2);
    timeline.report.blocks.erase(timeline.report.blocks.begin());
    const auto page = timeline.page({"", true});
    EXPECT_TRUE(page.sections.empty());
    EXPECT_EQ(page.message, std::nullopt);
}

TEST(TimelinePage, itsControlsHaveTheirWords) {
    EXPECT_STREQ(TimelineSearch::prompt, "Search titles, apps, URLs");
    EXPECT_STREQ(TimelineSearch::hideBriefTitle, "Hide brief");
    EXPECT_STREQ(TimelineSearch::hideBriefSymbol, "line.3.horizontal.decrease.circle");
    EXPECT_STREQ(TimelineSearch::hideBriefHelp, "Hide stretches shorter than one minute");
}

TEST(TimelineBlockRow, saysWhenHowLongAndHowMuch) {
    const Timeline timeline;
    const auto row = timelineBlockRow(timeline.report.blocks[3], "", timeline.calendar);
    EXPECT_EQ(row.headline, "Terminal");
    EXPECT_EQ(row.times, "10:00 – 11:00");
    EXPECT_EQ(row.duration, "1h");
    EXPECT_EQ(row.count, "2 items");
    EXPECT_EQ(row.badge, std::nullopt);
    EXPECT_EQ(row.entries[0].time, "10:00");
    EXPECT_EQ(row.entries[0].duration, "1h");
    auto played = timeline.report.blocks[3];
    played.kind = SessionKind::listening;
    EXPECT_EQ(timelineBlockRow(played, "", timeline.calendar).badge, alongsideBadge(SessionKind::listening));
}

TEST(TimelineBlockRow, showsTheEntriesThatTheSearchMeant) {
    Timeline timeline;
    auto& one = timeline.report.blocks[3];
    one.entries[1].domain = "Example.org";
    struct Row {
        const char* query;
        Texts entries;
        const char* count;
    };
    const Row rows[] = {
        {"", {"ninja", "git log"}, "2 items"},
        {"termin", {"ninja", "git log"}, "2 items"}, // the application
        {"git", {"git log"}, "1 items"},
        {"example", {"git log"}, "1 items"},
        {"ninja", {"ninja"}, "1 items"},
        {"terminal ninja", {}, "0 items"}, // found across the block's words, in no entry by itself
    };
    for (const auto& row : rows) {
        const auto shown = timelineBlockRow(one, row.query, timeline.calendar);
        EXPECT_EQ(titles(shown.entries), row.entries) << row.query;
        EXPECT_EQ(shown.count, row.count) << row.query;
    }
    one.entries[0].title.clear();
    EXPECT_EQ(timelineBlockRow(one, "", timeline.calendar).entries[0].title, "Untitled window");
}

} // namespace
} // namespace kestrio
