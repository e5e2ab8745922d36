// One bar that categories share in the order of their time, from where reading begins. Main queue.
#pragma once

#include "Kestrio/Views/Charts/ChartItem.h"
#include "Kestrio/Views/Charts/ChartValues.h"
#include "Kestrio/Views/Charts/PixelGrid.h"

namespace kestrio {

class StackBarItem : public kestrio::ChartItem {
    Q_OBJECT
    QML_NAMED_ELEMENT(StackBarPlot)
    Q_PROPERTY(kestrio::CategoryStackBarValue bar READ bar WRITE setBar NOTIFY barChanged)
    /// Whether writing runs from right to left: the first part then stands at the right.
    Q_PROPERTY(bool mirrored READ mirrored WRITE setMirrored NOTIFY mirroredChanged)

public:
    using ChartItem::ChartItem;

    CategoryStackBarValue bar() const { return bar_; }
    void setBar(const CategoryStackBarValue& bar);
    bool mirrored() const { return mirrored_; }
    void setMirrored(bool mirrored);

    void paint(QPainter* painter) override;

Q_SIGNALS:
    void barChanged();
    void mirroredChanged();

private:
    CategoryStackBarValue bar_;
    bool mirrored_ = false;
};

/// How wide the parts stand side by side, so that they fill the bar: what small parts were widened by, the widest gives
/// up. In points.
std::vector<double> fittedWidths(const CategoryStackBar& bar, double width);

} // namespace kestrio
