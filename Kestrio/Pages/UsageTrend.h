// When one application, site or project was used over a report's range. Plain values.
#pragma once

#include "Kestrio/Pages/ChartAxis.h"

#include <functional>

namespace kestrio {

struct UsageTrend {
    static constexpr auto title = "When";
    static constexpr auto symbol = "chart.bar";
    static constexpr auto xLabel = "Time";
    static constexpr auto yLabel = "Duration";
    static constexpr double cornerRadius = 3;

    struct Column {
        DateInterval interval{};
        double value = 0; // in the chart's unit
        friend bool operator==(const Column&, const Column&) = default;
    };
    TimeUnit unit;
    DateInterval domain{}; // the report's whole interval, so that columns stand at their time
    std::vector<Column> columns;
    std::vector<ValueMark> valueMarks;
    std::vector<TimeMark> timeMarks;
    SystemColor tint = SystemColor::gray;
    std::string words; // the chart for somebody who does not see it
    friend bool operator==(const UsageTrend&, const UsageTrend&) = default;
};

/// Over the report's sessions in front that `belongs` picks.
UsageTrend usageTrend(const ActivityReport& report, const std::function<bool(const ClassifiedSession&)>& belongs,
                      SystemColor tint, const Calendar& calendar);

} // namespace kestrio
