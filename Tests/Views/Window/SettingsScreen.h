// The settings window on no screen.
#pragma once

#include "Kestrio/Views/Window/Settings/SettingsModel.h"
#include "Tests/Views/Window/Screen.h"
#include "Tests/Views/Window/SettingsStage.h"

#include <stdexcept>

namespace kestrio {

struct SettingsScreen : SettingsStage, Screen {
    explicit SettingsScreen(const char* tab, Agent presence = Agent::there)
        : SettingsStage({}, RangeMode::day, presence), model(parts) {
        // A menu that fades would take the next click.
        appearance(engine()).setDesktop({.reducesMotion = true});
        settle();
        model.open(tab);
        settle();
        show("Settings/SettingsWindow.qml", {{"model", QVariant::fromValue(&model)}});
        // All of every tab shows, so that a click reaches it.
        window().resize(760, 2600);
        settle();
    }
    ~SettingsScreen() { close(); }
    SettingsScreen(const SettingsScreen&) = delete;
    SettingsScreen& operator=(const SettingsScreen&) = delete;

    void settle() {
        WindowStage::settle();
        Screen::settle();
    }
    void click(QQuickItem* item) {
        Screen::click(item);
        settle();
    }
    void click(const QString& text) { click(withText(text)); }

    /// What assistive technology calls by this name; ends the test with what there is in its place.
    QQuickItem& there(const char* name, QAccessible::Role role) const {
        if (auto* const found = named(name, role))
            return *found;
        std::string names;
        for (auto* const item : items([&](QQuickItem& one) {
                 auto* const interface = QAccessible::queryAccessibleInterface(&one);
                 return interface && !accessibleName(one).isEmpty();
             }))
            names += accessibleName(*item).toStdString() + " (" +
                     std::to_string(QAccessible::queryAccessibleInterface(item)->role()) + "), ";
        throw std::runtime_error("there is no " + std::string(name) + " among " + names);
    }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        Screen::press(key, modifiers);
        settle();
    }
    void type(const QString& text) {
        Screen::type(text);
        settle();
    }

    /// Clicks on the control that assistive technology calls by this name.
    void turn(const char* name) { click(&there(name, QAccessible::CheckBox)); }

    /// Opens the menu of this name and picks an entry.
    void choose(const char* menu, const char* entry) {
        click(&there(menu, QAccessible::Button));
        ASSERT_TRUE(QTest::qWaitFor([&] { return entryOfMenu(entry) != nullptr; })) << menu << " has no " << entry;
        click(entryOfMenu(entry));
        ASSERT_TRUE(QTest::qWaitFor([&] { return entryOfMenu(entry) == nullptr; })) << menu << " stays open";
        settle();
    }

    SettingsModel model;

private:
    /// The entry of the menu that is open; null when there is none of these words.
    QQuickItem* entryOfMenu(const char* entry) {
        settle();
        const auto found = items([&](QQuickItem& item) {
            return item.inherits("QQuickMenuItem") && item.property("text").toString() == entry;
        });
        return found.empty() ? nullptr : found.back();
    }
};

} // namespace kestrio
