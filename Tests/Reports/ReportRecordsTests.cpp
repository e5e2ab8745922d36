#include "Kestrio/Reports/ReportHash.h"
#include "Kestrio/Reports/ReportJSON.h"
#include "Tests/Reports/ReportBench.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <unordered_set>

namespace kestrio {
namespace {

TEST(ReportRecords, anEmptyReportHasItsRangeAndNothingElse) {
    const DateInterval interval{Date(100), Date(200)};
    const auto report = ActivityReport::empty(interval, Granularity::hour);
    EXPECT_EQ(report.interval, interval);
    EXPECT_EQ(report.granularity, Granularity::hour);
    ActivityReport nothing;
    nothing.interval = interval;
    nothing.granularity = Granularity::hour;
    EXPECT_EQ(report, nothing);
    EXPECT_EQ(report.total, Seconds(0));
    EXPECT_FALSE(report.firstActivity);
}

TEST(ReportRecords, aBucketsIdentityIsItsStartAndItsCategory) {
    EXPECT_EQ((TimeBucket{Date(1'700'000'000), ActivityCategory::work, {}}).id(), "1700000000-work");
    EXPECT_EQ((TimeBucket{Date(0.5), ActivityCategory::other, {}}).id(), "0.5-other");
}

TEST(ReportRecords, aBlockIsSearchedByAppAndByTitleAndSiteOfEachEntry) {
    TimelineBlock block;
    block.appName = "Browser";
    EXPECT_EQ(block.searchText(), "Browser");
    block.entries = {{1, {}, {}, {}, "News", "https://a.example", "a.example"}, {2, {}, {}, {}, "", {}, {}}};
    EXPECT_EQ(block.searchText(), "Browser News a.example  ");
}

TEST(ReportRecords, timeByCaseListsOnlyWhatHasTime) {
    CategoryTimes times;
    times.add(ActivityCategory::social, Seconds(5));
    times.add(ActivityCategory::development, Seconds(1));
    times.add(ActivityCategory::social, Seconds(2));
    std::vector<std::pair<ActivityCategory, double>> seen;
    times.forEach([&](ActivityCategory category, Seconds time) { seen.emplace_back(category, time.count()); });
    EXPECT_EQ(seen, (std::vector<std::pair<ActivityCategory, double>>{{ActivityCategory::development, 1},
                                                                      {ActivityCategory::social, 7}}));
    EXPECT_EQ(times[ActivityCategory::work], Seconds(0));
}

TEST(ReportRecords, granularitiesHaveTheirRawValues) {
    EXPECT_EQ(rawValue(Granularity::hour), "hour");
    EXPECT_EQ(rawValue(Granularity::day), "day");
}

/// Two records that differ in one field alone differ, and, by all odds, hash apart.
template <class Record>
void expectFieldsCount(const std::vector<std::function<void(Record&)>>& changes) {
    std::unordered_set<Record> all{Record{}};
    EXPECT_EQ(std::hash<Record>()(Record{}), std::hash<Record>()(Record{}));
    for (const auto& change : changes) {
        Record record;
        change(record);
        EXPECT_NE(record, Record{});
        EXPECT_NE(std::hash<Record>()(record), std::hash<Record>()(Record{}));
        EXPECT_TRUE(all.insert(record).second);
        EXPECT_FALSE(all.insert(record).second);
    }
}

TEST(ReportRecords, everyFieldCountsForEqualityAndHash) {
    const Date date(1);
    const Seconds second(1);
    expectFieldsCount<UsageItem>({
        [](auto& r) { r.id = "x"; },
        [](auto& r) { r.title = "x"; },
        [](auto& r) { r.subtitle = ""; },
        [](auto& r) { r.url = ""; },
        [&](auto& r) { r.duration = second; },
        [](auto& r) { r.count = 1; },
        [&](auto& r) { r.lastSeen = date; },
    });
    expectFieldsCount<ClassifiedSession>({
        [](auto& r) { r.id = 1; },
        [&](auto& r) { r.start = date; },
        [&](auto& r) { r.end = date; },
        [](auto& r) { r.bundleID = "x"; },
        [](auto& r) { r.appName = "x"; },
        [](auto& r) { r.title = "x"; },
        [](auto& r) { r.url = ""; },
        [](auto& r) { r.domain = ""; },
        [](auto& r) { r.project = ""; },
        [](auto& r) { r.category = ActivityCategory::work; },
        [](auto& r) { r.kind = SessionKind::listening; },
    });
    expectFieldsCount<AppUsage>({
        [](auto& r) { r.bundleID = "x"; },
        [](auto& r) { r.name = "x"; },
        [](auto& r) { r.category = ActivityCategory::work; },
        [&](auto& r) { r.duration = second; },
        [&](auto& r) { r.alongside = second; },
        [](auto& r) { r.visits = 1; },
        [](auto& r) { r.items.emplace_back(); },
        [](auto& r) { r.alongsideItems.emplace_back(); },
    });
    expectFieldsCount<VideoUsage>({
        [](auto& r) { r.videoID = "x"; },
        [](auto& r) { r.title = "x"; },
        [](auto& r) { r.url = "x"; },
        [&](auto& r) { r.duration = second; },
        [&](auto& r) { r.alongside = second; },
        [](auto& r) { r.views = 1; },
        [](auto& r) { r.isShort = true; },
        [&](auto& r) { r.firstWatched = date; },
        [&](auto& r) { r.lastWatched = date; },
    });
    expectFieldsCount<TimelineBlock>({
        [](auto& r) { r.id = 1; },
        [](auto& r) { r.entries.emplace_back(); },
        [&](auto& r) { r.categoryTimes.add(ActivityCategory::work, second); },
        [](auto& r) { r.headline = "x"; },
        [](auto& r) { r.kind = SessionKind::watching; },
    });
    expectFieldsCount<ActivityReport>({
        [&](auto& r) { r.interval.end = date; },
        [](auto& r) { r.granularity = Granularity::hour; },
        [](auto& r) { r.sessions.emplace_back(); },
        [](auto& r) { r.alongsideSessions.emplace_back(); },
        [](auto& r) { r.blocks.emplace_back(); },
        [&](auto& r) { r.productivity.add(Productivity::neutral, second); },
        [&](auto& r) { r.firstActivity = date; },
        [](auto& r) { r.switches = 1; },
    });
}

TEST(ReportRecords, theJSONHasEveryFieldInOrder) {
    ReportBench bench(Calendar("en_GB", "UTC"), 2026, 11, 20);
    bench
        .add(9 * hour, 60,
             {.app = "Browser", .title = "Talk - YouTube", .url = "https://www.youtube.com/watch?v=x", .project = "p"})
        .add(9 * hour, 60, {.app = "Player", .title = "Song", .kind = SessionKind::listening});
    const auto json = toJSON(bench.report());
    std::vector<std::string> keys;
    for (const auto& [key, value] : json.items())
        keys.push_back(key);
    EXPECT_EQ(keys, (std::vector<std::string>{"interval",     "granularity",   "sessions",       "alongsideSessions",
                                              "watchingTime", "listeningTime", "alongsideItems", "youtubeAlongsideTime",
                                              "total",        "productivity",  "categories",     "apps",
                                              "domains",      "videos",        "youtubeTime",    "youtubeSearches",
                                              "projects",     "buckets",       "blocks",         "firstActivity",
                                              "lastActivity", "activeDays",    "switches"}));
    const auto start = bench.day.start.seconds() + 9 * hour;
    EXPECT_EQ(json["interval"].dump(), R"({"start":1795132800.0,"end":1795219200.0})");
    EXPECT_EQ(json["granularity"], "hour");
    EXPECT_EQ(json["productivity"].dump(), R"({"distracting":60.0})");
    EXPECT_EQ(json["firstActivity"], start);
    EXPECT_EQ(json["buckets"][0].dump(), R"({"start":1795165200.0,"category":"entertainment","duration":60.0})");
    EXPECT_EQ(json["videos"][0]["isShort"], false);
    EXPECT_EQ(json["blocks"][0]["categoryTimes"].dump(), R"({"entertainment":60.0})");
    EXPECT_EQ(json["blocks"][1]["kind"], 2);
    EXPECT_TRUE(json["alongsideSessions"][0]["url"].is_null());
    EXPECT_EQ(json["sessions"][0]["project"], "p");
    EXPECT_TRUE(toJSON(ActivityReport())["firstActivity"].is_null());
}

} // namespace
} // namespace kestrio
