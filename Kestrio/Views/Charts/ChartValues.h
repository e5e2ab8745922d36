// The charts as values that QML hands from page to item without looking inside: each shares what `Pages` made, so that
// nothing is copied however many sessions there are. Texts that stand beside a chart are read off them. Main queue, as
// the calendars within.
#pragma once

#include "Kestrio/Pages/ActivityChart.h"
#include "Kestrio/Pages/CategoryBreakdown.h"
#include "Kestrio/Pages/DayStrips.h"
#include "Kestrio/Pages/UsageTrend.h"

#include <QVariantMap>
#include <QtQml/qqmlregistration.h>
#include <memory>

namespace kestrio {

/// A report that charts share.
using SharedReport = std::shared_ptr<const ActivityReport>;

/// The chart of a report, and what its tooltips are read from.
struct ActivityChartData {
    SharedReport report;
    Calendar calendar;
    ActivityChart chart;
};

class ActivityChartValue {
    Q_GADGET
    QML_VALUE_TYPE(activityChartValue)
    Q_PROPERTY(QString words READ words)
    Q_PROPERTY(QVariantList legend READ legend)

public:
    ActivityChartValue() = default;
    explicit ActivityChartValue(std::shared_ptr<const ActivityChartData> data) : data_(std::move(data)) {}

    const ActivityChartData* data() const { return data_.get(); }
    QString words() const;
    QVariantList legend() const;
    friend bool operator==(const ActivityChartValue&, const ActivityChartValue&) = default;

private:
    std::shared_ptr<const ActivityChartData> data_;
};

class UsageTrendValue {
    Q_GADGET
    QML_VALUE_TYPE(usageTrendValue)
    Q_PROPERTY(QString words READ words)

public:
    UsageTrendValue() = default;
    explicit UsageTrendValue(std::shared_ptr<const UsageTrend> trend) : trend_(std::move(trend)) {}

    const UsageTrend* data() const { return trend_.get(); }
    QString words() const;
    friend bool operator==(const UsageTrendValue&, const UsageTrendValue&) = default;

private:
    std::shared_ptr<const UsageTrend> trend_;
};

class CategoryStackBarValue {
    Q_GADGET
    QML_VALUE_TYPE(categoryStackBarValue)
    Q_PROPERTY(QString words READ words)

public:
    CategoryStackBarValue() = default;
    explicit CategoryStackBarValue(std::shared_ptr<const CategoryStackBar> bar) : bar_(std::move(bar)) {}

    const CategoryStackBar* data() const { return bar_.get(); }
    QString words() const;
    friend bool operator==(const CategoryStackBarValue&, const CategoryStackBarValue&) = default;

private:
    std::shared_ptr<const CategoryStackBar> bar_;
};

/// The strips of a report, which they look into.
struct DayStripsData {
    SharedReport report;
    Calendar calendar;
    DayStrips strips;
};

class DayStripsValue {
    Q_GADGET
    QML_VALUE_TYPE(dayStripsValue)
    Q_PROPERTY(QString heading READ heading)
    Q_PROPERTY(QString explanation READ explanation)
    Q_PROPERTY(QString legendTitle READ legendTitle)
    Q_PROPERTY(QString words READ words)
    Q_PROPERTY(int dayCount READ dayCount)
    Q_PROPERTY(bool showsAlongside READ showsAlongside)
    Q_PROPERTY(bool isDense READ isDense)
    Q_PROPERTY(qreal stripHeight READ stripHeight)
    Q_PROPERTY(qreal mediaHeight READ mediaHeight)
    Q_PROPERTY(qreal leastLegendWidth READ leastLegendWidth)
    Q_PROPERTY(QVariantList hourAxis READ hourAxis)
    Q_PROPERTY(QVariantList legend READ legend)

public:
    DayStripsValue() = default;
    explicit DayStripsValue(std::shared_ptr<const DayStripsData> data) : data_(std::move(data)) {}

    const DayStripsData* data() const { return data_.get(); }

    QString heading() const { return QString::fromUtf8(DayStrips::heading); }
    QString explanation() const;
    QString legendTitle() const { return QString::fromUtf8(DayStrips::legendTitle); }
    QString words() const;
    int dayCount() const;
    bool showsAlongside() const { return data_ && data_->strips.showsAlongside; }
    bool isDense() const { return data_ && data_->strips.layout.isDense; }
    qreal stripHeight() const { return data_ ? data_->strips.layout.strip : 0; }
    qreal mediaHeight() const { return data_ ? data_->strips.layout.mediaLine : 0; }
    qreal leastLegendWidth() const { return DayStrips::leastLegendWidth; }

    /// The hours along the top as {label, fraction}, from 0 to 1 across.
    QVariantList hourAxis() const;
    QVariantList legend() const;

    /// How a day is named, as {title, detail, help}, the last two only where there are any. Empty out of bounds.
    Q_INVOKABLE QVariantMap dayLabel(int day) const;

    friend bool operator==(const DayStripsValue&, const DayStripsValue&) = default;

private:
    std::shared_ptr<const DayStripsData> data_;
};

ActivityChartValue activityChartValue(SharedReport report, const Calendar& calendar);
DayStripsValue dayStripsValue(SharedReport report, const Viewpoint& viewpoint);

/// {label, color, category}: the two latter by name.
QVariantMap toMap(const CategoryPill& pill);

/// {bar, rows, summary}, each row {category, share, duration}.
QVariant toVariant(const CategoryBreakdown& breakdown);
QVariant toVariant(const CategoryStackBar& bar);
QVariant toVariant(const UsageTrend& trend);

} // namespace kestrio
