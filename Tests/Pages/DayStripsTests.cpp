#include "Kestrio/Pages/DayStrips.h"
#include "Tests/Pages/PagesBench.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

using enum SessionKind;

ActivityReport wholeMonth(const PagesBench& bench) {
    return bench.report(bench.calendar.month(bench.day.start), Granularity::day);
}

TEST(DayStrips, aDayWithOnlySoundAlongsideStillHasARow) {
    PagesBench bench;
    bench.add(9 * hour, 600).add(-20 * hour, 600, {.kind = listening}).add(10 * hour, 60, {.kind = watching});
    const auto report = wholeMonth(bench);
    const auto days = stripDays(report, bench.calendar);
    ASSERT_EQ(days.size(), 2u);
    EXPECT_EQ(days[0].start, bench.calendar.date(2026, 11, 19));
    EXPECT_TRUE(days[0].sessions.empty());
    EXPECT_EQ(days[0].alongside.size(), 1u);
    EXPECT_EQ(days[1].sessions.size(), 1u);
    EXPECT_EQ(days[1].alongside.size(), 1u);
    EXPECT_TRUE(stripDays(ActivityReport(), bench.calendar).empty());
}

TEST(DayStrips, theHoursFitAllDays) {
    struct Row {
        const char* what;
        std::vector<std::pair<double, double>> sessions; // by hours from the start of the day
        HourRange hours;
    };
    const Row rows[] = {
        {"nothing", {}, {0, 24}},
        {"within one hour", {{9.1, 9.5}}, {9, 10}},
        {"to the full hour", {{9, 11}}, {9, 11}},
        {"just beyond", {{9, 11.01}}, {9, 12}},
        {"to midnight", {{22, 24}}, {22, 24}},
        {"over midnight", {{23, 25}}, {23, 24}},
        {"two days", {{10, 12}, {24 + 7.5, 24 + 8}}, {7, 12}},
        {"the longest ends last", {{9, 15}, {10, 11}}, {9, 15}},
    };
    for (const auto& row : rows) {
        PagesBench bench;
        for (const auto& [from, to] : row.sessions)
            bench.add(from * hour, (to - from) * hour);
        const auto report = wholeMonth(bench);
        EXPECT_EQ(hourRange(stripDays(report, bench.calendar), bench.calendar), row.hours) << row.what;
    }
    PagesBench played;
    played.add(9 * hour, 60, {.kind = listening});
    const auto report = played.report();
    EXPECT_EQ(hourRange(stripDays(report, played.calendar), played.calendar), (HourRange{0, 24}));
}

TEST(DayStrips, manyDaysAreLower) {
    struct Row {
        std::size_t days;
        StripLayout layout;
    };
    const Row rows[] = {{1, {52, 12, false, false}},
                        {2, {32, 8, false, true}},
                        {8, {32, 8, false, true}},
                        {9, {20, 5, true, true}},
                        {31, {20, 5, true, true}}};
    for (const auto& row : rows)
        EXPECT_EQ(stripLayout(row.days), row.layout) << row.days;
}

TEST(DayStrips, theHourAxisWidensFromFourteenMarks) {
    const PagesBench bench;
    const auto hours = [&](int lowest, int highest) {
        std::vector<int> all;
        for (const auto& mark : hourAxis({lowest, highest}, bench.viewpoint()))
            all.push_back(mark.hour);
        return all;
    };
    EXPECT_EQ(hours(8, 20), (std::vector{8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20})); // thirteen
    EXPECT_EQ(hours(8, 21), (std::vector{8, 11, 14, 17, 20}));                                // fourteen
    EXPECT_EQ(hours(0, 24), (std::vector{0, 3, 6, 9, 12, 15, 18, 21, 24}));
    const auto marks = hourAxis({9, 10}, bench.viewpoint());
    EXPECT_EQ(marks, (std::vector<DayStrips::HourMark>{{9, "09"}, {10, "10"}}));
    EXPECT_EQ(hourAxis({0, 24}, bench.viewpoint()).back().label, "00");
}

TEST(DayStrips, theHourAxisSpeaksTheLocalesHours) {
    struct Row {
        const char* locale;
        Texts labels;
    };
    const Row rows[] = {{"en_GB", {"11", "12", "13"}},
                        {"en_US", {"11 AM", "12 PM", "1 PM"}},
                        {"de_DE", {"11 Uhr", "12 Uhr", "13 Uhr"}},
                        {"ja_JP", {"11時", "12時", "13時"}}};
    for (const auto& row : rows) {
        const PagesBench bench{Calendar(row.locale, "Europe/Berlin")};
        Texts labels;
        for (const auto& mark : hourAxis({11, 13}, bench.viewpoint()))
            labels.push_back(withPlainBlanks(mark.label));
        EXPECT_EQ(labels, row.labels) << row.locale;
    }
}

