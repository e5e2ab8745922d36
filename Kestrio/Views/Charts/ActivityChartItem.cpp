#include "Kestrio/Views/Charts/ActivityChartItem.h"

#include <QHoverEvent>
#include <QKeyEvent>

namespace kestrio {
namespace {

std::optional<ChartStep> stepOf(int key) {
    switch (key) {
    case Qt::Key_Left: return ChartStep::earlier;
    case Qt::Key_Right: return ChartStep::later;
    case Qt::Key_Home: return ChartStep::first;
    case Qt::Key_End: return ChartStep::last;
    default: return std::nullopt;
    }
}

} // namespace

ActivityChartItem::ActivityChartItem(QQuickItem* parent) : ColumnPlotItem(parent) {
    setAcceptHoverEvents(true);
}

void ActivityChartItem::setChart(const ActivityChartValue& chart) {
    if (chart_ == chart)
        return;
    chart_ = chart;
    const auto* data = chart_.data();
    setPlot(data ? columnPlot(data->chart) : ColumnPlot());
    // A report that is made anew every few seconds must not take the tooltip away from under the pointer.
    const bool isStillThere = data && marked_ && data->report->interval.contains(marked_->start);
    mark(isStillThere ? std::optional(selectedBucket(*data->report, marked_->start, data->calendar)) : std::nullopt);
    Q_EMIT chartChanged();
    Q_EMIT markedChanged();
}

qreal ActivityChartItem::markedLeft() const {
    return marked_ ? geometry().x(marked_->start) : 0;
}

qreal ActivityChartItem::markedRight() const {
    return marked_ ? geometry().x(marked_->end) : 0;
}

QString ActivityChartItem::tooltipHead() const {
    return QString::fromStdString(tooltip_.head);
}

QVariantList ActivityChartItem::tooltipRows() const {
    QVariantList rows;
    for (const auto& row : tooltip_.rows)
        rows.append(QVariantMap{{"category", toMap(row.category)}, {"duration", QString::fromStdString(row.duration)}});
    return rows;
}

QString ActivityChartItem::tooltipSum() const {
    return QString::fromStdString(tooltip_.sum);
}

QString ActivityChartItem::words() const {
    return marked_ ? QString::fromStdString(spoken(tooltip_)) : chart_.words();
}

void ActivityChartItem::hoverEnterEvent(QHoverEvent* event) {
    pointAt(event->position().x());
}

void ActivityChartItem::hoverMoveEvent(QHoverEvent* event) {
    pointAt(event->position().x());
}

void ActivityChartItem::hoverLeaveEvent(QHoverEvent*) {
    mark(std::nullopt);
}

void ActivityChartItem::keyPressEvent(QKeyEvent* event) {
    const auto* data = chart_.data();
    if (event->key() == Qt::Key_Escape && marked_) {
        mark(std::nullopt);
        return;
    }
    const auto step = stepOf(event->key());
    if (!data || !step) {
        event->ignore();
        return;
    }
    mark(steppedBucket(*data->report, data->chart, marked_, *step, data->calendar));
}

void ActivityChartItem::focusOutEvent(QFocusEvent* event) {
    ColumnPlotItem::focusOutEvent(event);
    mark(std::nullopt);
}

void ActivityChartItem::geometryChange(const QRectF& now, const QRectF& before) {
    ColumnPlotItem::geometryChange(now, before);
    if (marked_ && now.size() != before.size())
        Q_EMIT markedChanged();
}

void ActivityChartItem::pointAt(qreal x) {
    const auto* data = chart_.data();
    const auto date = data ? geometry().date(x) : std::nullopt;
    mark(date ? std::optional(selectedBucket(*data->report, *date, data->calendar)) : std::nullopt);
}

void ActivityChartItem::mark(std::optional<DateInterval> interval) {
    const auto tooltip =
        interval ? chartTooltip(*chart_.data()->report, interval->start, chart_.data()->calendar) : ChartTooltip();
    if (marked_ == interval && tooltip_ == tooltip)
        return;
    marked_ = interval;
    tooltip_ = tooltip;
    drawWhole();
    Q_EMIT markedChanged();
}

} // namespace kestrio
