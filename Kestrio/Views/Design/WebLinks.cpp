#include "Kestrio/Views/Design/WebLinks.h"

#include <QtCore/QUrl>
#include <QtGui/QDesktopServices>

namespace kestrio {

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
    return *engine.singletonInstance<WebLinks*>(qmlTypeId("Kestrio.Design", 1, 0, "WebLinks"));
}

} // namespace kestrio
