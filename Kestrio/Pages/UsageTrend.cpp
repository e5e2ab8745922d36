#include "Kestrio/Pages/UsageTrend.h"

#include "Kestrio/Reports/BucketSums.h"

#include <algorithm>

namespace kestrio {

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
    for (const auto& bucket : sums.simpleBuckets()) {
        const auto end = bucketInterval(bucket.start, report.granularity, calendar).end;
        trend.columns.push_back({{bucket.start, end}, trend.unit.count(bucket.duration)});
        highest = std::max(highest, trend.columns.back().value);
    }
    trend.valueMarks = valueMarks(highest);
    trend.timeMarks = timeMarks(report.interval, report.granularity, trend.columns.size(), calendar);
    return trend;
}

} // namespace kestrio
