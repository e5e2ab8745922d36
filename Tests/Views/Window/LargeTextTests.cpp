// Every page of the dashboard with large text in small windows, in both reading directions: what is said shows whole,
// inside the window and beside what else is said.
#include "Kestrio/Views/Design/Appearance.h"
#include "Tests/Views/Window/DashboardScreen.h"

#include <QGuiApplication>

namespace kestrio {
namespace {

struct Look {
    const char* page;
    double textScale;
    QSize size;
    Qt::LayoutDirection direction = Qt::LeftToRight;
};

std::ostream& operator<<(std::ostream& out, const Look& look) {
    return out << look.page << " at " << look.textScale << ", " << look.size.width() << " x " << look.size.height()
               << (look.direction == Qt::RightToLeft ? ", from right to left" : "");
}

std::vector<Look> looks() {
    std::vector<Look> all;
    for (const auto* const page : {"overview", "timeline", "apps", "websites", "youtube", "projects"}) {
        all.push_back({page, 1, {480, 400}});
        all.push_back({page, 1.5, {720, 480}});
        all.push_back({page, 2, {820, 620}});
        all.push_back({page, 2, {820, 620}, Qt::RightToLeft});
    }
    return all;
}

/// What of the item is to be seen, in the window.
QRectF seen(const QQuickItem* item) {
    auto rect = item->mapRectToScene({0, 0, item->width(), item->height()});
    for (const auto* above = item->parentItem(); above; above = above->parentItem())
        if (above->clip())
            rect &= above->mapRectToScene({0, 0, above->width(), above->height()});
    return rect;
}

struct LargeText : testing::TestWithParam<Look> {
    LargeText() {
        QGuiApplication::setLayoutDirection(GetParam().direction);
        screen.emplace(DashboardOptions{.page = GetParam().page});
        appearance(screen->engine()).setDesktop({.textScale = GetParam().textScale});
        screen->window().resize(GetParam().size);
        for (int i = 0; i < 3; ++i) // what wraps changes heights, and those what is below
            screen->settle();
    }
    ~LargeText() override {
        screen.reset();
        QGuiApplication::setLayoutDirection(Qt::LeftToRight);
    }
    LargeText(const LargeText&) = delete;
    LargeText& operator=(const LargeText&) = delete;

    std::vector<QQuickItem*> texts() const {
        return screen->items([](QQuickItem& item) {
            return item.inherits("QQuickText") && !item.property("text").toString().isEmpty();
        });
    }
    static std::string words(const QQuickItem* text) { return text->property("text").toString().toStdString(); }

    std::optional<DashboardScreen> screen;
};

TEST_P(LargeText, isNeverCutShort) {
    EXPECT_FALSE(texts().empty());
    for (const auto* const text : texts()) {
        EXPECT_FALSE(text->property("truncated").toBool()) << words(text);
    }
}

TEST_P(LargeText, staysInsideTheWindow) {
    for (const auto* const text : texts()) {
        const auto place = text->mapRectToScene({0, 0, text->width(), text->height()});
        EXPECT_GE(place.left(), -1) << words(text);
        EXPECT_LE(place.right(), GetParam().size.width() + 1) << words(text);
    }
}

TEST_P(LargeText, standsBesideOtherText) {
    const auto all = texts();
    for (auto one = all.begin(); one != all.end(); ++one)
        for (auto other = one + 1; other != all.end(); ++other) {
            const auto both = seen(*one) & seen(*other);
            EXPECT_FALSE(both.width() > 2 && both.height() > 2) << words(*one) << " and " << words(*other);
        }
}

INSTANTIATE_TEST_SUITE_P(Pages, LargeText, testing::ValuesIn(looks()));

} // namespace
} // namespace kestrio
