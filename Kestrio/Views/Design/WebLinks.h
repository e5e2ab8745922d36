// Opens addresses with the application that the person chose for them: the singleton `WebLinks`. Main thread.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtQml/QQmlEngine>
#include <functional>
#include <utility>

namespace kestrio {

class WebLinks : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    using Opener = std::function<void(const QString& address)>;

    /// Without a default: QML would else make one of its own instead of asking `create`.
    explicit WebLinks(QObject* parent) : QObject(parent) {}

    static WebLinks* create(QQmlEngine* engine, QJSEngine*);

    /// What opens addresses instead of the desktop's own way.
    void setOpener(Opener opener) { opener_ = std::move(opener); }

    /// Only pages of the web are opened. A recorded address is what some program showed, and other kinds can start
    /// things.
    Q_INVOKABLE bool canOpen(const QString& address) const;
    Q_INVOKABLE void open(const QString& address);

private:
    Opener opener_;
};

/// The engine's own.
WebLinks& webLinks(QQmlEngine& engine);

} // namespace kestrio
