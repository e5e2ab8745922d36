// The chart of a report: a column per hour or day, stacked by category, and what it says under the pointer. Plain
// values.
#pragma once

#include "Kestrio/Pages/ChartAxis.h"
#include "Kestrio/Pages/Rows.h"

namespace kestrio {

struct ChartPart {
    ActivityCategory category = ActivityCategory::other;
    double value = 0; // in the chart's unit
    friend bool operator==(const ChartPart&, const ChartPart&) = default;
};

struct ChartColumn {
    DateInterval interval{};
    std::vector<ChartPart> parts; // bottom first, in the order of the legend
    friend bool operator==(const ChartColumn&, const ChartColumn&) = default;

    double height() const;
};

struct ActivityChart {
    static constexpr auto xLabel = "Time";
    static constexpr auto colorLabel = "Category";
    static constexpr auto selectionLabel = "Selected";
    static constexpr double fadedOpacity = 0.4; // of the columns beside the one under the pointer

    TimeUnit unit;
    DateInterval domain{};
    std::vector<ChartColumn> columns; // ascending; none for hours and days without activity
    std::vector<ValueMark> valueMarks;
    std::vector<TimeMark> timeMarks;
    std::vector<CategoryPill> legend; // all categories in their order, so that it never changes
    std::string words;                // the chart for somebody who does not see it

    friend bool operator==(const ActivityChart&, const ActivityChart&) = default;
};

ActivityChart activityChart(const ActivityReport& report, const Calendar& calendar);

/// The hour or day under the pointer.
DateInterval selectedBucket(const ActivityReport& report, Date hovered, const Calendar& calendar);

/// How strongly a column shows while another, or none, is under the pointer.
double columnOpacity(const ChartColumn& column, const std::optional<DateInterval>& selected);

struct ChartTooltip {
    struct Row {
        CategoryPill category;
        std::string duration;
        friend bool operator==(const Row&, const Row&) = default;
    };
    std::string head;
    std::vector<Row> rows; // longest first
    std::string sum;       // "{duration} active" or "No activity"
    friend bool operator==(const ChartTooltip&, const ChartTooltip&) = default;
};

/// What is said of the bucket that begins at `start`.
ChartTooltip chartTooltip(const ActivityReport& report, Date start, const Calendar& calendar);

/// The same in one sentence, to be read aloud.
std::string spoken(const ChartTooltip& tooltip);

/// Where a step with the keyboard leads; absent in a chart without activity.
std::optional<DateInterval> steppedBucket(const ActivityReport& report, const ActivityChart& chart,
                                          std::optional<DateInterval> from, ChartStep step, const Calendar& calendar);

} // namespace kestrio
