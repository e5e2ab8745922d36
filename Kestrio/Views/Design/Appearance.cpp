#include "Kestrio/Views/Design/Appearance.h"

#include "Kestrio/Views/Design/EngineSingleton.h"

#include <QtCore/QEvent>
#include <QtGui/QGuiApplication>
#include <QtGui/QPalette>
#include <algorithm>

namespace kestrio {
namespace {

bool isDarkPalette(const QPalette& palette) {
    return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

} // namespace

Appearance::Appearance(QObject* parent) : QObject(parent) {
    readPlatform();
    QGuiApplication::instance()->installEventFilter(this);
}

Appearance* Appearance::create(QQmlEngine* engine, QJSEngine*) {
    return &appearance(*engine);
}

bool Appearance::isDark() const {
    switch (mode_) {
    case AppearanceMode::light: return false;
    case AppearanceMode::dark: return true;
    case AppearanceMode::system: break;
    }
    return desktop_.isDark.value_or(isPlatformDark_);
}

double Appearance::textScale() const {
    if (QGuiApplication::platformName() == "xcb")
        return 1;
    return std::clamp(desktop_.textScale, leastTextScale, mostTextScale);
}

void Appearance::setMode(AppearanceMode mode) {
    if (mode_ == mode)
        return;
    mode_ = mode;
    Q_EMIT changed();
}

void Appearance::setDesktop(const DesktopAppearance& desktop) {
    if (desktop_ == desktop)
        return;
    desktop_ = desktop;
    Q_EMIT changed();
}

bool Appearance::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ApplicationPaletteChange && watched == QGuiApplication::instance())
        readPlatform();
    return false;
}

void Appearance::readPlatform() {
    const bool isDark = isDarkPalette(QGuiApplication::palette());
    if (isPlatformDark_ == isDark)
        return;
    isPlatformDark_ = isDark;
    Q_EMIT changed();
}

Appearance& appearance(QQmlEngine& engine) {
    return engineSingleton<Appearance>(engine);
}

} // namespace kestrio
