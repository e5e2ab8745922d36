#include "Programs/CommandLine/ReportChart.h"

#include "Kestrio/Base/Formatters.h"
#include "Programs/CommandLine/TableParts.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <map>

namespace kestrio {
namespace {

constexpr std::size_t rows = 6;
constexpr std::size_t eighthsPerRow = 8;
constexpr std::size_t scaleColumns = 7;
constexpr std::size_t widestColumn = 5;

struct Column {
    Date start;
    CategoryTimes times;
    Seconds total{};
};

/// Every hour or day of the range, those without time too.
std::vector<Column> columns(const ActivityReport& report, const Calendar& calendar, std::size_t most) {
    std::map<Date, Column> byStart;
    for (auto at = report.interval.start; at < report.interval.end && byStart.size() <= most;) {
        const auto interval = report.granularity == Granularity::hour ? calendar.hour(at) : calendar.day(at);
        byStart[interval.start].start = interval.start;
        if (interval.end <= at)
            break;
        at = interval.end;
    }
    for (const auto& bucket : report.buckets) {
        auto& column = byStart[bucket.start];
        column.start = bucket.start;
        column.times.add(bucket.category, bucket.duration);
        column.total += bucket.duration;
    }
    std::vector<Column> all;
    for (const auto& [start, column] : byStart)
        all.push_back(column);
    return all;
}

class Chart {
public:
    Chart(std::vector<Column> columns, Granularity granularity, const Calendar& calendar, std::size_t columnWidth,
          bool hasColour)
        : columns_(std::move(columns)),
          granularity_(granularity),
          calendar_(calendar),
          columnWidth_(columnWidth),
          paint_(hasColour) {
        for (const auto& column : columns_)
            most_ = std::max(most_, column.total);
    }

    std::string text() const {
        std::string text;
        for (std::size_t row = rows; row-- > 0;) {
            text += "  " + paddedLeft(row == rows - 1 ? Fmt::duration(most_) : "", scaleColumns) + "  ";
            std::string line;
            std::size_t blanks = 0;
            for (const auto& column : columns_)
                addCell(line, blanks, column, row);
            text += line + "\n";
        }
        return text + axis() + "\n";
    }

private:
    /// One column's part of one row, with the blank behind it. Blanks wait for something that they stand before.
    void addCell(std::string& line, std::size_t& blanks, const Column& column, std::size_t row) const {
        static constexpr std::array<const char*, 9> shapes{"", "▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};
        const auto height = std::lround(column.total / most_ * static_cast<double>(rows * eighthsPerRow));
        const auto above = height - static_cast<long>(row * eighthsPerRow);
        const bool hasSliver = row == 0 && column.total > Seconds(0);
        const auto eighths = std::clamp(above, hasSliver ? 1L : 0L, static_cast<long>(eighthsPerRow));
        const auto filled = columnWidth_ > 2 ? columnWidth_ - 1 : columnWidth_; // narrow ones stand side by side
        if (eighths == 0) {
            blanks += columnWidth_;
            return;
        }
        std::string cell;
        for (std::size_t i = 0; i < filled; ++i)
            cell += shapes[static_cast<std::size_t>(eighths)];
        line += std::string(blanks, ' ') + paint_.colour(color(categoryAt(column, row)), cell);
        blanks = columnWidth_ - filled;
    }

    /// What has the middle of the row, when the categories stand on one another in their order.
    ActivityCategory categoryAt(const Column& column, std::size_t row) const {
        const auto height = (static_cast<double>(row) + 0.5) / static_cast<double>(rows) * most_;
        auto top = ActivityCategory::other;
        Seconds below{};
        bool found = false;
        column.times.forEach([&](ActivityCategory category, Seconds time) {
            below += time;
            if (!found)
                top = category;
            found = found || below >= height;
        });
        return top;
    }

    /// Labels below their columns, as many as have room.
    std::string axis() const {
        std::string line;
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            const auto label = this->label(columns_[i].start);
            const auto position = i * columnWidth_;
            if (label.empty() || (!line.empty() && position <= line.size()))
                continue;
            line.resize(position, ' ');
            line += label;
        }
        return std::string(2 + scaleColumns + 2, ' ') + paint_.dim(line);
    }

    std::string label(Date start) const {
        const auto parts = calendar_.components(start);
        if (granularity_ == Granularity::hour)
            return parts.hour % 3 == 0 ? fmt::format("{:02}", parts.hour) : "";
        return fmt::format("{}", parts.day);
    }

    const std::vector<Column> columns_;
    const Granularity granularity_;
    const Calendar& calendar_;
    const std::size_t columnWidth_;
    const Painter paint_;
    Seconds most_{};
};

} // namespace

std::string reportChart(const ActivityReport& report, const Calendar& calendar, const TableStyle& style) {
    const auto room = std::max<std::size_t>(style.width, 40) - (2 + scaleColumns + 2);
    auto all = columns(report, calendar, room);
    if (report.buckets.empty() || all.size() > room)
        return {};
    const auto columnWidth = std::min(room / all.size(), widestColumn);
    return Chart(std::move(all), report.granularity, calendar, columnWidth, style.hasColour).text();
}

} // namespace kestrio
