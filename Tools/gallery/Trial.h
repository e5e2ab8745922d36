// What the gallery's switches ask of the appearance, as a desktop would: the singleton `Trial`. Main thread.
#pragma once

#include "Kestrio/Views/Design/Appearance.h"

#include <QtQml/QQmlEngine>
#include <memory>

namespace kestrio {

class Trial : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(bool isDark READ isDark WRITE setDark)
    Q_PROPERTY(bool isHighContrast READ isHighContrast WRITE setHighContrast)
    Q_PROPERTY(double textScale READ textScale WRITE setTextScale)

public:
    explicit Trial(Appearance& appearance) : appearance_(appearance) {}
    static Trial* create(QQmlEngine* engine, QJSEngine*) {
        return std::make_unique<Trial>(appearance(*engine)).release();
    }

    bool isDark() const { return desktop_.isDark.value_or(false); }
    bool isHighContrast() const { return desktop_.isHighContrast; }
    double textScale() const { return desktop_.textScale; }

    void setDark(bool isDark) {
        desktop_.isDark = isDark;
        appearance_.setDesktop(desktop_);
    }
    void setHighContrast(bool isHighContrast) {
        desktop_.isHighContrast = isHighContrast;
        appearance_.setDesktop(desktop_);
    }
    void setTextScale(double textScale) {
        desktop_.textScale = textScale;
        appearance_.setDesktop(desktop_);
    }

private:
    Appearance& appearance_;
    DesktopAppearance desktop_;
};

} // namespace kestrio
