// How much of a long list shows, for QML: an `ExpandableList` value beside the length of its list. Main thread.
#pragma once

#include "Kestrio/Pages/ExpandableList.h"

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtQml/qqmlregistration.h>

namespace kestrio {

class ListPortion : public QObject {
    Q_OBJECT
    QML_ELEMENT
    /// The length of the list.
    Q_PROPERTY(int count READ count WRITE setCount NOTIFY changed)
    Q_PROPERTY(int initialCount READ initialCount WRITE setInitialCount NOTIFY changed)
    Q_PROPERTY(int shown READ shown NOTIFY changed)
    /// Empty when all show.
    Q_PROPERTY(QString moreTitle READ moreTitle NOTIFY changed)

public:
    static constexpr int defaultInitialCount = 10;

    int count() const { return count_; }
    void setCount(int count);

    int initialCount() const { return initialCount_; }
    /// The list is another one from here on: what was asked for before no longer counts.
    void setInitialCount(int count);

    int shown() const { return static_cast<int>(list_.shown(static_cast<std::size_t>(count_))); }
    QString moreTitle() const;

    Q_INVOKABLE void showMore();

Q_SIGNALS:
    void changed();

private:
    int count_ = 0;
    int initialCount_ = defaultInitialCount;
    ExpandableList list_{defaultInitialCount};
};

} // namespace kestrio
