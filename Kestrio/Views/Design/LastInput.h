// Whether the person last used the keyboard or the pointer: only those who use the keyboard look for where it is. The
// singleton `LastInput`. Main thread.
#pragma once

#include <QtCore/QObject>
#include <QtQml/QQmlEngine>

namespace kestrio {

class LastInput : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    /// False until a key is pressed; modifiers alone do not count.
    Q_PROPERTY(bool wasKey READ wasKey NOTIFY changed)

public:
    /// Without a default: QML would else make one of its own instead of asking `create`.
    explicit LastInput(QObject* parent);
    static LastInput* create(QQmlEngine* engine, QJSEngine*);

    bool wasKey() const { return wasKey_; }

Q_SIGNALS:
    void changed();

private:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void set(bool wasKey);

    bool wasKey_ = false;
};

} // namespace kestrio
