// What holds of every report, over random histories: overlapping and backwards sessions, few texts that meet again,
// clocks that change under way.
#include "Kestrio/Reports/ReportDescription.h"
#include "Tests/Examples/ExampleHistory.h"
#include "Tests/Reports/ReportBench.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <rapidcheck.h>
#include <set>

namespace kestrio {
namespace {

template <class List>
rc::Gen<typename List::value_type> oneOf(const List& list) {
    return rc::gen::elementOf(list);
}

const std::vector<std::string> titles{"", "a", "b", "YouTube", "Talk - YouTube", "\u00e9", "e\u0301", "harbour"};
const std::vector<std::optional<std::string>> addresses{std::nullopt,
                                                        std::nullopt,
                                                        "https://a.example/1",
                                                        "https://a.example/2",
                                                        "https://www.youtube.com/watch?v=1",
                                                        "https://youtu.be/2",
                                                        "https://www.youtube.com/shorts/3",
                                                        "https://www.youtube.com/results?search_query=x+y",
                                                        "https://www.youtube.com/results?search_query=X+Y"};
const std::vector<std::optional<std::string>> projects{std::nullopt, "p", "q"};
const std::vector<std::string> zones{"UTC", "Europe/Berlin", "Australia/Lord_Howe", "America/Havana", "Asia/Kathmandu"};

/// A bench with random sessions around its days. Starts are whole milliseconds, and different where asked for.
ReportBench randomBench(bool distinctStarts) {
    ReportBench bench(Calendar("en_GB", *oneOf(zones)), 2026, *rc::gen::elementOf(std::vector{3, 4, 10, 11}),
                      *rc::gen::inRange(1, 31));
    std::set<int> taken;
    const auto count = *rc::gen::inRange(0, 60);
    for (int i = 0; i < count; ++i) {
        int start = *rc::gen::inRange(-20'000, 3 * 86'400);
        while (distinctStarts && !taken.insert(start).second)
            ++start;
        const auto length = *rc::gen::oneOf(rc::gen::inRange(1, 120), rc::gen::inRange(-5, 20'000));
        bench.add(start, length + *rc::gen::inRange(0, 1000) / 1024.0,
                  {.app = *oneOf(std::vector<std::string>{"A", "B", "Caf\u00e9", "Cafe\u0301"}),
                   .title = *oneOf(titles),
                   .url = *oneOf(addresses),
                   .project = *oneOf(projects),
                   .kind = *rc::gen::weightedElement<SessionKind>(
                       {{4, SessionKind::focus}, {1, SessionKind::watching}, {1, SessionKind::listening}})});
    }
    if (*rc::gen::arbitrary<bool>())
        bench.rule("harbour", "p").rule("a.example", "");
    return bench;
}

DateInterval days(const ReportBench& bench, int count) {
    return {bench.day.start, bench.calendar.day(bench.calendar.addingDays(bench.day.start, count)).start};
}

template <class List, class Time>
double sum(const List& list, Time time) {
    double total = 0;
    for (const auto& one : list)
        total += time(one).count();
    return total;
}

constexpr auto duration = [](const auto& row) { return row.duration; };

bool near(double a, double b) {
    return std::abs(a - b) < 1e-3;
}

template <class List, class Time>
bool isLongestFirst(const List& list, Time time) {
    return std::is_sorted(list.begin(), list.end(), [&](const auto& a, const auto& b) { return time(a) > time(b); });
}

void expectSumsAgree(const ActivityReport& report) {
    const auto total = report.total.count();
    double byProductivity = 0;
    report.productivity.forEach([&](Productivity, Seconds time) { byProductivity += time.count(); });
    RC_ASSERT(near(byProductivity, total));
    RC_ASSERT(near(sum(report.categories, duration), total));
    RC_ASSERT(near(sum(report.buckets, duration), total));
    RC_ASSERT(near(sum(report.apps, duration), total));
    RC_ASSERT(near(sum(report.sessions, [](const auto& session) { return session.duration(); }), total));
    const auto beside = (report.watchingTime + report.listeningTime).count();
    RC_ASSERT(near(sum(report.apps, [](const auto& app) { return app.alongside; }), beside));
    RC_ASSERT(near(sum(report.alongsideItems, duration), beside));
    RC_ASSERT(near(sum(report.blocks, [](const auto& block) { return block.active; }), total + beside));
    for (const auto& app : report.apps) {
        RC_ASSERT(near(sum(app.items, duration), app.duration.count()));
        RC_ASSERT(near(sum(app.alongsideItems, duration), app.alongside.count()));
    }
    for (const auto& site : report.domains)
        RC_ASSERT(near(sum(site.pages, duration), site.duration.count()));
    for (const auto& project : report.projects) {
        RC_ASSERT(near(sum(project.apps, duration), project.duration.count()));
        RC_ASSERT(near(sum(project.items, duration), project.duration.count()));
    }
    for (const auto& block : report.blocks) {
        RC_ASSERT(near(sum(block.entries, [](const auto& entry) { return entry.active; }), block.active.count()));
        double byCategory = 0;
        block.categoryTimes.forEach([&](ActivityCategory, Seconds time) { byCategory += time.count(); });
        RC_ASSERT(near(byCategory, block.active.count()));
    }
    RC_ASSERT(sum(report.videos, [](const auto& video) { return video.duration - video.alongside; }) <=
              report.youtubeTime.count() + 1e-3);
    RC_ASSERT(sum(report.videos, [](const auto& video) { return video.alongside; }) <=
              report.youtubeAlongsideTime.count() + 1e-3);
}

void expectOrder(const ActivityReport& report) {
    const auto byStart = [](const auto& a, const auto& b) { return a.start < b.start; };
    RC_ASSERT(std::is_sorted(report.sessions.begin(), report.sessions.end(), byStart));
    RC_ASSERT(std::is_sorted(report.alongsideSessions.begin(), report.alongsideSessions.end(), byStart));
    RC_ASSERT(std::is_sorted(report.blocks.begin(), report.blocks.end(), byStart));
    RC_ASSERT(std::is_sorted(report.buckets.begin(), report.buckets.end(), [](const auto& a, const auto& b) {
        return std::pair(a.start, rawValue(a.category)) < std::pair(b.start, rawValue(b.category));
    }));
    const auto withBeside = [](const auto& row) { return row.duration + row.alongside; };
    RC_ASSERT(isLongestFirst(report.apps, withBeside));
    RC_ASSERT(isLongestFirst(report.domains, withBeside));
    RC_ASSERT(isLongestFirst(report.videos, duration));
    RC_ASSERT(isLongestFirst(report.projects, duration));
    RC_ASSERT(isLongestFirst(report.categories, duration));
    RC_ASSERT(isLongestFirst(report.alongsideItems, duration));
    RC_ASSERT(isLongestFirst(report.youtubeSearches, duration));
}

void expectWithinRange(const ActivityReport& report) {
    for (const auto* list : {&report.sessions, &report.alongsideSessions})
        for (const auto& session : *list)
            RC_ASSERT(report.interval.start <= session.start && session.start < session.end &&
                      session.end <= report.interval.end);
    std::set<std::string> identities;
    for (const auto& bucket : report.buckets)
        RC_ASSERT(identities.insert(bucket.id()).second);
    std::int64_t visits = 0;
    for (const auto& app : report.apps)
        visits += app.visits;
    RC_ASSERT(visits == report.switches + (report.sessions.empty() ? 0 : 1));
    RC_ASSERT(report.firstActivity.has_value() == !report.sessions.empty());
    RC_ASSERT(report.lastActivity.has_value() == !report.sessions.empty());
}

TEST(ReportProperties, theSumsAgreeAndTheOrdersHold) {
    ASSERT_TRUE(rc::check([] {
        const auto bench = randomBench(false);
        for (const auto granularity : {Granularity::hour, Granularity::day}) {
            const auto report = bench.report(days(bench, 2), granularity);
            expectSumsAgree(report);
            expectOrder(report);
            expectWithinRange(report);
        }
    }));
}

TEST(ReportProperties, theOrderOfTheInputDoesNotMatter) {
    ASSERT_TRUE(rc::check([] {
        auto bench = randomBench(true);
        const DateInterval everything{bench.day.start - Seconds(86'400), bench.day.start + Seconds(9 * 86'400.0)};
        const auto report = bench.report(everything, Granularity::day);
        std::mt19937 random(*rc::gen::arbitrary<std::uint32_t>());
        std::shuffle(bench.sessions.begin(), bench.sessions.end(), random);
        RC_ASSERT(bench.report(everything, Granularity::day) == report);
    }));
}

TEST(ReportProperties, twoHalvesOfARangeAddUpToTheWhole) {
    ASSERT_TRUE(rc::check([] {
        const auto bench = randomBench(false);
        const auto range = days(bench, 2);
        const auto cut = range.start + Seconds(*rc::gen::inRange(1, 2 * 86'400 - 7200));
        const auto whole = bench.report(range, Granularity::hour);
        const auto first = bench.report({range.start, cut}, Granularity::hour);
        const auto second = bench.report({cut, range.end}, Granularity::hour);
        RC_ASSERT(near((first.total + second.total).count(), whole.total.count()));
        RC_ASSERT(near((first.watchingTime + second.watchingTime).count(), whole.watchingTime.count()));
        RC_ASSERT(near((first.listeningTime + second.listeningTime).count(), whole.listeningTime.count()));
        RC_ASSERT(near((first.youtubeTime + second.youtubeTime).count(), whole.youtubeTime.count()));
        for (const auto category : allActivityCategories) {
            const auto of = [&](const ActivityReport& report) {
                return sum(report.categories,
                           [&](const auto& row) { return row.category == category ? row.duration : Seconds(0); });
            };
            RC_ASSERT(near(of(first) + of(second), of(whole)));
        }
        std::map<std::pair<Date, ActivityCategory>, double> buckets;
        for (const auto* half : {&first, &second})
            for (const auto& bucket : half->buckets)
                buckets[{bucket.start, bucket.category}] += bucket.duration.count();
        RC_ASSERT(buckets.size() == whole.buckets.size());
        for (const auto& bucket : whole.buckets)
            RC_ASSERT(near(buckets[{bucket.start, bucket.category}], bucket.duration.count()));
    }));
}

TEST(ReportProperties, simpleBucketsAreTheBucketsWithoutTheirCategories) {
    ASSERT_TRUE(rc::check([] {
        const auto bench = randomBench(false);
        const auto report = bench.report(days(bench, 2), Granularity::hour);
        const auto simple = ReportBuilder::buckets(report.sessions, Granularity::hour, bench.calendar);
        std::map<Date, double> expected;
        for (const auto& bucket : report.buckets)
            expected[bucket.start] += bucket.duration.count();
        RC_ASSERT(simple.size() == expected.size());
        for (const auto& bucket : simple) {
            RC_ASSERT(near(expected[bucket.start], bucket.duration.count()));
            RC_ASSERT(bucket.duration <= Seconds(0) + bench.calendar.hour(bucket.start).duration() *
                                                          static_cast<double>(report.sessions.size()));
        }
    }));
}

TEST(ReportProperties, anExampleHistoryIsWhatItClaimsToBe) {
    const Calendar calendar("en_GB", "Europe/Berlin");
    const auto last = calendar.date(2026, 10, 28, 12); // the clocks changed on the 25th
    const auto sessions = exampleHistory(last, calendar, {.seed = 7, .days = 10, .sessionsPerWorkday = 300});
    EXPECT_EQ(sessions, exampleHistory(last, calendar, {.seed = 7, .days = 10, .sessionsPerWorkday = 300}));
    EXPECT_NE(sessions, exampleHistory(last, calendar, {.seed = 8, .days = 10, .sessionsPerWorkday = 300}));
    EXPECT_GT(sessions.size(), 1500u);
    EXPECT_LT(sessions.size(), 4000u);
    Date focusUntil = distantPast;
    for (std::size_t i = 0; i < sessions.size(); ++i) {
        EXPECT_EQ(sessions[i].id, static_cast<std::int64_t>(i) + 1);
        EXPECT_LT(sessions[i].start, sessions[i].end);
        if (sessions[i].kind != SessionKind::focus)
            continue;
        EXPECT_GE(sessions[i].start, focusUntil);
        focusUntil = sessions[i].end;
    }
    const DateInterval range{calendar.day(calendar.addingDays(last, -9)).start, calendar.day(last).end};
    const auto report = ReportBuilder::build(sessions, range, Granularity::day, calendar, {});
    EXPECT_EQ(report.sessions.size() + report.alongsideSessions.size(), sessions.size());
    EXPECT_GE(report.activeDays, 7);
    EXPECT_GE(report.categories.size(), 5u);
    EXPECT_FALSE(report.videos.empty() || report.projects.empty() || report.youtubeSearches.empty() ||
                 report.alongsideItems.empty());
}

} // namespace
} // namespace kestrio
