// A window on no screen with something of the views in it: finds what shows by its words, clicks on it and types.
#pragma once

#include "Kestrio/Views/Design/Design.h"

#include <QAccessible>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>
#include <functional>
#include <gtest/gtest.h>
#include <ostream>

inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}

namespace kestrio {

class Screen {
public:
    explicit Screen(QSize size = {960, 700}) : size_(size) {
        installDesign(engine_, [](const auto&, int) { return std::nullopt; });
    }
    ~Screen() { close(); }
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    /// Shows an item of the module by its file, in a window of its own or as the window that it is.
    void show(const QString& file, const QVariantMap& properties) {
        QQmlComponent component(&engine_, QUrl(QStringLiteral("qrc:/qt/qml/Kestrio/Window/") + file));
        ASSERT_TRUE(component.isReady()) << component.errorString().toStdString();
        auto* const made = component.createWithInitialProperties(properties);
        ASSERT_NE(made, nullptr) << component.errorString().toStdString();
        if (auto* const whole = qobject_cast<QQuickWindow*>(made)) {
            window_.reset(whole);
        } else {
            auto* const item = qobject_cast<QQuickItem*>(made);
            window_ = std::make_unique<QQuickWindow>();
            window_->resize(size_);
            item->setParent(window_.get());
            item->setParentItem(window_->contentItem());
            item->setSize(size_);
        }
        window_->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(window_.get()));
        window_->requestActivate();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window_.get()));
        settle();
    }

    /// What shows goes, before what it reads does.
    void close() { window_.reset(); }

    QQmlEngine& engine() { return engine_; }
    QQuickWindow& window() { return *window_; }
    /// Everything is laid out and stands where it will stand.
    void settle() {
        QCoreApplication::processEvents();
        if (window_)
            window_->grabWindow();
        QCoreApplication::processEvents();
    }

    /// Every item that shows and fits, those in front last.
    std::vector<QQuickItem*> items(const std::function<bool(QQuickItem&)>& fits) const {
        std::vector<QQuickItem*> found;
        collect(window_->contentItem(), fits, found);
        return found;
    }

    /// The item that shows these words. Null when none does.
    QQuickItem* withText(const QString& text) const {
        const auto found = items([&](QQuickItem& item) { return item.property("text").toString() == text; });
        return found.empty() ? nullptr : found.back();
    }
    bool shows(const QString& text) const { return withText(text) != nullptr; }

    /// What assistive technology calls by this name. Null when nothing.
    QQuickItem* named(const QString& name, QAccessible::Role role) const {
        const auto found = items([&](QQuickItem& item) {
            auto* const interface = QAccessible::queryAccessibleInterface(&item);
            return interface && interface->role() == role && accessibleName(item) == name && isRead(*interface);
        });
        return found.empty() ? nullptr : found.back();
    }

    /// A button takes its words for its name once somebody listens, which on no screen nobody does.
    static QString accessibleName(QQuickItem& item) {
        const auto name = QAccessible::queryAccessibleInterface(&item)->text(QAccessible::Name);
        return name.isEmpty() && item.inherits("QQuickAbstractButton") ? item.property("text").toString() : name;
    }

    /// Whether assistive technology comes to it: what stands in a row with a name of its own is passed over.
    static bool isRead(QAccessibleInterface& interface) {
        auto* const parent = interface.parent();
        return parent && parent->indexOfChild(&interface) >= 0;
    }

    void click(QQuickItem* item) {
        ASSERT_NE(item, nullptr) << "there is nothing to click on";
        const auto center = item->mapToScene(QPointF(item->width() / 2, item->height() / 2));
        QTest::mouseClick(window_.get(), Qt::LeftButton, {}, center.toPoint());
        settle();
    }
    void click(const QString& text) {
        auto* const item = withText(text);
        ASSERT_NE(item, nullptr) << "nothing says " << text.toStdString();
        click(item);
    }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(window_.get(), key, modifiers);
        settle();
    }
    void type(const QString& text) {
        for (const auto letter : text)
            QTest::sendKeyEvent(QTest::Click, window_.get(), Qt::Key_unknown, QString(letter), {});
        settle();
    }

    /// Puts the keyboard into the field with these words in it while it is empty.
    void enter(const QString& prompt) {
        auto* const field = named(prompt, QAccessible::EditableText);
        ASSERT_NE(field, nullptr) << "there is no field " << prompt.toStdString();
        field->forceActiveFocus(Qt::TabFocusReason);
        settle();
    }

private:
    static void collect(QQuickItem* item, const std::function<bool(QQuickItem&)>& fits,
                        std::vector<QQuickItem*>& found) {
        if (!item->isVisible())
            return;
        if (fits(*item))
            found.push_back(item);
        for (auto* const child : item->childItems())
            collect(child, fits, found);
    }

    const QSize size_;
    QQmlEngine engine_;
    std::unique_ptr<QQuickWindow> window_;
};

} // namespace kestrio
