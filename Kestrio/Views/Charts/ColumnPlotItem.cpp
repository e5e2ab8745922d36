#include "Kestrio/Views/Charts/ColumnPlotItem.h"

#include <QPainterPath>
#include <QQuickWindow>

namespace kestrio {
namespace {

/// A rectangle with a rounded top.
QPainterPath columnShape(const QRectF& column, qreal mostRadius) {
    const auto radius = std::min({mostRadius, column.width() / 2, column.height()});
    QPainterPath path(column.bottomLeft());
    path.lineTo(column.left(), column.top() + radius);
    path.arcTo(column.left(), column.top(), 2 * radius, 2 * radius, 180, -90);
    path.lineTo(column.right() - radius, column.top());
    path.arcTo(column.right() - 2 * radius, column.top(), 2 * radius, 2 * radius, 90, -90);
    path.lineTo(column.bottomRight());
    path.closeSubpath();
    return path;
}

/// The piece of a column's shape that lies in the area.
void paintCap(QPainter& painter, const QPainterPath& shape, const QRectF& area, const QColor& color) {
    QPainterPath slice;
    slice.addRect(area);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(shape.intersected(slice), color);
    painter.setRenderHint(QPainter::Antialiasing, false);
}

void drawLabel(QPainter& painter, const PlotLabel& label) {
    // A little wider than the text, which must not be broken for a fraction of a point.
    painter.drawText(label.area.adjusted(-2, 0, 2, 0), Qt::AlignCenter | Qt::TextDontClip, label.text);
}

} // namespace

void ColumnPlotItem::setFont(const QFont& font) {
    if (font_ == font)
        return;
    font_ = font;
    drawWhole();
    Q_EMIT fontChanged();
}

void ColumnPlotItem::setMirrored(bool mirrored) {
    if (mirrored_ == mirrored)
        return;
    mirrored_ = mirrored;
    drawWhole();
    Q_EMIT mirroredChanged();
}

void ColumnPlotItem::setPlot(ColumnPlot plot) {
    plot_ = std::move(plot);
    drawWhole();
}

ColumnPlotGeometry ColumnPlotItem::geometry() const {
    const auto scale = window() ? window()->effectiveDevicePixelRatio() : 1;
    return {plot_, size(), QFontMetricsF(font_), mirrored_ ? AxisSide::left : AxisSide::right, PixelGrid(scale)};
}

void ColumnPlotItem::paint(QPainter* painter) {
    if (!palette())
        return;
    const auto geometry = this->geometry();
    painter->setRenderHint(QPainter::Antialiasing, false); // straight edges lie on pixels
    paintGrid(*painter, geometry);
    paintLabels(*painter, geometry);
    paintRule(*painter, geometry);
    for (const auto& column : plot_.columns)
        paintColumn(*painter, geometry, column);
}

void ColumnPlotItem::paintGrid(QPainter& painter, const ColumnPlotGeometry& geometry) const {
    const PixelGrid pixels(painter);
    const auto& area = geometry.area();
    for (const auto& mark : plot_.valueMarks)
        painter.fillRect(QRectF(area.left(), pixels.snapped(geometry.y(mark.value)), area.width(), pixels.hairline()),
                         palette()->grid());
}

void ColumnPlotItem::paintLabels(QPainter& painter, const ColumnPlotGeometry& geometry) const {
    painter.setFont(font_);
    painter.setPen(palette()->label());
    drawLabel(painter, geometry.unitLabel());
    for (const auto& label : geometry.valueLabels())
        drawLabel(painter, label);
    for (const auto& label : geometry.timeLabels())
        drawLabel(painter, label);
}

void ColumnPlotItem::paintRule(QPainter& painter, const ColumnPlotGeometry& geometry) const {
    const auto interval = marked();
    if (!interval)
        return;
    const PixelGrid pixels(painter);
    const auto& area = geometry.area();
    const auto middle = (geometry.x(interval->start) + geometry.x(interval->end)) / 2;
    const auto width = pixels.wholeWidth(1);
    constexpr qreal opacity = 0.35;
    painter.fillRect(QRectF(pixels.snapped(middle - width / 2), area.top(), width, area.height()),
                     palette()->ink(opacity));
}

void ColumnPlotItem::paintColumn(QPainter& painter, const ColumnPlotGeometry& geometry,
                                 const ColumnPlot::Column& column) const {
    const auto interval = marked();
    const bool isFaded = interval && interval->start != column.interval.start;
    const auto whole = geometry.column(column.interval, column.height());
    const auto shape = columnShape(whole, plot_.cornerRadius);
    const auto roundedTo = PixelGrid(painter).snapped(whole.top() + plot_.cornerRadius);
    const QRectF cap(whole.topLeft(), QPointF(whole.right(), roundedTo));
    painter.setPen(Qt::NoPen);
    painter.setOpacity(isFaded ? ActivityChart::fadedOpacity : 1);
    double base = 0;
    for (const auto& part : column.parts) {
        const auto area = geometry.part(column.interval, base, base + part.value).intersected(whole);
        base += part.value;
        const auto color = palette()->color(part.color);
        if (area.bottom() > roundedTo)
            painter.fillRect(QRectF(QPointF(area.left(), std::max(area.top(), roundedTo)), area.bottomRight()), color);
        if (area.top() < roundedTo)
            paintCap(painter, shape, area.intersected(cap), color);
    }
    painter.setOpacity(1);
}

} // namespace kestrio
