#include "Kestrio/Views/Design/SymbolImages.h"

#include "Kestrio/Views/Design/SymbolRequest.h"
#include "Kestrio/Views/Design/SymbolSet.h"

#include <memory>

namespace kestrio {

SymbolImages::SymbolImages() : QQuickImageProvider(QQuickImageProvider::Image), drawn_(keptBytes) {}

QImage SymbolImages::requestImage(const QString& id, QSize* size, const QSize& requestedSize) {
    const QSize pixels = requestedSize.isEmpty() ? QSize(defaultSide, defaultSide) : requestedSize;
    if (size != nullptr)
        *size = pixels;
    const auto key = QString("%1 %2 %3").arg(id).arg(pixels.width()).arg(pixels.height());
    const QMutexLocker lock(&mutex_);
    if (const QImage* known = drawn_.object(key))
        return *known;
    const auto request = symbolRequest(id);
    const QImage image = SymbolSet::standard().image(request.name, request.color, pixels);
    drawn_.insert(key, std::make_unique<QImage>(image).release(), static_cast<int>(image.sizeInBytes()));
    return image;
}

} // namespace kestrio
