#include "Kestrio/Views/Charts/ColumnPlot.h"

#include <numeric>

namespace kestrio {
namespace {

constexpr qreal besideNumbers = 8; // between the plot and the numbers
constexpr qreal aboveTimes = 5;    // between the plot and the times
constexpr qreal betweenTimes = 12; // between two times, at least

QString shown(const std::string& text) {
    return QString::fromStdString(text);
}

qreal widest(const ColumnPlot& plot, const QFontMetricsF& metrics) {
    auto width = metrics.horizontalAdvance(plot.unit);
    for (const auto& mark : plot.valueMarks)
        width = std::max(width, metrics.horizontalAdvance(shown(mark.label)));
    return width;
}

} // namespace

double ColumnPlot::Column::height() const {
    return std::accumulate(parts.begin(), parts.end(), 0.0,
                           [](double sum, const Part& part) { return sum + part.value; });
}

ColumnPlot columnPlot(const ActivityChart& chart) {
    ColumnPlot plot{.unit = shown(chart.unit.title),
                    .domain = chart.domain,
                    .columns = {},
                    .valueMarks = chart.valueMarks,
                    .timeMarks = chart.timeMarks};
    for (const auto& column : chart.columns) {
        plot.columns.push_back({column.interval, {}});
        for (const auto& part : column.parts)
            plot.columns.back().parts.push_back({color(part.category), part.value});
    }
    return plot;
}

ColumnPlot columnPlot(const UsageTrend& trend) {
    ColumnPlot plot{.unit = shown(trend.unit.title),
                    .domain = trend.domain,
                    .columns = {},
                    .valueMarks = trend.valueMarks,
                    .timeMarks = trend.timeMarks,
                    .cornerRadius = UsageTrend::cornerRadius};
    for (const auto& column : trend.columns)
        plot.columns.push_back({column.interval, {{trend.tint, column.value}}});
    return plot;
}

ColumnPlotGeometry::ColumnPlotGeometry(const ColumnPlot& plot, QSizeF size, const QFontMetricsF& metrics, AxisSide side,
                                       PixelGrid pixels)
    : plot_(plot), size_(size), metrics_(metrics), side_(side), pixels_(pixels) {
    const auto numbers = std::ceil(widest(plot, metrics)) + besideNumbers;
    const auto line = std::ceil(metrics.height());
    const auto top = std::ceil(line * 1.75); // the unit, and half of the highest number
    const auto left = side == AxisSide::left ? numbers : 0;
    area_ = pixels_.snapped(QRectF(left, top, std::max(1.0, size.width() - numbers),
                                   std::max(1.0, size.height() - top - line - aboveTimes)));
}

qreal ColumnPlotGeometry::x(Date date) const {
    const auto length = plot_.domain.duration();
    const auto fraction = length > Seconds(0) ? (date - plot_.domain.start) / length : 0;
    return area_.left() + fraction * area_.width();
}

qreal ColumnPlotGeometry::y(double value) const {
    const auto top = plot_.valueMarks.empty() ? 0 : plot_.valueMarks.back().value;
    return area_.bottom() - (top > 0 ? value / top : 0) * area_.height();
}

std::optional<Date> ColumnPlotGeometry::date(qreal x) const {
    if (x < area_.left() || x >= area_.right())
        return std::nullopt;
    return plot_.domain.start + plot_.domain.duration() * ((x - area_.left()) / area_.width());
}

QRectF ColumnPlotGeometry::column(DateInterval interval, double value) const {
    return part(interval, 0, value);
}

QRectF ColumnPlotGeometry::part(DateInterval interval, double from, double to) const {
    const auto left = x(interval.start);
    const auto width = x(interval.end) - left;
    constexpr qreal mostGap = 12;
    const auto gap = std::clamp(width * 0.28, 0.0, mostGap);
    return pixels_.snapped(QRectF(QPointF(left + gap / 2, y(to)), QPointF(left + width - gap / 2, y(from))));
}

std::vector<PlotLabel> ColumnPlotGeometry::valueLabels() const {
    std::vector<PlotLabel> labels;
    for (const auto& mark : plot_.valueMarks) {
        const auto text = shown(mark.label);
        const QSizeF extent(metrics_.horizontalAdvance(text), metrics_.height());
        const auto left =
            side_ == AxisSide::right ? area_.right() + besideNumbers : area_.left() - besideNumbers - extent.width();
        labels.push_back({text, QRectF(QPointF(left, y(mark.value) - extent.height() / 2), extent)});
    }
    return labels;
}

PlotLabel ColumnPlotGeometry::unitLabel() const {
    const auto width = metrics_.horizontalAdvance(plot_.unit);
    const auto left = side_ == AxisSide::right ? area_.right() + besideNumbers : area_.left() - besideNumbers - width;
    return {plot_.unit, QRectF(left, 0, width, metrics_.height())};
}

QRectF ColumnPlotGeometry::timeLabelArea(const TimeMark& mark) const {
    const auto width = metrics_.horizontalAdvance(shown(mark.label));
    const auto most = std::max(0.0, size_.width() - width);
    return {std::clamp(x(mark.labelAt) - width / 2, 0.0, most), area_.bottom() + aboveTimes, width, metrics_.height()};
}

bool ColumnPlotGeometry::hasRoom(std::size_t step) const {
    auto end = -betweenTimes;
    for (std::size_t i = 0; i < plot_.timeMarks.size(); i += step) {
        const auto area = timeLabelArea(plot_.timeMarks[i]);
        if (area.left() < end + betweenTimes)
            return false;
        end = area.right();
    }
    return true;
}

std::vector<PlotLabel> ColumnPlotGeometry::timeLabels() const {
    std::size_t step = 1;
    while (step < plot_.timeMarks.size() && !hasRoom(step))
        ++step;
    std::vector<PlotLabel> labels;
    for (std::size_t i = 0; i < plot_.timeMarks.size(); i += step)
        labels.push_back({shown(plot_.timeMarks[i].label), timeLabelArea(plot_.timeMarks[i])});
    return labels;
}

} // namespace kestrio
