// The icons of applications as pictures, by bundle identifier or by path. What was not found is remembered too and is
// not looked for again.
//
// Belongs to one thread; a first look-up reads files of the host's icon theme, a later one none.
#pragma once

#include <QtCore/QCache>
#include <QtCore/QSet>
#include <QtCore/QSize>
#include <QtCore/QString>
#include <QtGui/QImage>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace kestrio {

/// The file with the icon of an application at about so many pixels; absent where the host knows none. The application
/// is a bundle identifier, or a path when it begins with "/". Called on the thread of the icons, one call at a time;
/// may read files.
using IconFile = std::function<std::optional<std::filesystem::path>(const std::string& application, int pixels)>;

class IconCache {
public:
    static constexpr int keptBytes = 8 * 1024 * 1024;

    /// Without a look-up there are no icons.
    explicit IconCache(IconFile iconFile);

    /// The icon, as large as fits into the size, in the middle of it. Absent when there is none that can be read.
    std::optional<QImage> icon(const QString& application, QSize pixels);

private:
    IconFile iconFile_;
    QCache<QString, QImage> icons_;
    QSet<QString> misses_;
};

} // namespace kestrio
