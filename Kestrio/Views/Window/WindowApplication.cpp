#include "Kestrio/Views/Window/WindowApplication.h"

#include <QGuiApplication>
#include <QQuickStyle>
#include <QQuickWindow>

namespace kestrio {

WindowApplication::WindowApplication(int& count, char** arguments) {
    if (qEnvironmentVariableIsEmpty("QSG_RHI_BACKEND") && qEnvironmentVariableIsEmpty("QT_QUICK_BACKEND"))
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    QGuiApplication::setApplicationName(QStringLiteral("Kestrio"));
    QGuiApplication::setDesktopFileName(QStringLiteral("kestrio"));
    application_ = std::make_unique<QGuiApplication>(count, arguments);
    queue_ = std::make_unique<QtQueue>();
}

WindowApplication::~WindowApplication() = default;

int WindowApplication::run() {
    return QGuiApplication::exec();
}

void WindowApplication::quit() {
    QGuiApplication::quit();
}

} // namespace kestrio
