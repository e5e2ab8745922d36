// What QML asks about categories: the singleton `Categories`. Main thread.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtQml/qqmlregistration.h>

namespace kestrio {

class Categories : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    /// The name of the colour of the category with this raw value; that of a neutral one for any other text.
    Q_INVOKABLE QString colorName(const QString& category) const;
};

} // namespace kestrio
