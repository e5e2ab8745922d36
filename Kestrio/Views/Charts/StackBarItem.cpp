#include "Kestrio/Views/Charts/StackBarItem.h"

#include <QPainterPath>
#include <numeric>

namespace kestrio {

void StackBarItem::setBar(const CategoryStackBarValue& bar) {
    if (bar_ == bar)
        return;
    bar_ = bar;
    drawWhole();
    Q_EMIT barChanged();
}

void StackBarItem::setMirrored(bool mirrored) {
    if (mirrored_ == mirrored)
        return;
    mirrored_ = mirrored;
    drawWhole();
    Q_EMIT mirroredChanged();
}

void StackBarItem::paint(QPainter* painter) {
    if (!palette())
        return;
    const auto radius = std::min(height() / 2, 4.0);
    QPainterPath shape;
    shape.addRoundedRect(QRectF({}, size()), radius, radius);
    const auto* bar = bar_.data();
    if (!bar || bar->parts.empty()) {
        painter->fillPath(shape, palette()->ink(CategoryStackBar::emptyTrackOpacity));
        return;
    }
    const PixelGrid pixels(*painter);
    const auto widths = fittedWidths(*bar, width());
    const auto gap = bar->parts.size() > 1 ? pixels.wholeWidth(1) : 0;
    double start = 0;
    for (std::size_t i = 0; i < widths.size(); ++i) {
        const auto end = start + widths[i];
        auto from = pixels.snapped(mirrored_ ? width() - end : start);
        auto to = pixels.snapped(mirrored_ ? width() - start : end);
        start = end;
        const bool isLast = i + 1 == widths.size();
        if (!isLast && to - from > CategoryStackBar::leastPartWidth)
            (mirrored_ ? from : to) += mirrored_ ? gap : -gap;
        const QRectF part(from, 0, to - from, height());
        QPainterPath slice;
        slice.addRect(part);
        painter->fillPath(shape.intersected(slice), palette()->color(bar->parts[i].category.color));
    }
}

std::vector<double> fittedWidths(const CategoryStackBar& bar, double width) {
    auto widths = bar.widths(width);
    if (widths.empty())
        return widths;
    const auto surplus = std::accumulate(widths.begin(), widths.end(), 0.0) - width;
    auto& widest = *std::ranges::max_element(widths);
    if (surplus > 0)
        widest = std::max(CategoryStackBar::leastPartWidth, widest - surplus);
    return widths;
}

} // namespace kestrio
