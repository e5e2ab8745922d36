#include "Kestrio/Views/Charts/UsageTrendItem.h"

namespace kestrio {

void UsageTrendItem::setTrend(const UsageTrendValue& trend) {
    if (trend_ == trend)
        return;
    trend_ = trend;
    setPlot(trend_.data() ? columnPlot(*trend_.data()) : ColumnPlot());
    Q_EMIT trendChanged();
}

} // namespace kestrio
