#include "Kestrio/Pages/ActivityChart.h"

#include "Kestrio/Base/Formatters.h"

#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <numeric>

namespace kestrio {
namespace {

std::vector<ChartColumn> columns(const ActivityReport& report, const TimeUnit& unit, const Calendar& calendar) {
    std::vector<ChartColumn> all;
    for (const auto& bucket : report.buckets) {
        if (all.empty() || all.back().interval.start != bucket.start)
            all.push_back({{bucket.start, bucketInterval(bucket.start, report.granularity, calendar).end}, {}});
        all.back().parts.push_back({bucket.category, unit.count(bucket.duration)});
    }
    for (auto& column : all)
        std::ranges::sort(column.parts, {}, &ChartPart::category);
    return all;
}

double highest(const std::vector<ChartColumn>& columns) {
    double most = 0;
    for (const auto& column : columns)
        most = std::max(most, column.height());
    return most;
}

/// "2h 10m active. Busiest: 09:00 – 10:00 with 40m. Development 1h 30m, Social Media 40m."
std::string chartWords(const ActivityReport& report, const ActivityChart& chart, const Calendar& calendar) {
    if (chart.columns.empty())
        return "No activity";
    const auto busiest = std::ranges::max_element(chart.columns, {}, &ChartColumn::height);
    std::vector<std::string> categories;
    for (const auto& usage : report.categories)
        categories.push_back(fmt::format("{} {}", label(usage.category), Fmt::duration(usage.duration)));
    return fmt::format("{} active. Busiest: {} with {}. {}.", Fmt::duration(report.total),
                       bucketTitle(busiest->interval.start, report.granularity, calendar),
                       Fmt::duration(busiest->height() * chart.unit.length), fmt::join(categories, ", "));
}

} // namespace

double ChartColumn::height() const {
    return std::accumulate(parts.begin(), parts.end(), 0.0,
                           [](double sum, const ChartPart& part) { return sum + part.value; });
}

ActivityChart activityChart(const ActivityReport& report, const Calendar& calendar) {
    ActivityChart chart;
    chart.unit = timeUnit(report.granularity);
    chart.domain = report.interval;
    chart.columns = columns(report, chart.unit, calendar);
    chart.valueMarks = valueMarks(highest(chart.columns));
    chart.timeMarks = timeMarks(report.interval, report.granularity, chart.columns.size(), calendar);
    for (const auto category : allActivityCategories)
        chart.legend.push_back(categoryPill(category));
    chart.words = chartWords(report, chart, calendar);
    return chart;
}

DateInterval selectedBucket(const ActivityReport& report, Date hovered, const Calendar& calendar) {
    return bucketInterval(hovered, report.granularity, calendar);
}

double columnOpacity(const ChartColumn& column, const std::optional<DateInterval>& selected) {
    return !selected || selected->start == column.interval.start ? 1 : ActivityChart::fadedOpacity;
}

ChartTooltip chartTooltip(const ActivityReport& report, Date start, const Calendar& calendar) {
    std::vector<TimeBucket> buckets;
    for (const auto& bucket : report.buckets)
        if (bucket.start == start)
            buckets.push_back(bucket);
    std::ranges::stable_sort(buckets, std::ranges::greater(), &TimeBucket::duration);
    ChartTooltip tooltip{.head = bucketTitle(start, report.granularity, calendar), .rows = {}, .sum = "No activity"};
    Seconds sum{};
    for (const auto& bucket : buckets) {
        tooltip.rows.push_back({categoryPill(bucket.category), Fmt::duration(bucket.duration)});
        sum += bucket.duration;
    }
    if (!buckets.empty())
        tooltip.sum = Fmt::duration(sum) + " active";
    return tooltip;
}

std::string spoken(const ChartTooltip& tooltip) {
    auto text = fmt::format("{}: {}", tooltip.head, tooltip.sum);
    for (const auto& row : tooltip.rows)
        text += fmt::format(", {} {}", row.category.label, row.duration);
    return text;
}

std::optional<DateInterval> steppedBucket(const ActivityReport& report, const ActivityChart& chart,
                                          std::optional<DateInterval> from, ChartStep step, const Calendar& calendar) {
    std::vector<DateInterval> active;
    for (const auto& column : chart.columns)
        active.push_back(column.interval);
    return steppedBucket(active, from, step, report.interval, report.granularity, calendar);
}

} // namespace kestrio
