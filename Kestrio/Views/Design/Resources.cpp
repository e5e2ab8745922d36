#include "Kestrio/Views/Design/Resources.h"

#include <QtCore/QFile>

namespace kestrio {

QString resourcePath(const QString& path) {
    return ":/qt/qml/Kestrio/Design/" + path;
}

QByteArray resource(const QString& path) {
    QFile file(resourcePath(path));
    const bool isOpen = file.open(QIODevice::ReadOnly);
    Q_ASSERT_X(isOpen, "resource", qPrintable(path));
    return isOpen ? file.readAll() : QByteArray();
}

} // namespace kestrio
