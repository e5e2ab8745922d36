// Draws a `ColumnPlot`. Items of single charts derive from it and say what is plotted. Main queue; it is drawn on the
// scene graph's queue while the main one waits.
#pragma once

#include "Kestrio/Views/Charts/ChartItem.h"
#include "Kestrio/Views/Charts/ColumnPlot.h"

#include <QFont>

namespace kestrio {

class ColumnPlotItem : public kestrio::ChartItem {
    Q_OBJECT
    QML_ANONYMOUS
    /// Of the texts along the axes.
    Q_PROPERTY(QFont font READ font WRITE setFont NOTIFY fontChanged)
    /// Whether writing runs from right to left: the numbers then stand at the left.
    Q_PROPERTY(bool mirrored READ mirrored WRITE setMirrored NOTIFY mirroredChanged)

public:
    using ChartItem::ChartItem;

    QFont font() const { return font_; }
    void setFont(const QFont& font);
    bool mirrored() const { return mirrored_; }
    void setMirrored(bool mirrored);

    void paint(QPainter* painter) override;

    /// Where everything stands at the item's size.
    ColumnPlotGeometry geometry() const;

Q_SIGNALS:
    void fontChanged();
    void mirroredChanged();

protected:
    void setPlot(ColumnPlot plot);
    const ColumnPlot& plot() const { return plot_; }

    /// The interval that is marked, the others being faded; absent for none.
    virtual std::optional<DateInterval> marked() const { return std::nullopt; }

private:
    void paintGrid(QPainter& painter, const ColumnPlotGeometry& geometry) const;
    void paintLabels(QPainter& painter, const ColumnPlotGeometry& geometry) const;
    void paintRule(QPainter& painter, const ColumnPlotGeometry& geometry) const;
    void paintColumn(QPainter& painter, const ColumnPlotGeometry& geometry, const ColumnPlot::Column& column) const;

    ColumnPlot plot_;
    QFont font_;
    bool mirrored_ = false;
};

} // namespace kestrio
