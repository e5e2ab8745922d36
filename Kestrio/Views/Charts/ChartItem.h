// What the items of charts share: they are drawn in a palette's colours, pixel for pixel, and anew when those change.
// Main queue; it is drawn on the scene graph's queue while the main one waits.
//
// Classes that derive from it say so with the namespace: the tool that lists the module's types takes the name as it
// stands.
#pragma once

#include "Kestrio/Views/Charts/ChartPalette.h"

#include <QPointer>
#include <QQuickPaintedItem>

namespace kestrio {

class ChartItem : public QQuickPaintedItem {
    Q_OBJECT
    QML_ANONYMOUS
    /// Without one nothing is drawn.
    Q_PROPERTY(kestrio::ChartPalette* palette READ palette WRITE setPalette NOTIFY paletteChanged)

public:
    explicit ChartItem(QQuickItem* parent = nullptr);

    ChartPalette* palette() const { return palette_; }
    void setPalette(ChartPalette* palette);

Q_SIGNALS:
    void paletteChanged();

protected:
    /// Draws the whole item. It says its area to the base class, which would take an update without one, followed by
    /// one of a part, for the part alone.
    void drawWhole();

    void geometryChange(const QRectF& now, const QRectF& before) override;
    void itemChange(ItemChange change, const ItemChangeData& value) override;

private:
    QPointer<ChartPalette> palette_;
};

} // namespace kestrio
