// The files that the design system carries in the program.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace kestrio {

/// Where the file lies among the program's resources; the path is the one below this folder.
QString resourcePath(const QString& path);

/// What is in the file. It is there: a missing one is a mistake in the build.
QByteArray resource(const QString& path);

} // namespace kestrio