TEST(DayStrips, nothingIsLostWhereTheClocksChange) {
    struct Row {
        const char* what;
        int month, day;
        int startHour, endHour; // on the clocks
        HourRange hours;
    };
    const Row rows[] = {
        {"spring, after the change", 3, 29, 8, 10, {7, 9}}, // an hour less has passed than the clocks say
        {"spring, before the change", 3, 29, 0, 2, {0, 2}},
        {"autumn, after the change", 10, 25, 8, 10, {8, 11}},
        {"the day before", 3, 28, 8, 10, {8, 10}},
    };
    for (const auto& row : rows) {
        PagesBench bench;
        const auto start = bench.calendar.date(2026, row.month, row.day, row.startHour);
        const auto end = bench.calendar.date(2026, row.month, row.day, row.endHour);
        bench.add((start - bench.day.start).count(), (end - start).count(), {.title = "Sunday"});
        const auto report = bench.report(bench.calendar.month(start), Granularity::day);
        const auto strips = dayStrips(report, bench.viewpoint());
        EXPECT_EQ(strips.hours, row.hours) << row.what;
        ASSERT_EQ(strips.days.size(), 1u) << row.what;
        const auto [x, width, opacity] = strips.strip(strips.days[0]).rectangle(report.sessions[0], 600);
        EXPECT_GE(x, 0) << row.what;
        EXPECT_LE(x + width, 600) << row.what;
    }
}

TEST(StripCanvas, drawsSessionsApart) {
    PagesBench bench;
    bench.add(9 * hour, 1800).add(9.5 * hour, 1).add(20 * hour, 60, {.kind = listening});
    const auto report = bench.report();
    const auto strips = dayStrips(report, bench.viewpoint());
    ASSERT_EQ(strips.hours, (HourRange{9, 10}));
    const auto canvas = strips.strip(strips.days[0]);
    EXPECT_EQ(canvas.origin, bench.at(9));
    EXPECT_EQ(canvas.span, Seconds(3600));
    EXPECT_EQ(canvas.rectangle(report.sessions[0], 100), (StripRectangle{0.5, 49, 1}));
    EXPECT_EQ(canvas.rectangle(report.sessions[1], 100), (StripRectangle{50.5, 2, 1}));
    EXPECT_DOUBLE_EQ(canvas.trackOpacity(), 0.07);
    const auto media = strips.mediaLine(strips.days[0]);
    EXPECT_DOUBLE_EQ(media.trackOpacity(), 0.05);
    EXPECT_DOUBLE_EQ(media.rectangle(report.alongsideSessions[0], 100).opacity, 0.75);
    EXPECT_DOUBLE_EQ(StripCanvas::cornerRadius(52), 6);
    EXPECT_DOUBLE_EQ(StripCanvas::cornerRadius(5), 2.5);
}

TEST(StripCanvas, hasALinePerHourAndACursor) {
    StripCanvas canvas;
    canvas.hours = 4;
    EXPECT_EQ(canvas.hourLines(100), (std::vector<double>{24.5, 49.5, 74.5}));
    EXPECT_EQ(canvas.cursorLine(100), std::nullopt);
    canvas.cursor = 0.5;
    EXPECT_EQ(canvas.cursorLine(100), 49.5);
}

TEST(StripCanvas, onlyTheOneUnderThePointerDiffers) {
    PagesBench bench;
    bench.add(9 * hour, 1800);
    const auto report = bench.report();
    const auto again = report;
    const auto strips = dayStrips(report, bench.viewpoint());
    const auto same = dayStrips(again, bench.viewpoint());
    EXPECT_EQ(strips.strip(strips.days[0]), same.strip(same.days[0]));
    auto pointed = strips.strip(strips.days[0]);
    pointed.cursor = 0.5;
    EXPECT_NE(pointed, strips.strip(strips.days[0]));
    pointed.cursor = std::nullopt;
    pointed.highlighted = 1;
    EXPECT_NE(pointed, strips.strip(strips.days[0]));
    EXPECT_NE(strips.mediaLine(strips.days[0]), strips.strip(strips.days[0]));
}

