// A window on no screen with a piece of QML in it: finds what shows, clicks on it and types.
#pragma once

#include "Kestrio/Views/Design/Design.h"

#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>
#include <QtQml/QQmlExpression>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>
#include <QtTest/QTest>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <ostream>

// Named by the library of tests, which prints values through it.
inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}

namespace kestrio {

class Stage {
public:
    explicit Stage(IconFile iconFile = nullptr);
    ~Stage();
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    QQmlEngine& engine() { return engine_; }
    Appearance& appearance() { return kestrio::appearance(engine_); }

    /// Shows the item that the text describes, with `Kestrio.Design` imported, at the window's size. Null, with a
    /// failure, when it cannot be made.
    QQuickItem* show(const QString& qml);
    QQuickWindow& window() { return *window_; }

    /// The value of an expression in the item's own context.
    QVariant value(const QString& expression);

    /// The items of a type by its file's name, visible ones alone, from top to bottom of the tree.
    QList<QQuickItem*> items(const QString& type);
    /// The texts that show.
    QStringList texts();
    /// The visible item that shows exactly this text.
    QQuickItem* withText(const QString& text);

    void click(QQuickItem* item);
    void hover(QQuickItem* item);
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void type(const QString& text);

    /// Lets events happen until the condition holds. False when it does not in a time far longer than it takes.
    bool becomes(const std::function<bool()>& condition);

    /// Everything was laid out, drawn and loaded.
    QImage picture();

private:
    QPoint middleOf(QQuickItem* item) const;

    QQmlEngine engine_;
    std::unique_ptr<QQuickWindow> window_;
    std::unique_ptr<QQuickItem> item_;
};

/// Every item below this one, itself first.
QList<QQuickItem*> allItems(QQuickItem* item);

} // namespace kestrio
