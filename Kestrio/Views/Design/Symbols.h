// What QML asks about symbols: the singleton `Symbols`. Main thread.
#pragma once

#include "Kestrio/Views/Design/SymbolSet.h"

#include <QtCore/QObject>
#include <QtQml/qqmlregistration.h>

namespace kestrio {

class Symbols : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    Q_INVOKABLE bool isDirectional(const QString& name) const { return SymbolSet::standard().isDirectional(name); }
    Q_INVOKABLE QStringList names() const { return SymbolSet::standard().names(); }
};

} // namespace kestrio
