#include "Kestrio/Views/Design/WebLinks.h"

#include "Kestrio/Views/Design/EngineSingleton.h"

#include <QtCore/QUrl>
#include <QtGui/QDesktopServices>

namespace kestrio {

WebLinks* WebLinks::create(QQmlEngine* engine, QJSEngine*) {
    return &webLinks(*engine);
}

bool WebLinks::canOpen(const QString& address) const {
    const QUrl url(address);
    return url.isValid() && !url.host().isEmpty() && (url.scheme() == "https" || url.scheme() == "http");
}

void WebLinks::open(const QString& address) {
    if (!canOpen(address))
        return;
    if (opener_)
        opener_(address);
    else
        QDesktopServices::openUrl(QUrl(address));
}

WebLinks& webLinks(QQmlEngine& engine) {
    return engineSingleton<WebLinks>(engine);
}

} // namespace kestrio
