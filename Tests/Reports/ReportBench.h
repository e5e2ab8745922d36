// Hand-made days for the tests of reports.
#pragma once

#include "Kestrio/Classification/TextTools.h"
#include "Kestrio/Reports/ReportBuilder.h"

namespace kestrio {

/// What a session was about.
struct Doing {
    std::string app = "Editor";
    std::string title = {};
    std::optional<std::string> url = {};
    std::optional<std::string> project = {};
    SessionKind kind = SessionKind::focus;
    std::optional<std::string> bundleID = {}; // "org.example." and the name, unless said
};

/// The sessions of a day, by their times on its clock; numbered from 1 as they come.
class ReportBench {
public:
    explicit ReportBench(Calendar aCalendar = Calendar("en_GB", "Europe/Berlin"), int year = 2026, int month = 11,
                         int dayOfMonth = 20)
        : calendar(std::move(aCalendar)), day(calendar.day(calendar.date(year, month, dayOfMonth, 12))) {}

    /// A session from a moment so many seconds into the day.
    ReportBench& add(double start, double length, const Doing& doing = {}) {
        ActivitySession made;
        made.id = static_cast<std::int64_t>(sessions.size()) + 1;
        made.start = day.start + Seconds(start);
        made.end = made.start + Seconds(length);
        made.bundleID = doing.bundleID.value_or("org.example." + doing.app);
        made.appName = doing.app;
        made.title = doing.title;
        made.url = doing.url;
        made.domain = doing.url ? URLTools::domain(*doing.url) : std::nullopt;
        made.project = doing.project;
        made.kind = doing.kind;
        sessions.push_back(std::move(made));
        return *this;
    }

    ActivityReport report(Granularity granularity = Granularity::hour) const { return report(day, granularity); }
    ActivityReport report(DateInterval interval, Granularity granularity) const {
        return ReportBuilder::build(sessions, interval, granularity, calendar, classification);
    }

    /// The rule's keyword and project.
    ReportBench& rule(const char* keyword, const char* project) {
        classification.rules.push_back({{}, keyword, project});
        return *this;
    }

    Calendar calendar;
    DateInterval day;
    std::vector<ActivitySession> sessions;
    Classification classification;
};

inline constexpr double hour = 3600;
inline constexpr double minute = 60;

} // namespace kestrio
