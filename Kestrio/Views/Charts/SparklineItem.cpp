#include "Kestrio/Views/Charts/SparklineItem.h"

#include <QPainter>
#include <QPainterPath>

namespace kestrio {

SparklineItem::SparklineItem(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
    setSmooth(false); // drawn pixel for pixel, also where the size is no whole number of them
}

void SparklineItem::paint(QPainter* painter) {
    const std::vector<double> values(values_.begin(), values_.end());
    const auto points = sparkline(values, lowest_, highest_);
    if (points.empty())
        return;
    // The line stays whole at the edges.
    const auto inner = QRectF({}, size()).adjusted(lineWidth_ / 2, lineWidth_ / 2, -lineWidth_ / 2, -lineWidth_ / 2);
    const auto place = [&](const SparklinePoint& point) {
        return QPointF(inner.left() + point.x * inner.width(), inner.bottom() - point.y * inner.height());
    };
    QPainterPath line(place(points.front()));
    for (const auto& point : points)
        line.lineTo(place(point));
    auto filling = line;
    filling.lineTo(inner.right(), height());
    filling.lineTo(inner.left(), height());
    filling.closeSubpath();
    constexpr float opacity = 0.12F;
    auto thinned = color_;
    thinned.setAlphaF(color_.alphaF() * opacity);
    painter->fillPath(filling, thinned);
    painter->strokePath(line, QPen(color_, lineWidth_, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
}

} // namespace kestrio
