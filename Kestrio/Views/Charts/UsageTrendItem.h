// When one application, site or project was used. Main queue.
#pragma once

#include "Kestrio/Views/Charts/ChartValues.h"
#include "Kestrio/Views/Charts/ColumnPlotItem.h"

namespace kestrio {

class UsageTrendItem : public kestrio::ColumnPlotItem {
    Q_OBJECT
    QML_NAMED_ELEMENT(UsageTrendPlot)
    Q_PROPERTY(kestrio::UsageTrendValue trend READ trend WRITE setTrend NOTIFY trendChanged)

public:
    using ColumnPlotItem::ColumnPlotItem;

    UsageTrendValue trend() const { return trend_; }
    void setTrend(const UsageTrendValue& trend);

Q_SIGNALS:
    void trendChanged();

private:
    UsageTrendValue trend_;
};

} // namespace kestrio
