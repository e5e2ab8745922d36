#include "Kestrio/Pages/UsageTrend.h"

#include "Kestrio/Base/Formatters.h"
#include "Kestrio/Reports/BucketSums.h"

#include <algorithm>
#include <fmt/format.h>

namespace kestrio {
namespace {

/// "1h in all. Busiest: 09:00 – 10:00 with 30m."
std::string trendWords(const UsageTrend& trend, Seconds sum, Granularity granularity, const Calendar& calendar) {
    if (trend.columns.empty())
        return "No activity";
    const auto busiest = std::ranges::max_element(trend.columns, {}, &UsageTrend::Column::value);
    return fmt::format("{} in all. Busiest: {} with {}.", Fmt::duration(sum),
                       bucketTitle(busiest->interval.start, granularity, calendar),
                       Fmt::duration(busiest->value * trend.unit.length));
}

} // namespace

UsageTrend usageTrend(const ActivityReport& report, const std::function<bool(const ClassifiedSession&)>& belongs,
                      SystemColor tint, const Calendar& calendar) {
    BucketSums sums(calendar, report.granularity);
    for (const auto& session : report.sessions)
        if (belongs(session))
            sums.add(session.start, session.end, session.category);
    UsageTrend trend;
    trend.unit = timeUnit(report.granularity);
    trend.domain = report.interval;
    trend.tint = tint;
    double highest = 0;
    Seconds sum{};
    for (const auto& bucket : sums.simpleBuckets()) {
        const auto end = bucketInterval(bucket.start, report.granularity, calendar).end;
        trend.columns.push_back({{bucket.start, end}, trend.unit.count(bucket.duration)});
        highest = std::max(highest, trend.columns.back().value);
        sum += bucket.duration;
    }
    trend.valueMarks = valueMarks(highest);
    trend.timeMarks = timeMarks(report.interval, report.granularity, trend.columns.size(), calendar);
    trend.words = trendWords(trend, sum, report.granularity, calendar);
    return trend;
}

} // namespace kestrio
