#include "Kestrio/Views/Window/WindowApplication.h"

#include <QGuiApplication>
#include <QLocale>
#include <QQuickStyle>
#include <QQuickWindow>

namespace kestrio {
namespace {

/// Of the language that the person reads. The framework would take it from translations of its own.
Qt::LayoutDirection readingDirection() {
    const auto languages = QLocale::system().uiLanguages();
    return languages.isEmpty() ? Qt::LeftToRight : QLocale(languages.front()).textDirection();
}

} // namespace

WindowApplication::WindowApplication(int& count, char** arguments) {
    if (qEnvironmentVariableIsEmpty("QSG_RHI_BACKEND") && qEnvironmentVariableIsEmpty("QT_QUICK_BACKEND"))
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    QGuiApplication::setApplicationName(QStringLiteral("Kestrio"));
    QGuiApplication::setDesktopFileName(QStringLiteral("kestrio"));
    application_ = std::make_unique<QGuiApplication>(count, arguments);
    QGuiApplication::setLayoutDirection(readingDirection());
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
