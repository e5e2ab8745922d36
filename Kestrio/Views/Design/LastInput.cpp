#include "Kestrio/Views/Design/LastInput.h"

#include "Kestrio/Views/Design/EngineSingleton.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QKeyEvent>
#include <utility>

namespace kestrio {
namespace {

bool isModifier(const QKeyEvent& event) {
    switch (event.key()) {
    case Qt::Key_Shift:
    case Qt::Key_Control:
    case Qt::Key_Alt:
    case Qt::Key_AltGr:
    case Qt::Key_Meta:
    case Qt::Key_Super_L:
    case Qt::Key_Super_R: return true;
    default: return false;
    }
}

} // namespace

LastInput::LastInput(QObject* parent) : QObject(parent) {
    QGuiApplication::instance()->installEventFilter(this);
}

LastInput* LastInput::create(QQmlEngine* engine, QJSEngine*) {
    return &engineSingleton<LastInput>(*engine);
}

bool LastInput::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::KeyPress:
    case QEvent::ShortcutOverride: // of a shortcut there is no press
        set(wasKey_ || !isModifier(static_cast<const QKeyEvent&>(*event)));
        break;
    case QEvent::MouseButtonPress:
    case QEvent::TabletPress:
    case QEvent::TouchBegin: set(false); break;
    default: break;
    }
    return QObject::eventFilter(watched, event);
}

void LastInput::set(bool wasKey) {
    if (std::exchange(wasKey_, wasKey) != wasKey)
        Q_EMIT changed();
}

} // namespace kestrio
