// image://symbol/NAME?color=RRGGBB or AARRGGBB: a symbol in a colour, drawn at the very size that the screen shows.
//
// Called by QML on the thread of its images; keeps what it drew last, so that a theme that is switched back, or the
// hundredth row of a list, costs nothing.
#pragma once

#include <QtCore/QCache>
#include <QtCore/QMutex>
#include <QtQuick/QQuickImageProvider>

namespace kestrio {

class SymbolImages : public QQuickImageProvider {
public:
    static constexpr int defaultSide = 24; // pixels, for a request without a size
    static constexpr int keptBytes = 1024 * 1024;

    SymbolImages();

    QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;

private:
    QMutex mutex_; // guards the cache
    QCache<QString, QImage> drawn_;
};

} // namespace kestrio
