// How the windows look: light or dark, with more contrast, with larger text, without motion. What the desktop asks for,
// unless the person chose otherwise in the settings. `Theme` reads it, and every colour and size follows at once.
//
// Belongs to the main thread and to its QML engine, in which it is the singleton `Appearance`.
#pragma once

#include "Kestrio/Platform/DesktopAppearance.h"
#include "Kestrio/Shell/Settings.h"

#include <QtCore/QObject>
#include <QtQml/QQmlEngine>

namespace kestrio {

class Appearance : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(bool isDark READ isDark NOTIFY changed)
    Q_PROPERTY(bool isHighContrast READ isHighContrast NOTIFY changed)
    Q_PROPERTY(bool reducesMotion READ reducesMotion NOTIFY changed)
    Q_PROPERTY(double textScale READ textScale NOTIFY changed)

public:
    static constexpr double leastTextScale = 0.8;
    static constexpr double mostTextScale = 2.5;

    /// Without a default: QML would else make one of its own instead of asking `create`.
    explicit Appearance(QObject* parent);
    static Appearance* create(QQmlEngine* engine, QJSEngine*);

    bool isDark() const;
    bool isHighContrast() const { return desktop_.isHighContrast; }
    bool reducesMotion() const { return desktop_.reducesMotion; }
    /// Within the bounds above. 1 on X11, where the screen's own scale has it already.
    double textScale() const;

    /// What the person chose; stands above what the desktop asks for.
    void setMode(AppearanceMode mode);
    void setDesktop(const DesktopAppearance& desktop);

Q_SIGNALS:
    void changed();

private:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void readPlatform();

    AppearanceMode mode_ = AppearanceMode::system;
    DesktopAppearance desktop_;
    bool isPlatformDark_ = false;
};

/// The engine's own.
Appearance& appearance(QQmlEngine& engine);

} // namespace kestrio
