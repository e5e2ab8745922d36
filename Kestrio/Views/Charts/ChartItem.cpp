#include "Kestrio/Views/Charts/ChartItem.h"

namespace kestrio {

ChartItem::ChartItem(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
    setSmooth(false); // also where the size is no whole number of pixels
}

void ChartItem::setPalette(ChartPalette* palette) {
    if (palette_ == palette)
        return;
    if (palette_)
        palette_->disconnect(this);
    palette_ = palette;
    if (palette_)
        connect(palette_, &ChartPalette::changed, this, &ChartItem::drawWhole);
    drawWhole();
    Q_EMIT paletteChanged();
}

void ChartItem::drawWhole() {
    update(boundingRect().toAlignedRect());
}

void ChartItem::geometryChange(const QRectF& now, const QRectF& before) {
    QQuickPaintedItem::geometryChange(now, before);
    if (now.size() != before.size())
        drawWhole();
}

void ChartItem::itemChange(ItemChange change, const ItemChangeData& value) {
    QQuickPaintedItem::itemChange(change, value);
    if (change == ItemSceneChange || change == ItemDevicePixelRatioHasChanged)
        drawWhole();
}

} // namespace kestrio
