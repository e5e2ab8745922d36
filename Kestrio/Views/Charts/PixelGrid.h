// Places in points put on the edges of the screen's pixels, so that lines and bars are crisp at every scale. Pure.
#pragma once

#include <QPainter>
#include <algorithm>
#include <cmath>

namespace kestrio {

class PixelGrid {
public:
    /// `scale` is how many pixels a point is wide.
    explicit PixelGrid(qreal scale) : scale_(scale > 0 ? scale : 1) {}

    /// Of what the painter draws on.
    explicit PixelGrid(const QPainter& painter) : PixelGrid(painter.deviceTransform().m11()) {}

    /// The edge nearest to a place.
    qreal snapped(qreal place) const { return std::round(place * scale_) / scale_; }

    /// One pixel.
    qreal hairline() const { return 1 / scale_; }

    /// The width as a whole number of pixels, at least one.
    qreal wholeWidth(qreal width) const { return std::max(1.0, std::round(width * scale_)) / scale_; }

    /// A rectangle with every edge on the grid, at least a pixel wide and high.
    QRectF snapped(const QRectF& rectangle) const {
        const QPointF topLeft(snapped(rectangle.left()), snapped(rectangle.top()));
        return {topLeft, QSizeF(std::max(hairline(), snapped(rectangle.right()) - topLeft.x()),
                                std::max(hairline(), snapped(rectangle.bottom()) - topLeft.y()))};
    }

private:
    qreal scale_;
};

} // namespace kestrio
