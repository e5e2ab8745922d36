#include "Kestrio/Reports/SessionExport.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

constexpr Date noon{1'700'049'600}; // 2023-11-15 12:00 UTC

const Calendar berlin("en_GB", "Europe/Berlin");

TEST(ExportRange, hasItsLabelsAndStarts) {
    struct Row {
        ExportRange range;
        const char* raw;
        const char* label;
        double start; // before now
    };
    const Row table[] = {
        {ExportRange::today, "today", "Today", 13 * 3600.0},
        {ExportRange::week, "week", "Last 7 days", 604'800},
        {ExportRange::month, "month", "Last 30 days", 2'592'000},
        {ExportRange::all, "all", "All time", 31'536'000},
    };
    std::size_t at = 0;
    for (const auto& row : table) {
        EXPECT_EQ(allExportRanges[at++], row.range);
        EXPECT_EQ(rawValue(row.range), row.raw);
        EXPECT_EQ(exportRange(row.raw), row.range);
        EXPECT_EQ(label(row.range), row.label);
        EXPECT_EQ(interval(row.range, noon, std::nullopt, berlin), (DateInterval{noon - Seconds(row.start), noon}))
            << row.raw;
    }
    EXPECT_EQ(at, allExportRanges.size());
    EXPECT_EQ(exportRange("Today"), std::nullopt);
    EXPECT_EQ(exportRange(""), std::nullopt);
}

TEST(ExportRange, ofAllTimeBeginsWithTheFirstSession) {
    const auto first = noon - Seconds(1e8);
    EXPECT_EQ(interval(ExportRange::all, noon, first, berlin), (DateInterval{first, noon}));
    EXPECT_EQ(interval(ExportRange::week, noon, first, berlin).start, noon - Seconds(604'800));
}

ActivitySession session(std::int64_t id, double start, double end, SessionKind kind = SessionKind::focus) {
    ActivitySession made;
    made.id = id;
    made.start = noon + Seconds(start);
    made.end = noon + Seconds(end);
    made.bundleID = "org.example.editor";
    made.appName = "Editor";
    made.title = "Letter " + std::to_string(id);
    made.kind = kind;
    return made;
}

TEST(ExportedSessions, areWholeAndInOrderWithAllKindsAmongThem) {
    const auto exported =
        exportedSessions({session(1, -500, 100), session(2, 100, 200), session(3, 300, 1200),
                          session(4, 50, 150, SessionKind::watching), session(5, 100, 110, SessionKind::listening)},
                         {noon, noon + Seconds(1000)}, berlin, {});
    std::vector<std::int64_t> ids;
    for (const auto& one : exported)
        ids.push_back(one.id);
    EXPECT_EQ(ids, (std::vector<std::int64_t>{1, 4, 2, 5, 3}));
    EXPECT_EQ(exported.front().start, noon - Seconds(500));
    EXPECT_EQ(exported.back().end, noon + Seconds(1200));
}

TEST(ExportedSessions, haveTheCategoryAndProjectThatCount) {
    Classification decisions;
    decisions.categories.appOverrides.emplace("org.example.editor", ActivityCategory::learning);
    decisions.rules.push_back({{}, "letter", "post"});
    const auto exported = exportedSessions({session(1, 0, 10)}, {noon, noon + Seconds(10)}, berlin, decisions);
    ASSERT_EQ(exported.size(), 1u);
    EXPECT_EQ(exported[0].category, ActivityCategory::learning);
    EXPECT_EQ(exported[0].project, "post");
}

TEST(ExportedSessions, ofNothingAreNone) {
    EXPECT_TRUE(exportedSessions({}, {noon, noon + Seconds(10)}, berlin, {}).empty());
}

TEST(SessionExport, hasItsTexts) {
    EXPECT_EQ(proposedExportName(noon, berlin), "activity-2023-11-15.csv");
    EXPECT_EQ(proposedExportName(noon + Seconds(11.5 * 3600), berlin), "activity-2023-11-16.csv");
    EXPECT_EQ(proposedExportName(noon, Calendar("ar_EG", "Africa/Cairo")), "activity-2023-11-15.csv");
    EXPECT_EQ(exportingText, "Exporting…");
    EXPECT_EQ(exportedText(12'345, "my.csv", berlin), "Exported 12,345 sessions to my.csv.");
    EXPECT_EQ(exportedText(12'345, "my.csv", Calendar("de_DE", "UTC")), "Exported 12.345 sessions to my.csv.");
    EXPECT_EQ(exportedText(1, "my.csv", berlin), "Exported 1 sessions to my.csv.");
    EXPECT_EQ(exportFailedText("No space left on device"), "Export failed: No space left on device");
}

} // namespace
} // namespace kestrio
