// image://app/APPLICATION?color=RRGGBB: the icon of an application, by bundle identifier or by path. Where there is
// none the symbol for a missing one shows, in the colour.
//
// QML asks on the thread of its images. The look-up happens on a thread of this provider, one at a time: it reads
// files, and the windows do not wait for it.
#pragma once

#include "Kestrio/Views/Design/IconCache.h"

#include <QtCore/QThreadPool>
#include <QtQuick/QQuickImageProvider>

namespace kestrio {

class AppIconImages : public QQuickAsyncImageProvider {
public:
    static constexpr int defaultSide = 32; // pixels, for a request without a size

    explicit AppIconImages(IconFile iconFile);
    ~AppIconImages() override;

    QQuickImageResponse* requestImageResponse(const QString& id, const QSize& requestedSize) override;

private:
    IconCache cache_; // belongs to the pool's only thread
    QThreadPool pool_;
};

} // namespace kestrio
