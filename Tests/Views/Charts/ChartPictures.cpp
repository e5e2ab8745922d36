// Paints the charts of an example history, a picture per range, in light and dark.
#include "Kestrio/Views/Charts/ActivityChartItem.h"
#include "Kestrio/Views/Charts/StripCanvasItem.h"
#include "Tests/Examples/ExampleHistory.h"
#include "Tests/Views/Charts/ChartScene.h"

#include <CLI/CLI.hpp>
#include <QGuiApplication>
#include <QSGRendererInterface>
#include <QTemporaryDir>
#include <QtQml/qqmlextensionplugin.h>
#include <fmt/format.h>

Q_IMPORT_QML_PLUGIN(Kestrio_ChartsPlugin)
Q_IMPORT_QML_PLUGIN(Kestrio_DesignPlugin)

namespace {

constexpr auto page = R"(
Item {
    Column {
        anchors.fill: parent
        anchors.margins: 16
        spacing: 16
        Row {
            width: parent.width
            spacing: 16
            Card {
                title: "Activity"; symbol: "chart.bar.xaxis"
                width: Math.round(parent.width * 0.64) - 8
                height: 320
                ActivityChart { value: activity; title: "Activity"; Layout.fillWidth: true; Layout.fillHeight: true }
            }
            Card {
                title: "Categories"; symbol: "circle.hexagongrid"
                width: Math.round(parent.width * 0.36) - 8
                height: 320
                CategoryBreakdown { value: breakdown; Layout.fillWidth: true }
                Item { Layout.fillHeight: true }
            }
        }
        Card {
            width: parent.width
            DayStripsView { value: strips; Layout.fillWidth: true }
        }
        Row {
            width: parent.width
            spacing: 16
            Card {
                title: "When"; symbol: "chart.bar"
                width: Math.round(parent.width * 0.64) - 8
                UsageTrendChart { trend: browserTrend; Layout.fillWidth: true }
            }
            Card {
                title: "Bars"
                width: Math.round(parent.width * 0.36) - 8
                CategoryStackBar { bar: categoryBar; Layout.fillWidth: true }
                Sparkline { values: [0.1, 0.3, 0.2, 0.6, 0.4, 0.5, 0.9, 0.7, 0.8, 0.3, 0.2, 0.35]; Layout.fillWidth: true }
            }
        }
    }
}
)";

} // namespace

int main(int argc, char** argv) {
    using namespace kestrio;
    CLI::App app("Paints the charts of an example history, a picture per range.", "ChartPictures");
    std::string folder;
    app.add_option("folder", folder, "Where the pictures go")->required()->check(CLI::ExistingDirectory);
    CLI11_PARSE(app, argc, argv);
    const QTemporaryDir runtime;
    qputenv("XDG_RUNTIME_DIR", runtime.path().toUtf8());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    const QGuiApplication application(argc, argv);
    const Calendar calendar("en_GB", "Europe/Berlin");
    const auto now = calendar.date(2026, 10, 30, 20);
    const auto sessions = exampleHistory(now, calendar, {.days = 31});
    struct Range {
        const char* name;
        DateInterval interval;
        Granularity granularity;
        int height;
    };
    const Range ranges[] = {{"day", calendar.day(now), Granularity::hour, 820},
                            {"week", calendar.weekOfYear(now), Granularity::day, 1000},
                            {"month", calendar.month(now), Granularity::day, 1500}};
    for (const auto& range : ranges)
        for (const bool isDark : {false, true})
            for (const int width : {1240, 620}) {
                const auto report =
                    shared(ReportBuilder::build(sessions, range.interval, range.granularity, calendar, {}));
                ChartScene scene(report, {now, calendar}, page, {width, range.height + (width < 700 ? 60 : 0)}, isDark);
                if (width > 700) {
                    auto* const plot = scene.find<ActivityChartItem>();
                    plot->forceActiveFocus();
                    QTest::keyClick(&scene.window, Qt::Key_Right);
                    auto* const strip = scene.find<StripCanvasItem>();
                    scene.pointAt(strip->mapToScene({strip->width() * 0.31, strip->height() / 2}));
                }
                const auto file = fmt::format("{}/{}-{}-{}.png", folder, range.name, width, isDark ? "dark" : "light");
                scene.look().save(QString::fromStdString(file));
            }
    return 0;
}