TEST(StripHover, reachesFourPointsBesideASession) {
    PagesBench bench;
    bench.add(9 * hour, 900, {.title = "First"}).add(9.75 * hour, 900, {.title = "Second"});
    const auto report = bench.report();
    const auto strips = dayStrips(report, bench.viewpoint());
    ASSERT_EQ(strips.hours, (HourRange{9, 10}));
    struct Row {
        double x;
        const char* title; // null: none
    };
    const Row rows[] = {{0, "First"},    {199, "First"}, {200, "First"},  {204, "First"},
                        {205, nullptr},  {400, nullptr}, {595, nullptr},  {596, "Second"},
                        {600, "Second"}, {-50, "First"}, {9999, "Second"}};
    for (const auto& row : rows) {
        const auto hover = stripHover(strips, strips.days[0], false, row.x, 800);
        EXPECT_EQ(hover.session.has_value(), row.title != nullptr) << row.x;
        if (row.title && hover.session) {
            EXPECT_EQ(hover.session->title, row.title) << row.x;
        }
    }
}

TEST(StripHover, staysWithinTheStrip) {
    PagesBench bench;
    bench.add(9 * hour, 3600).add(9 * hour, 60, {.title = "Song", .kind = listening});
    const auto report = bench.report();
    const auto strips = dayStrips(report, bench.viewpoint());
    const auto at = [&](double x, double width) { return stripHover(strips, strips.days[0], false, x, width); };
    EXPECT_DOUBLE_EQ(at(-1, 100).fraction, 0);
    EXPECT_DOUBLE_EQ(at(25, 100).fraction, 0.25);
    EXPECT_EQ(at(25, 100).time, bench.at(9, 15));
    EXPECT_DOUBLE_EQ(at(101, 100).fraction, 1);
    EXPECT_DOUBLE_EQ(at(0.5, 0).fraction, 0.5) << "without a width the place is taken as it is";
    EXPECT_DOUBLE_EQ(at(7, 0.5).fraction, 1);
    EXPECT_EQ(at(0, 100).day, bench.day.start);
    EXPECT_EQ(stripHover(strips, strips.days[0], true, 0, 100).session->title, "Song");
    EXPECT_FALSE(stripHover(strips, strips.days[0], true, 50, 100).session);
}

TEST(StripReadout, saysWhatWasDoneAtThatMoment) {
    PagesBench bench;
    bench.add(9 * hour, 900, {.title = "main.cpp"}).add(9.5 * hour, 1800);
    const auto report = bench.report();
    const auto strips = dayStrips(report, bench.viewpoint());
    const auto readout = [&](double x, bool manyDays) {
        return stripReadout(stripHover(strips, strips.days[0], false, x, 400), manyDays, bench.calendar);
    };
    EXPECT_EQ(std::get<ReadoutNote>(stripReadout(std::nullopt, true, bench.calendar)),
              (ReadoutNote{"cursorarrow.motionlines",
                           "Move the pointer over a bar to see what you were doing at that moment."}));
    EXPECT_EQ(std::get<ReadoutNote>(readout(150, false)),
              (ReadoutNote{"moon.zzz", "09:22 — nothing recorded; you were away or idle"}));
    EXPECT_EQ(std::get<ReadoutNote>(readout(150, true)).text,
              "Fri 20, 09:22 — nothing recorded; you were away or idle");
    EXPECT_EQ(std::get<ReadoutSession>(readout(10, false)),
              (ReadoutSession{AppIcon{"org.example.Editor"}, "Editor", "main.cpp",
                              categoryPill(report.sessions[0].category), " · 09:00 – 09:15 · 15m"}));
    EXPECT_EQ(std::get<ReadoutSession>(readout(10, true)).times, " · Fri 20, 09:00 – 09:15 · 15m");
    EXPECT_EQ(std::get<ReadoutSession>(readout(300, false)).title, "Untitled window");
}

TEST(StripReadout, isReadAloudInOneSentence) {
    PagesBench bench;
    bench.add(9 * hour, 900, {.title = "main.cpp"});
    const auto report = bench.report();
    const auto strips = dayStrips(report, bench.viewpoint());
    const auto readout = stripReadout(stripHover(strips, strips.days[0], false, 10, 400), false, bench.calendar);
    EXPECT_EQ(spoken(readout), "Editor, main.cpp, Other · 09:00 – 09:15 · 15m");
    EXPECT_EQ(spoken(stripReadout(std::nullopt, false, bench.calendar)),
              "Move the pointer over a bar to see what you were doing at that moment.");
}

