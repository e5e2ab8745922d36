#include "Kestrio/Views/Window/Panels/PanelPosition.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace kestrio {
namespace {

QRect pixels(const PanelScreen& screen) {
    const auto size = QSizeF(screen.whole.size()) * screen.scale;
    return {screen.whole.topLeft(), size.toSize()};
}

/// How far the point is from the rectangle, along the axes together; 0 inside.
int distance(const QRect& rectangle, QPoint point) {
    const auto outside = [](int value, int low, int high) {
        return value < low ? low - value : std::max(value - high, 0);
    };
    return outside(point.x(), rectangle.left(), rectangle.right()) +
           outside(point.y(), rectangle.top(), rectangle.bottom());
}

QPoint inUnits(QPoint click, const PanelScreen& screen) {
    const auto offset = QPointF(click - screen.whole.topLeft()) / screen.scale;
    return screen.whole.topLeft() +
           QPoint(static_cast<int>(std::floor(offset.x())), static_cast<int>(std::floor(offset.y())));
}

/// The edge with the bar that the point is in; where it is in none, the nearest edge. Of two the upper or lower one,
/// where bars are more often.
Qt::Edge edgeOf(const PanelScreen& screen, QPoint point) {
    using Distance = std::pair<int, Qt::Edge>;
    const auto distances = [&](const QRect& area) {
        return std::array{
            Distance(point.y() - area.top(), Qt::TopEdge), Distance(area.bottom() - point.y(), Qt::BottomEdge),
            Distance(area.right() - point.x(), Qt::RightEdge), Distance(point.x() - area.left(), Qt::LeftEdge)};
    };
    for (const auto& [inside, edge] : distances(screen.work))
        if (inside < 0)
            return edge;
    return std::ranges::min(distances(screen.whole), {}, &Distance::first).second;
}

/// The bar with the tray is taken for the thickest one; where there is none, for one at the top.
PanelPlace likelyPlace(const PanelScreen& screen) {
    const int top = screen.work.top() - screen.whole.top();
    const int bottom = screen.whole.bottom() - screen.work.bottom();
    const auto edge = bottom > top ? Qt::BottomEdge : Qt::TopEdge;
    const int y = edge == Qt::BottomEdge ? screen.whole.bottom() : screen.whole.top();
    return {screen.work, {screen.work.right(), y}, edge};
}

int kept(int value, int low, int high) {
    return std::max(low, std::min(value, high)); // a panel that is too large begins at the low end
}

} // namespace

QPoint PanelPlace::position(QSize size) const {
    const QRect inner = work.marginsRemoved({panelMargin, panelMargin, panelMargin, panelMargin});
    QPoint point(anchor.x() - size.width() / 2, anchor.y() - size.height() / 2);
    switch (edge) {
    case Qt::TopEdge: point.setY(anchor.y() + panelMargin); break;
    case Qt::BottomEdge: point.setY(anchor.y() - panelMargin - size.height()); break;
    case Qt::LeftEdge: point.setX(anchor.x() + panelMargin); break;
    case Qt::RightEdge: point.setX(anchor.x() - panelMargin - size.width()); break;
    }
    return {kept(point.x(), inner.left(), inner.right() + 1 - size.width()),
            kept(point.y(), inner.top(), inner.bottom() + 1 - size.height())};
}

std::optional<PanelPlace> panelPlace(const std::optional<QPoint>& click, const std::vector<PanelScreen>& screens) {
    if (screens.empty())
        return std::nullopt;
    if (!click)
        return likelyPlace(screens.front());
    const auto& screen =
        *std::ranges::min_element(screens, {}, [&](const PanelScreen& one) { return distance(pixels(one), *click); });
    const auto anchor = inUnits(*click, screen);
    return PanelPlace{screen.work, anchor, edgeOf(screen, anchor)};
}

} // namespace kestrio
