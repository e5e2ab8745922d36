#include "Programs/CommandLine/ReportCommand.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace kestrio {
namespace {

/// The range, the width of its buckets and its heading; or the complaint. On Friday, 20 November 2026, at three.
std::string asked(const ReportOptions& options) {
    const Calendar calendar("en_GB", "Europe/Berlin");
    const auto request = reportRequest(options, calendar.date(2026, 11, 20, 15), calendar);
    if (const auto* mistake = std::get_if<std::string>(&request))
        return *mistake;
    const auto& made = std::get<ReportRequest>(request);
    const auto pattern = "yyyy-MM-dd HH:mm";
    return fmt::format("{} to {} by {}, {}: {} ({})", calendar.formatted(made.interval.start, pattern),
                       calendar.formatted(made.interval.end, pattern), rawValue(made.granularity),
                       rawValue(made.section), made.heading.title, made.heading.subtitle);
}

TEST(ReportCommand, understandsItsRanges) {
    struct Row {
        ReportOptions options;
        const char* request;
    };
    const Row rows[] = {
        {{}, "2026-11-20 00:00 to 2026-11-21 00:00 by hour, overview: Today (Friday, 20 November 2026)"},
        {{.day = "yesterday", .section = "apps"},
         "2026-11-19 00:00 to 2026-11-20 00:00 by hour, apps: Yesterday (Thursday, 19 November 2026)"},
        {{.day = "2026-10-25", .section = "timeline"},
         "2026-10-25 00:00 to 2026-10-26 00:00 by hour, timeline: Sunday, 25 October (Sunday, 25 October 2026)"},
        {{.week = "today"}, "2026-11-16 00:00 to 2026-11-23 00:00 by day, overview: This Week (16 Nov – 22 Nov 2026)"},
        {{.month = "2026-02-10"},
         "2026-02-01 00:00 to 2026-03-01 00:00 by day, overview: February 2026 (1 Feb – 28 Feb 2026)"},
        {{.from = "10:00"},
         "2026-11-20 10:00 to 2026-11-20 15:00 by hour, overview: 20 Nov 2026, 10:00 – 20 Nov 2026, 15:00 ()"},
        {{.to = "12:00"},
         "2026-11-20 00:00 to 2026-11-20 12:00 by hour, overview: 20 Nov 2026, 00:00 – 20 Nov 2026, 12:00 ()"},
        {{.from = "2026-11-18", .to = "2026-11-20"},
         "2026-11-18 00:00 to 2026-11-20 00:00 by hour, overview: 18 Nov 2026, 00:00 – 20 Nov 2026, 00:00 ()"},
        {{.from = "2026-01-01", .to = "now"},
         "2026-01-01 00:00 to 2026-11-20 15:00 by day, overview: 1 Jan 2026, 00:00 – 20 Nov 2026, 15:00 ()"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(asked(row.options), row.request);
}

TEST(ReportCommand, saysWhatItDoesNotUnderstand) {
    const std::string forms =
        " is no moment that I understand; try now, today, yesterday, 14:30, 2026-11-21, \"2026-11-21 14:30\", "
        "2h ago or @SECONDS";
    const std::string oneRange = "one range at a time: --day, --week, --month, or --from with --to";
    struct Row {
        ReportOptions options;
        std::string complaint;
    };
    const Row rows[] = {
        {{.day = "someday"}, "--day \"someday\"" + forms},
        {{.week = ""}, "--week \"\"" + forms},
        {{.month = "2026-13-01"}, "--month \"2026-13-01\"" + forms},
        {{.from = "x"}, "--from \"x\"" + forms},
        {{.from = "today", .to = "x"}, "--to \"x\"" + forms},
        {{.from = "now", .to = "today"}, "--to must be later than --from"},
        {{.from = "now"}, "--to must be later than --from"},
        {{.day = "today", .week = "today"}, oneRange},
        {{.month = "today", .to = "now"}, oneRange},
        {{.section = "films"},
         "there is no section \"films\"; there are overview, apps, websites, youtube, projects, timeline"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(asked(row.options), row.complaint);
}

} // namespace
} // namespace kestrio