TEST(StripSteps, leadFromSessionToSession) {
    using enum StripStep;
    PagesBench bench;
    bench.add(9 * hour, 900, {.title = "a"})
        .add(10 * hour, 900, {.title = "b"})
        .add(11 * hour, 900, {.title = "c"})
        .add(10 * hour, 600, {.title = "song", .kind = listening})
        .add(33 * hour, 900, {.title = "d"})
        .add(35 * hour, 900, {.title = "e"});
    const auto report = wholeMonth(bench);
    const auto strips = dayStrips(report, bench.viewpoint());
    const auto titleOf = [](const std::optional<StripHover>& hover) {
        return hover && hover->session ? hover->session->title : "none";
    };
    const auto walked = [&](std::vector<StripStep> steps) {
        std::optional<StripHover> hover;
        for (const auto step : steps)
            hover = steppedHover(strips, hover, step);
        return titleOf(hover);
    };
    struct Row {
        std::vector<StripStep> steps;
        const char* title;
    };
    const Row rows[] = {{{later}, "a"},
                        {{below}, "a"},
                        {{first}, "a"},
                        {{earlier}, "e"},
                        {{above}, "e"},
                        {{last}, "e"},
                        {{later, later}, "b"},
                        {{later, earlier}, "a"},
                        {{later, last}, "c"},
                        {{later, last, later}, "c"},
                        {{later, last, earlier}, "b"},
                        {{later, last, first}, "a"},
                        {{later, above}, "a"},
                        {{later, below}, "song"},
                        {{later, below, below}, "d"},
                        {{later, last, below, below}, "d"},
                        {{later, below, below, below}, "d"},
                        {{last, above}, "song"},
                        {{last, above, above}, "b"}};
    for (std::size_t i = 0; i < std::size(rows); ++i)
        EXPECT_EQ(walked(rows[i].steps), rows[i].title) << i;

    auto between = stripHover(strips, strips.days[0], false, 50, 100);
    between.session = std::nullopt;
    between.time = bench.at(10, 30);
    EXPECT_EQ(titleOf(steppedHover(strips, between, later)), "c");
    EXPECT_EQ(titleOf(steppedHover(strips, between, earlier)), "b");
    const auto hover = steppedHover(strips, std::nullopt, later);
    EXPECT_EQ(hover->time, bench.at(9) + Seconds(450));
    EXPECT_EQ(hover->day, bench.day.start);
    EXPECT_FALSE(steppedHover(dayStrips(ActivityReport(), bench.viewpoint()), std::nullopt, later));
}

TEST(DayLabel, isWideOrDense) {
    PagesBench bench;
    bench.add(9 * hour, 900).add(10 * hour, 900).add(9 * hour, 4000, {.kind = watching});
    const auto report = bench.report();
    const auto day = stripDays(report, bench.calendar).front();
    EXPECT_EQ(dayLabel(day, false, bench.calendar), (DayLabel{"Friday, 20 Nov", "30m active", std::nullopt}));
    EXPECT_EQ(dayLabel(day, true, bench.calendar), (DayLabel{"Fri 20", std::nullopt, "Friday, 20 Nov: 30m active"}));
}

TEST(DayStrips, explainsItself) {
    PagesBench bench;
    bench.add(9 * hour, 900);
    const std::string plain =
        "Each row is one day, running left to right through the hours. A coloured block is a stretch when you were "
        "actively using something, and its colour is the kind of activity (key below). Empty space means you were "
        "away or idle.";
    const auto report = bench.report();
    const auto strips = dayStrips(report, bench.viewpoint());
    EXPECT_EQ(strips.explanation, plain);
    EXPECT_EQ(strips.words, "Friday, 20 Nov: 15m active");
    EXPECT_EQ(dayStrips(ActivityReport(), bench.viewpoint()).words, "No activity");
    EXPECT_FALSE(strips.showsAlongside);
    EXPECT_EQ(strips.legend, (std::vector{categoryPill(ActivityCategory::other)}));
    bench.add(33 * hour, 1800);
    const auto two = wholeMonth(bench);
    EXPECT_EQ(dayStrips(two, bench.viewpoint()).words, "2 days: 45m active. Busiest: Saturday, 21 Nov with 30m.");
    bench.add(9 * hour, 900, {.kind = watching});
    const auto played = bench.report();
    EXPECT_EQ(dayStrips(played, bench.viewpoint()).explanation,
              plain + " The thin line under a row shows media playing next to what you were doing — watching or "
                      "listening.");
    EXPECT_TRUE(dayStrips(played, bench.viewpoint()).showsAlongside);
    EXPECT_STREQ(DayStrips::heading, "When you were active");
    EXPECT_STREQ(DayStrips::legendTitle, "Colour = kind of activity");
    EXPECT_DOUBLE_EQ(DayStrips::leastLegendWidth, 130);
}

} // namespace
} // namespace kestrio
