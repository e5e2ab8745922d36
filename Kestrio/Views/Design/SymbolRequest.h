// What the address of a picture asks for: a name, and the colour to draw it in. Plain values.
#pragma once

#include <QtCore/QString>
#include <QtGui/QColor>

namespace kestrio {

struct SymbolRequest {
    QString name;
    QColor color = Qt::black;
};

/// Of "NAME?color=RRGGBB" or "NAME?color=AARRGGBB".
inline SymbolRequest symbolRequest(const QString& id) {
    const auto mark = id.lastIndexOf("?color=");
    if (mark < 0)
        return {id};
    const QColor color("#" + id.mid(mark + 7));
    return {id.left(mark), color.isValid() ? color : QColor(Qt::black)};
}

} // namespace kestrio
