#include "Kestrio/Pages/ChartAxis.h"

#include "Kestrio/Base/Formatters.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace kestrio {
namespace {

constexpr int hoursPerMark = 3;
constexpr int daysPerWideMark = 7;
constexpr std::size_t mostBucketsWithEachDay = 10;
constexpr Seconds longestWithEachDay{950'400}; // eleven days

std::vector<TimeMark> hourMarks(DateInterval interval, const Calendar& calendar) {
    std::vector<TimeMark> marks;
    for (auto at = interval.start; at < interval.end; at = calendar.hour(at).end)
        if (calendar.components(at).hour % hoursPerMark == 0)
            marks.push_back({at, calendar.localized(at, "j"), at});
    return marks;
}

std::vector<TimeMark> dayMarks(DateInterval interval, int stride, const std::string& skeleton,
                               const Calendar& calendar) {
    std::vector<TimeMark> marks;
    for (auto at = interval.start; at < interval.end; at = calendar.startOfDay(calendar.addingDays(at, stride)))
        marks.push_back({at, calendar.localized(at, skeleton), at + calendar.day(at).duration() / 2});
    return marks;
}

} // namespace

TimeUnit timeUnit(Granularity granularity) {
    switch (granularity) {
    case Granularity::hour: return {"Minutes", Seconds(60)};
    case Granularity::day: return {"Hours", Seconds(3600)};
    }
    return {};
}

std::vector<ValueMark> valueMarks(double highest) {
    constexpr int mostSteps = 4;
    constexpr int steps[] = {1, 2, 3, 5, 6, 10, 15, 20, 30, 60, 120, 240, 480};
    int step = *std::rbegin(steps);
    for (const int one : steps)
        if (highest <= one * mostSteps) {
            step = one;
            break;
        }
    std::vector<ValueMark> marks{{0, "0"}};
    while (marks.back().value < highest && marks.back().value < mostSteps * step) {
        const auto next = marks.back().value + step;
        marks.push_back({next, fmt::format("{}", std::llround(next))});
    }
    return marks;
}

std::vector<TimeMark> timeMarks(DateInterval interval, Granularity granularity, std::size_t bucketCount,
                                const Calendar& calendar) {
    if (granularity == Granularity::hour)
        return hourMarks(interval, calendar);
    const bool eachDay = bucketCount <= mostBucketsWithEachDay && interval.duration() <= longestWithEachDay;
    return eachDay ? dayMarks(interval, 1, "EEEd", calendar) : dayMarks(interval, daysPerWideMark, "dMMM", calendar);
}

std::string bucketTitle(Date start, Granularity granularity, const Calendar& calendar) {
    if (granularity == Granularity::hour)
        return Fmt::timeRange(start, start + Seconds(3600), calendar);
    return calendar.localized(start, "EEEdMMM");
}

std::optional<DateInterval> steppedBucket(std::span<const DateInterval> active, std::optional<DateInterval> from,
                                          ChartStep step, DateInterval interval, Granularity granularity,
                                          const Calendar& calendar) {
    if (active.empty())
        return std::nullopt;
    if (step == ChartStep::first || (!from && step == ChartStep::later))
        return active.front();
    if (step == ChartStep::last || !from)
        return active.back();
    // Intervals follow one another without a gap, so the least bit beside one lies in its neighbour.
    constexpr Seconds beside{1};
    const auto next = step == ChartStep::later ? from->end : from->start - beside;
    return interval.contains(next) ? bucketInterval(next, granularity, calendar) : *from;
}

DateInterval bucketInterval(Date date, Granularity granularity, const Calendar& calendar) {
    return granularity == Granularity::hour ? calendar.hour(date) : calendar.day(date);
}

} // namespace kestrio
