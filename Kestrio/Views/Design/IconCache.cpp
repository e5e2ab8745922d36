#include "Kestrio/Views/Design/IconCache.h"

#include <QtCore/QFile>
#include <QtCore/QXmlStreamReader>
#include <QtGui/QImageReader>
#include <QtGui/QPainter>
#include <QtSvg/QSvgRenderer>
#include <algorithm>
#include <memory>
#include <utility>

namespace kestrio {
namespace {

QRectF fitting(QSizeF picture, QSizeF frame) {
    const QSizeF size = picture.scaled(frame, Qt::KeepAspectRatio);
    return {(frame.width() - size.width()) / 2, (frame.height() - size.height()) / 2, size.width(), size.height()};
}

QImage onNothing(QSize pixels) {
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

/// What is no XML the renderer would complain about in the log.
bool isWellFormed(const QString& file) {
    QFile text(file);
    if (!text.open(QIODevice::ReadOnly))
        return false;
    QXmlStreamReader reader(&text);
    while (!reader.atEnd())
        reader.readNext();
    return !reader.hasError();
}

QImage drawing(const QString& file, QSize pixels) {
    if (file.endsWith(".svg") && !isWellFormed(file))
        return {};
    QSvgRenderer renderer(file);
    if (!renderer.isValid())
        return {};
    QImage image = onNothing(pixels);
    QPainter painter(&image);
    renderer.render(&painter, fitting(renderer.defaultSize(), pixels));
    return image;
}

QImage picture(const QString& file, QSize pixels) {
    const QImage read = QImageReader(file).read();
    if (read.isNull())
        return {};
    QImage image = onNothing(pixels);
    QPainter painter(&image);
    const QRect place = fitting(read.size(), pixels).toAlignedRect();
    painter.drawImage(place.topLeft(), read.scaled(place.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    return image;
}

bool isDrawing(const std::filesystem::path& file) {
    return file.extension() == ".svg" || file.extension() == ".svgz";
}

QImage load(const std::filesystem::path& file, QSize pixels) {
    const auto name = QString::fromStdString(file.string());
    return isDrawing(file) ? drawing(name, pixels) : picture(name, pixels);
}

} // namespace

IconCache::IconCache(IconFile iconFile) : iconFile_(std::move(iconFile)), icons_(keptBytes) {}

std::optional<QImage> IconCache::icon(const QString& application, QSize pixels) {
    if (misses_.contains(application) || pixels.isEmpty())
        return std::nullopt;
    const auto key = QString("%1 %2 %3").arg(application).arg(pixels.width()).arg(pixels.height());
    if (const QImage* known = icons_.object(key))
        return *known;
    const auto file =
        !iconFile_ ? std::nullopt : iconFile_(application.toStdString(), std::max(pixels.width(), pixels.height()));
    const QImage image = file ? load(*file, pixels) : QImage();
    if (image.isNull()) {
        misses_.insert(application);
        return std::nullopt;
    }
    icons_.insert(key, std::make_unique<QImage>(image).release(), static_cast<int>(image.sizeInBytes()));
    return image;
}

} // namespace kestrio
