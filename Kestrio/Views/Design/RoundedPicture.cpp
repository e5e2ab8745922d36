#include "Kestrio/Views/Design/RoundedPicture.h"

#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <QtNetwork/QNetworkAccessManager>
#include <QtNetwork/QNetworkRequest>
#include <QtQml/QQmlEngine>
#include <utility>

namespace kestrio {
namespace {

/// The middle part of the picture that has the shape of the place.
QRectF filling(QSizeF picture, QSizeF place) {
    const QSizeF part = place.scaled(picture, Qt::KeepAspectRatio);
    return {(picture.width() - part.width()) / 2, (picture.height() - part.height()) / 2, part.width(), part.height()};
}

} // namespace

void RoundedPicture::Discard::operator()(QNetworkReply* reply) const {
    reply->disconnect();
    reply->abort();
    reply->deleteLater();
}

RoundedPicture::RoundedPicture(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
}

RoundedPicture::~RoundedPicture() = default;

void RoundedPicture::setSource(const QUrl& source) {
    if (source_ == source)
        return;
    source_ = source;
    show({});
    request();
    Q_EMIT sourceChanged();
}

void RoundedPicture::setRadius(double radius) {
    if (radius_ == radius)
        return;
    radius_ = radius;
    update();
    Q_EMIT radiusChanged();
}

void RoundedPicture::componentComplete() {
    QQuickPaintedItem::componentComplete();
    request();
}

void RoundedPicture::request() {
    reply_.reset();
    auto* const engine = qmlEngine(this);
    if (source_.isEmpty() || engine == nullptr || !isComponentComplete())
        return;
    // Nobody but the one who was asked answers, and is told no more than which picture.
    QNetworkRequest request(source_);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::SameOriginRedirectPolicy);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setTransferTimeout(deadline);
    reply_.reset(engine->networkAccessManager()->get(request));
    connect(reply_.get(), &QNetworkReply::finished, this, &RoundedPicture::receive);
    connect(reply_.get(), &QNetworkReply::downloadProgress, this, [this](qint64 received, qint64) {
        if (received > mostBytes)
            reply_.reset();
    });
}

void RoundedPicture::receive() {
    const auto reply = std::exchange(reply_, nullptr);
    if (reply->error() == QNetworkReply::NoError)
        show(QImage::fromData(reply->readAll()));
}

void RoundedPicture::show(QImage picture) {
    const bool wasLoaded = isLoaded();
    picture_ = std::move(picture);
    update();
    if (wasLoaded != isLoaded())
        Q_EMIT isLoadedChanged();
}

void RoundedPicture::paint(QPainter* painter) {
    if (picture_.isNull())
        return;
    QPainterPath corners;
    corners.addRoundedRect(boundingRect(), radius_, radius_);
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    // Painted as a brush, whose edge is smooth; a clip's is not.
    const QRectF part = filling(picture_.size(), boundingRect().size());
    QBrush brush(picture_);
    const double scale = boundingRect().width() / part.width();
    brush.setTransform(QTransform::fromScale(scale, scale).translate(-part.x(), -part.y()));
    painter->fillPath(corners, brush);
}

} // namespace kestrio
