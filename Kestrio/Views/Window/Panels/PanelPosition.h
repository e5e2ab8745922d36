// Where a panel stands: beside the tray icon that was clicked, inside what the desktop leaves free of its screen. Pure.
#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>
#include <optional>
#include <vector>

namespace kestrio {

/// A screen in the views' own units, which are `scale` pixels wide. Its top left stands where the pixels say.
struct PanelScreen {
    QRect whole;
    QRect work; // without the desktop's bars
    double scale = 1;
};

/// How far a panel stays away from the edges and from where it was asked for.
inline constexpr int panelMargin = 8;

/// What a panel of a given size is placed by.
struct PanelPlace {
    QRect work; // of its screen
    QPoint anchor;
    /// The screen's edge that the anchor is at: the panel grows away from it.
    Qt::Edge edge = Qt::TopEdge;

    /// The top left of a panel of this size. One that is too large begins at the work area's top left.
    QPoint position(QSize size) const;
    /// The room for a panel.
    QSize room() const { return work.size() - QSize(2 * panelMargin, 2 * panelMargin); }
};

/// Beside the clicked pixel, on its screen or the one nearest to it; without a click in the corner in which the desktop
/// most likely has its tray, of the first screen. Absent without screens.
std::optional<PanelPlace> panelPlace(const std::optional<QPoint>& click, const std::vector<PanelScreen>& screens);

} // namespace kestrio
