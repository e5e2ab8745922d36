#include "Kestrio/Reports/SessionExport.h"

#include "Kestrio/Base/ISODates.h"

#include <algorithm>
#include <fmt/format.h>

namespace kestrio {
namespace {

constexpr Seconds weekLength{604'800};
constexpr Seconds monthLength{2'592'000};
constexpr Seconds yearLength{31'536'000};

} // namespace

std::string_view rawValue(ExportRange range) {
    switch (range) {
    case ExportRange::today: return "today";
    case ExportRange::week: return "week";
    case ExportRange::month: return "month";
    case ExportRange::all: return "all";
    }
    return {};
}

std::optional<ExportRange> exportRange(std::string_view raw) {
    for (const auto range : allExportRanges)
        if (rawValue(range) == raw)
            return range;
    return std::nullopt;
}

std::string_view label(ExportRange range) {
    switch (range) {
    case ExportRange::today: return "Today";
    case ExportRange::week: return "Last 7 days";
    case ExportRange::month: return "Last 30 days";
    case ExportRange::all: return "All time";
    }
    return {};
}

DateInterval interval(ExportRange range, Date now, const std::optional<Date>& earliest, const Calendar& calendar) {
    switch (range) {
    case ExportRange::today: return {calendar.startOfDay(now), now};
    case ExportRange::week: return {now - weekLength, now};
    case ExportRange::month: return {now - monthLength, now};
    case ExportRange::all: return {earliest.value_or(now - yearLength), now};
    }
    return {now, now};
}

std::vector<ClassifiedSession> exportedSessions(std::vector<ActivitySession> sessions, DateInterval interval,
                                                const Calendar& calendar, const Classification& classification) {
    for (const auto& session : sessions) { // a report clips to its interval
        interval.start = std::min(interval.start, session.start);
        interval.end = std::max(interval.end, session.end);
    }
    auto report = ReportBuilder::build(std::move(sessions), interval, Granularity::day, calendar, classification);
    auto exported = std::move(report.sessions);
    exported.insert(exported.end(), std::make_move_iterator(report.alongsideSessions.begin()),
                    std::make_move_iterator(report.alongsideSessions.end()));
    std::stable_sort(exported.begin(), exported.end(), [](const auto& a, const auto& b) { return a.start < b.start; });
    return exported;
}

std::string proposedExportName(Date now, const Calendar& calendar) {
    constexpr std::size_t dayLength = 10;
    return fmt::format("activity-{}.csv", isoDateTime(now, calendar.secondsFromUTC(now)).substr(0, dayLength));
}

std::string exportedText(std::size_t count, std::string_view fileName, const Calendar& calendar) {
    return fmt::format("Exported {} sessions to {}.", calendar.decimal(static_cast<double>(count), 0), fileName);
}

std::string exportFailedText(std::string_view error) {
    return fmt::format("Export failed: {}", error);
}

} // namespace kestrio
