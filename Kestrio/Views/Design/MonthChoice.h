// The picking of a day from the months, for QML: which month shows, and what a click on it means. Main thread. Dates
// are seconds since 1970.
#pragma once

#include "Kestrio/Pages/MonthGrid.h"

#include <QtCore/QObject>
#include <QtCore/QVariantMap>
#include <QtQml/qqmlregistration.h>

namespace kestrio {

class MonthChoice : public QObject {
    Q_OBJECT
    QML_ELEMENT
    /// The day that is picked; setting it shows its month.
    Q_PROPERTY(double date READ date WRITE setDate NOTIFY changed)
    /// The present: later days cannot be picked.
    Q_PROPERTY(double now READ now WRITE setNow NOTIFY changed)
    /// `title`, `weekdays`, `hasNext`, and `days` with `label`, `fullName`, `isInMonth`, `isToday`, `isSelected`,
    /// `isEnabled`.
    Q_PROPERTY(QVariantMap month READ month NOTIFY changed)

public:
    double date() const { return date_; }
    void setDate(double date);
    double now() const { return now_; }
    void setNow(double now);
    QVariantMap month() const;

    Q_INVOKABLE void moveMonths(int by);
    /// The start of the day at this place of `month.days`.
    Q_INVOKABLE double dayAt(int place) const;
    /// The start of the day so many days after the picked one, or of today where that is earlier.
    Q_INVOKABLE double dayBeside(int days) const;

Q_SIGNALS:
    void changed();

private:
    MonthGrid grid() const;

    Calendar calendar_ = Calendar::current();
    double date_ = 0;
    double shown_ = 0;
    double now_ = 0;
};

} // namespace kestrio
