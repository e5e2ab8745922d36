// Columns over time, as `ActivityChart` and `UsageTrend` have them, and where everything of them stands in an area:
// the plot, its columns, its lines and labels. Pure geometry in points, without an item or a painter, so that it is
// tested by its numbers.
//
// Time always runs from left to right, as the strips say of themselves; where the person's writing runs from right to
// left only the numbers change sides. The numbers stand after the plot in reading order, beside the latest columns.
#pragma once

#include "Kestrio/Pages/ActivityChart.h"
#include "Kestrio/Pages/UsageTrend.h"
#include "Kestrio/Views/Charts/PixelGrid.h"

#include <QFontMetricsF>
#include <QRectF>
#include <QString>

namespace kestrio {

struct ColumnPlot {
    struct Part {
        SystemColor color = SystemColor::gray;
        double value = 0;
    };
    struct Column {
        DateInterval interval{};
        std::vector<Part> parts; // bottom first
        double height() const;
    };
    QString unit; // above the numbers
    DateInterval domain{};
    std::vector<Column> columns; // ascending
    std::vector<ValueMark> valueMarks;
    std::vector<TimeMark> timeMarks;
    double cornerRadius = 3; // of the columns' tops
};

ColumnPlot columnPlot(const ActivityChart& chart);
ColumnPlot columnPlot(const UsageTrend& trend);

/// A text and where it goes; `area` is exactly as wide as the text.
struct PlotLabel {
    QString text;
    QRectF area;
};

enum class AxisSide { right, left };

class ColumnPlotGeometry {
public:
    ColumnPlotGeometry(const ColumnPlot& plot, QSizeF size, const QFontMetricsF& metrics, AxisSide side,
                       PixelGrid pixels);

    /// Between the axes.
    const QRectF& area() const { return area_; }

    qreal x(Date date) const;
    qreal y(double value) const;

    /// The moment at a place across; absent beside the plot.
    std::optional<Date> date(qreal x) const;

    /// Where a column of the interval stands, from the bottom to a value, on the pixel grid; neighbours stay apart
    /// where they are wide enough.
    QRectF column(DateInterval interval, double value) const;

    /// The part of a column between two values.
    QRectF part(DateInterval interval, double from, double to) const;

    std::vector<PlotLabel> valueLabels() const;
    PlotLabel unitLabel() const;

    /// As many as have room: all, or every second, third, ...
    std::vector<PlotLabel> timeLabels() const;

private:
    QRectF timeLabelArea(const TimeMark& mark) const;
    bool hasRoom(std::size_t step) const;

    const ColumnPlot& plot_;
    QSizeF size_;
    QFontMetricsF metrics_;
    AxisSide side_;
    PixelGrid pixels_;
    QRectF area_;
};

} // namespace kestrio
