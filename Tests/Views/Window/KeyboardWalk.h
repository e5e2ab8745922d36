// Walks through a window with the tabulator and tells where it stops.
#pragma once

#include "Tests/Views/Window/Screen.h"

#include <QQmlProperty>
#include <map>

namespace kestrio {

class KeyboardWalk {
public:
    using Stops = std::vector<std::string>;
    static constexpr std::size_t most = 100; // more stops than there are anywhere

    explicit KeyboardWalk(Screen& screen) : screen_(screen) {}

    /// What has the keyboard. Null when nothing has.
    QQuickItem* focused() const {
        auto* const item = screen_.window().activeFocusItem();
        return item == screen_.window().contentItem() ? nullptr : item;
    }

    /// The same in words, as in "button: Refresh".
    std::string stop() const {
        auto* const item = focused();
        if (!item)
            return "nothing";
        auto* const interface = QAccessible::queryAccessibleInterface(item);
        if (!interface)
            return "unknown: " + std::string(item->metaObject()->className());
        const auto kind = kinds().find(interface->role());
        return (kind == kinds().end() ? "other" : kind->second) + ": " + Screen::accessibleName(*item).toStdString();
    }

    /// All stops from where the keyboard is now, in their order.
    Stops stops(
        Qt::Key key = Qt::Key_Tab, const std::function<void()>& atEach = [] {}) {
        Stops all;
        std::vector<QQuickItem*> seen;
        while (seen.size() < most) {
            screen_.press(key);
            if (std::ranges::find(seen, focused()) != seen.end())
                break;
            seen.push_back(focused());
            all.push_back(stop());
            atEach();
        }
        return all;
    }

    /// Presses the tabulator until it stops there.
    void go(const std::string& wanted) {
        for (std::size_t times = 0; times < most && stop() != wanted; ++times)
            screen_.press(Qt::Key_Tab);
        ASSERT_EQ(stop(), wanted);
    }

    /// Whether the eye finds what has the keyboard: one ring stands around it or within it. Fields have a strong
    /// border.
    bool isRinged() const {
        const auto rings = screen_.items([&](QQuickItem& item) {
            const auto* const within = item.parentItem();
            const bool isField = within && within->inherits("QQuickTextField") && item.inherits("QQuickRectangle");
            return QLatin1StringView(item.metaObject()->className()).startsWith(QLatin1StringView("FocusRing")) ||
                   (isField && QQmlProperty::read(&item, "border.width").toInt() == 2);
        });
        return rings.size() == 1 && focused() && place(*rings.front()).intersects(place(*focused()));
    }

    /// Whether its beginning is in sight.
    bool isInSight() const {
        const auto shown = place(*focused()) & QRectF({}, screen_.window().size());
        return shown.width() >= 1 && shown.height() >= std::min(20.0, focused()->height()) - 1;
    }

    /// Whether a finger or an unsteady hand hits it.
    bool isLargeEnough() const {
        constexpr qreal least = 24;
        return focused()->width() >= least && focused()->height() >= least;
    }

private:
    static const std::map<QAccessible::Role, std::string>& kinds() {
        static const std::map<QAccessible::Role, std::string> all{
            {QAccessible::Button, "button"}, {QAccessible::Chart, "chart"},        {QAccessible::CheckBox, "switch"},
            {QAccessible::Dialog, "dialog"}, {QAccessible::EditableText, "field"}, {QAccessible::Grouping, "group"},
            {QAccessible::List, "list"},     {QAccessible::ListItem, "row"},       {QAccessible::MenuItem, "entry"},
            {QAccessible::Pane, "pane"},     {QAccessible::RadioButton, "choice"},
        };
        return all;
    }

    static QRectF place(const QQuickItem& item) { return item.mapRectToScene({0, 0, item.width(), item.height()}); }

    Screen& screen_;
};

} // namespace kestrio
