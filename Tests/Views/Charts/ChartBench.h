// A window on no screen with one chart in it: points at it, presses keys, looks at its pixels.
#pragma once

#include "Kestrio/Views/Charts/ChartPalette.h"
#include "Kestrio/Views/Charts/ChartValues.h"
#include "Tests/Pages/PagesBench.h"

#include <QGuiApplication>
#include <QImage>
#include <QQuickItem>
#include <QQuickWindow>
#include <QScreen>
#include <QTest>
#include <gtest/gtest.h>
#include <ostream>

inline void PrintTo(const QColor& color, std::ostream* out) {
    *out << color.name(QColor::HexArgb).toStdString();
}
inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}
inline void PrintTo(const QRectF& area, std::ostream* out) {
    *out << area.x() << ',' << area.y() << ' ' << area.width() << 'x' << area.height();
}

namespace kestrio {

/// Colours that no two things share.
inline void fill(ChartPalette& palette) {
    palette.setInk(Qt::black);
    palette.setLabel(QColor("#555555"));
    palette.setGrid(QColor("#dddddd"));
    palette.setCategories({QColor("#3f7ae0"), QColor("#149a94"), QColor("#8659d3"), QColor("#d9771c"),
                           QColor("#d64550"), QColor("#9a6a4c"), QColor("#868f9e")});
}

inline SharedReport shared(ActivityReport report) {
    return std::make_shared<const ActivityReport>(std::move(report));
}

/// How many pixels a point is wide on the screen of the tests.
inline qreal screenScale() {
    return QGuiApplication::primaryScreen()->devicePixelRatio();
}

class ChartWindow {
public:
    ChartWindow(int width, int height) {
        window_.setColor(Qt::white);
        window_.resize(width, height);
        window_.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window_));
        fill(palette);
    }

    /// Puts a chart into the window, over an area in points.
    template <class Item>
    Item& add(QRectF area) {
        auto* item = new Item(window_.contentItem()); // the window's, and goes with it
        item->setPosition(area.topLeft());
        item->setSize(area.size());
        item->setProperty("palette", QVariant::fromValue(&palette));
        return *item;
    }

    void pointAt(qreal x, qreal y) {
        QTest::mouseMove(&window_, QPoint(qRound(x), qRound(y)));
        QCoreApplication::processEvents();
    }

    void press(QQuickItem& item, Qt::Key key) {
        item.forceActiveFocus();
        QTest::keyClick(&window_, key);
    }

    /// What the window shows, pixel for pixel.
    QImage look() {
        auto image = window_.grabWindow();
        image.setDevicePixelRatio(window_.effectiveDevicePixelRatio()); // the software renderer leaves it out
        return image;
    }

    /// The colour at a place in points.
    QColor colorAt(qreal x, qreal y) { return colorIn(look(), x, y); }

    static QColor colorIn(const QImage& image, qreal x, qreal y) {
        const auto scale = image.devicePixelRatio();
        return image.pixelColor(static_cast<int>(std::floor(x * scale)), static_cast<int>(std::floor(y * scale)));
    }

    QQuickWindow& window() { return window_; }

    ChartPalette palette;

private:
    QQuickWindow window_;
};

/// What a colour looks like at an opacity over another.
inline QColor over(const QColor& color, qreal opacity, const QColor& ground = Qt::white) {
    const auto mixed = [opacity](int above, int below) { return qRound(above * opacity + below * (1 - opacity)); };
    return {mixed(color.red(), ground.red()), mixed(color.green(), ground.green()), mixed(color.blue(), ground.blue())};
}

/// Equal but for the rounding of mixing.
inline testing::AssertionResult alike(const QColor& a, const QColor& b) {
    constexpr int most = 3;
    if (std::abs(a.red() - b.red()) <= most && std::abs(a.green() - b.green()) <= most &&
        std::abs(a.blue() - b.blue()) <= most)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << a.name().toStdString() << " is not " << b.name().toStdString();
}

} // namespace kestrio
