// The chart of a report, with the hour or day under the pointer, or chosen by keys, marked and told of. Main queue.
#pragma once

#include "Kestrio/Views/Charts/ChartValues.h"
#include "Kestrio/Views/Charts/ColumnPlotItem.h"

namespace kestrio {

class ActivityChartItem : public kestrio::ColumnPlotItem {
    Q_OBJECT
    QML_NAMED_ELEMENT(ActivityChartPlot)
    Q_PROPERTY(kestrio::ActivityChartValue chart READ chart WRITE setChart NOTIFY chartChanged)
    /// Whether an hour or day is marked; the following tell of it.
    Q_PROPERTY(bool isMarked READ isMarked NOTIFY markedChanged)
    /// Its left and right edges, in the item's points.
    Q_PROPERTY(qreal markedLeft READ markedLeft NOTIFY markedChanged)
    Q_PROPERTY(qreal markedRight READ markedRight NOTIFY markedChanged)
    Q_PROPERTY(QString tooltipHead READ tooltipHead NOTIFY markedChanged)
    /// Each {category: {label, color, category}, duration}.
    Q_PROPERTY(QVariantList tooltipRows READ tooltipRows NOTIFY markedChanged)
    Q_PROPERTY(QString tooltipSum READ tooltipSum NOTIFY markedChanged)
    /// What is marked, or else the chart, for somebody who does not see it.
    Q_PROPERTY(QString words READ words NOTIFY markedChanged)

public:
    explicit ActivityChartItem(QQuickItem* parent = nullptr);

    ActivityChartValue chart() const { return chart_; }
    void setChart(const ActivityChartValue& chart);

    bool isMarked() const { return marked_.has_value(); }
    qreal markedLeft() const;
    qreal markedRight() const;
    QString tooltipHead() const;
    QVariantList tooltipRows() const;
    QString tooltipSum() const;
    QString words() const;

    std::optional<DateInterval> marked() const override { return marked_; }

Q_SIGNALS:
    void chartChanged();
    void markedChanged();

protected:
    void hoverEnterEvent(QHoverEvent* event) override;
    void hoverMoveEvent(QHoverEvent* event) override;
    void hoverLeaveEvent(QHoverEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void geometryChange(const QRectF& now, const QRectF& before) override;

private:
    void pointAt(qreal x);
    void mark(std::optional<DateInterval> interval);

    ActivityChartValue chart_;
    std::optional<DateInterval> marked_;
    ChartTooltip tooltip_; // of what is marked
};

} // namespace kestrio
