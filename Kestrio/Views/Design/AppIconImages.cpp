#include "Kestrio/Views/Design/AppIconImages.h"

#include "Kestrio/Pages/Icons.h"
#include "Kestrio/Views/Design/SymbolRequest.h"
#include "Kestrio/Views/Design/SymbolSet.h"

#include <memory>
#include <utility>

namespace kestrio {
namespace {

/// What QML gets at once, and is told of when the picture is there. QML deletes it.
class Response : public QQuickImageResponse {
public:
    void deliver(const QImage& image) {
        image_ = image;
        Q_EMIT finished();
    }
    QQuickTextureFactory* textureFactory() const override {
        return QQuickTextureFactory::textureFactoryForImage(image_);
    }

private:
    QImage image_;
};

QImage iconOrSymbol(IconCache& cache, const SymbolRequest& request, QSize pixels) {
    if (const auto icon = cache.icon(request.name, pixels))
        return *icon;
    return SymbolSet::standard().image(AppIcon::missingSymbol, request.color, pixels);
}

} // namespace

AppIconImages::AppIconImages(IconFile iconFile) : cache_(std::move(iconFile)) {
    pool_.setMaxThreadCount(1);
}

AppIconImages::~AppIconImages() {
    pool_.clear();
    pool_.waitForDone();
}

QQuickImageResponse* AppIconImages::requestImageResponse(const QString& id, const QSize& requestedSize) {
    const QSize pixels = requestedSize.isEmpty() ? QSize(defaultSide, defaultSide) : requestedSize;
    auto response = std::make_unique<Response>();
    auto* const answered = response.get();
    pool_.start([this, answered, request = symbolRequest(id), pixels] {
        answered->deliver(iconOrSymbol(cache_, request, pixels));
    });
    return response.release();
}

} // namespace kestrio
