// One bar that categories share in the order of their time, from where reading begins. Main queue.
#pragma once

#include "Kestrio/Views/Charts/ChartPalette.h"
#include "Kestrio/Views/Charts/ChartValues.h"
#include "Kestrio/Views/Charts/PixelGrid.h"

#include <QPointer>
#include <QQuickPaintedItem>

namespace kestrio {

class StackBarItem : public QQuickPaintedItem {
    Q_OBJECT
    QML_NAMED_ELEMENT(StackBarPlot)
    Q_PROPERTY(kestrio::CategoryStackBarValue bar READ bar WRITE setBar NOTIFY barChanged)
    Q_PROPERTY(kestrio::ChartPalette* palette READ palette WRITE setPalette NOTIFY paletteChanged)
    /// Whether writing runs from right to left: the first part then stands at the right.
    Q_PROPERTY(bool mirrored READ mirrored WRITE setMirrored NOTIFY mirroredChanged)

public:
    explicit StackBarItem(QQuickItem* parent = nullptr);

    CategoryStackBarValue bar() const { return bar_; }
    void setBar(const CategoryStackBarValue& bar);
    ChartPalette* palette() const { return palette_; }
    void setPalette(ChartPalette* palette);
    bool mirrored() const { return mirrored_; }
    void setMirrored(bool mirrored);

    void paint(QPainter* painter) override;

Q_SIGNALS:
    void barChanged();
    void paletteChanged();
    void mirroredChanged();

private:
    CategoryStackBarValue bar_;
    QPointer<ChartPalette> palette_;
    bool mirrored_ = false;
};

/// How wide the parts stand side by side, so that they fill the bar: what small parts were widened by, the widest gives
/// up. In points.
std::vector<double> fittedWidths(const CategoryStackBar& bar, double width);

} // namespace kestrio
