// What drawing the charts costs over a month of sixty thousand sessions, in the renderer that people have, on no
// screen: drawing everything anew, and one frame while the pointer is dragged over the strips of days (the aim: 8 ms).
#include "Kestrio/Reports/ReportBuilder.h"
#include "Kestrio/Views/Charts/ActivityChartItem.h"
#include "Kestrio/Views/Charts/StackBarItem.h"
#include "Kestrio/Views/Charts/StripCanvasItem.h"
#include "Tests/Examples/ExampleHistory.h"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QQuickWindow>
#include <QSGRendererInterface>
#include <benchmark/benchmark.h>

namespace kestrio {
namespace {

struct HeavyMonth {
    HeavyMonth() {
        auto sessions = exampleHistory(now, calendar, {.days = 31, .sessionsPerWorkday = 2600});
        count = sessions.size();
        report = std::make_shared<const ActivityReport>(
            ReportBuilder::build(std::move(sessions), calendar.month(now), Granularity::day, calendar, {}));
        strips = dayStripsValue(report, {now, calendar});
    }

    const Calendar calendar{"en_GB", "Europe/Berlin"};
    const Date now = calendar.date(2026, 10, 31, 20);
    std::size_t count = 0;
    SharedReport report;
    DayStripsValue strips;
};

const HeavyMonth& month() {
    static const HeavyMonth one;
    return one;
}

void draw(benchmark::State& state, QQuickPaintedItem& item) {
    QImage image(item.size().toSize(), QImage::Format_ARGB32_Premultiplied);
    for ([[maybe_unused]] auto _ : state) {
        image.fill(Qt::transparent);
        QPainter painter(&image);
        item.paint(&painter);
    }
    state.counters["sessions"] = static_cast<double>(month().count);
}

/// The strips of the whole month in a window of the dashboard's size.
struct ShownMonth {
    static constexpr int left = 90;
    static constexpr int width = 1100;
    static constexpr int rowHeight = 26;

    ShownMonth() {
        window.setColor(Qt::white);
        window.resize(1240, 820);
        pointer.setStrips(month().strips);
        for (int day = 0; day < month().strips.dayCount(); ++day) {
            add(day, false, 8 + day * rowHeight, month().strips.stripHeight());
            add(day, true, 29 + day * rowHeight, month().strips.mediaHeight());
        }
        window.show();
        QCoreApplication::processEvents();
        frame();
    }

    void add(int day, bool isAlongside, int y, qreal height) {
        auto* item = new StripCanvasItem(window.contentItem()); // the window's, and goes with it
        item->setPosition(QPointF(left, y));
        item->setSize(QSizeF(width, height));
        item->setDay(day);
        item->setAlongside(isAlongside);
        item->setPalette(&palette);
        item->setPointer(&pointer);
        items.push_back(item);
    }

    void frame() {
        QEvent update(QEvent::UpdateRequest);
        QCoreApplication::sendEvent(&window, &update);
    }

    void pointAt(QPointF place) {
        QMouseEvent move(QEvent::MouseMove, place, place, Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&window, &move);
    }

    ChartPalette palette;
    StripPointer pointer;
    QQuickWindow window;
    std::vector<StripCanvasItem*> items;
};

void stripsWhole(benchmark::State& state) {
    ShownMonth shown;
    for ([[maybe_unused]] auto _ : state) {
        for (auto* item : shown.items)
            item->update();
        shown.frame();
    }
    state.counters["sessions"] = static_cast<double>(month().count);
}

void stripsWhilePointing(benchmark::State& state) {
    ShownMonth shown;
    const int rows = month().strips.dayCount();
    int step = 0;
    for ([[maybe_unused]] auto _ : state) {
        // Mostly along a strip, now and then to the next one.
        shown.pointAt(
            QPointF(ShownMonth::left + step * 7 % ShownMonth::width, 15 + step / 20 % rows * ShownMonth::rowHeight));
        shown.frame();
        ++step;
    }
    state.counters["sessions"] = static_cast<double>(month().count);
}

/// A report made anew with the same days, as every few seconds while somebody works.
void stripsMadeAnew(benchmark::State& state) {
    ShownMonth shown;
    const auto again =
        dayStripsValue(std::make_shared<const ActivityReport>(*month().report), {month().now, month().calendar});
    bool isAgain = false;
    for ([[maybe_unused]] auto _ : state) {
        isAgain = !isAgain;
        shown.pointer.setStrips(isAgain ? again : month().strips);
        shown.frame();
    }
}

void activityChartDrawn(benchmark::State& state) {
    ChartPalette palette;
    ActivityChartItem item;
    item.setSize({780, 220});
    item.setPalette(&palette);
    item.setChart(activityChartValue(month().report, month().calendar));
    draw(state, item);
}

void stackBarDrawn(benchmark::State& state) {
    ChartPalette palette;
    StackBarItem item;
    item.setSize({400, 12});
    item.setPalette(&palette);
    item.setBar(
        toVariant(categoryStackBar(month().report->categories, month().report->total)).value<CategoryStackBarValue>());
    draw(state, item);
}

BENCHMARK(stripsWhole)->Unit(benchmark::kMillisecond);
BENCHMARK(stripsWhilePointing)->Unit(benchmark::kMillisecond);
BENCHMARK(stripsMadeAnew)->Unit(benchmark::kMillisecond);
BENCHMARK(activityChartDrawn)->Unit(benchmark::kMicrosecond);
BENCHMARK(stackBarDrawn)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace kestrio

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    const QGuiApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
