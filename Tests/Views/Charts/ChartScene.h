// A page of charts in a window on no screen, written in QML as pages are, over an example history.
#pragma once

#include "Kestrio/Pages/OverviewPage.h"
#include "Kestrio/Views/Charts/ChartValues.h"
#include "Kestrio/Views/Design/Design.h"
#include "Tests/Views/Charts/ChartBench.h"

#include <QQmlComponent>
#include <QQmlContext>
#include <QQmlEngine>

namespace kestrio {

class ChartScene {
public:
    /// `qml` is the body of an item as wide and high as the window; `report` is there by the names `activity`,
    /// `strips`, `breakdown`, `categoryBar` and `browserTrend`.
    ChartScene(const SharedReport& report, const Viewpoint& viewpoint, const char* qml, QSize size,
               bool isDark = false) {
        // The second form of the same place is the one by which Qt 6.4 tells the module that a file belongs to.
        engine.setImportPathList(engine.importPathList() << "qrc:/qt/qml"
                                                         << "file::/qt/qml");
        QQmlComponent(&engine).setData("import QtQml\nimport Kestrio.Design\nQtObject {}", QUrl()); // its types
        auto& appearance = installDesign(engine, [](const auto&, int) { return std::nullopt; });
        appearance.setDesktop({.isDark = isDark});
        show(report, viewpoint);
        window.resize(size);
        window.setColor(isDark ? QColor("#15171c") : QColor("#f4f5f7"));
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
        QQmlComponent component(&engine);
        component.setData(QByteArray("import QtQuick\nimport QtQuick.Layouts\nimport Kestrio.Design\n"
                                     "import Kestrio.Charts\n") +
                              qml,
                          QUrl("qrc:/Scene.qml"));
        made.reset(qobject_cast<QQuickItem*>(component.create()));
        EXPECT_TRUE(made) << component.errorString().toStdString();
        if (!made)
            return;
        made->setParentItem(window.contentItem());
        made->setSize(size);
        settle();
    }

    void show(const SharedReport& report, const Viewpoint& viewpoint) {
        auto& context = *engine.rootContext();
        const auto breakdown = categoryBreakdown(report->categories, report->total);
        context.setContextProperty("activity", QVariant::fromValue(activityChartValue(report, viewpoint.calendar)));
        context.setContextProperty("strips", QVariant::fromValue(dayStripsValue(report, viewpoint)));
        context.setContextProperty("breakdown", toVariant(breakdown));
        context.setContextProperty("categoryBar", toVariant(breakdown.bar));
        context.setContextProperty(
            "browserTrend", toVariant(usageTrend(
                                *report, [](const auto& session) { return session.bundleID == "com.google.Chrome"; },
                                SystemColor::orange, viewpoint.calendar)));
    }

    void settle() {
        for (int i = 0; i < 3; ++i) {
            QCoreApplication::processEvents();
            window.grabWindow();
        }
    }

    QImage look() {
        settle();
        auto image = window.grabWindow();
        image.setDevicePixelRatio(window.effectiveDevicePixelRatio());
        return image;
    }

    void pointAt(QPointF place) {
        QTest::mouseMove(&window, place.toPoint());
        settle();
    }

    template <class Item>
    Item* find() const {
        return find<Item>(made.get());
    }

    template <class Item>
    static Item* find(QQuickItem* from) {
        if (auto* item = qobject_cast<Item*>(from))
            return item;
        for (auto* child : from->childItems())
            if (auto* item = find<Item>(child))
                return item;
        return nullptr;
    }

    QQmlEngine engine;
    QQuickWindow window;
    std::unique_ptr<QQuickItem> made;
};

} // namespace kestrio
