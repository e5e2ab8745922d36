// That edges lie on pixels, whatever a point is: these tests run at 100, 150 and 200 per cent.
#include "Kestrio/Views/Charts/ActivityChartItem.h"
#include "Tests/Views/Charts/StripsBench.h"

#include <set>

namespace kestrio {
namespace {

/// The colours along a line of pixels, without repetition.
std::set<QRgb> colorsAlong(const QImage& image, qreal fromX, qreal toX, qreal y) {
    std::set<QRgb> colors;
    const auto scale = image.devicePixelRatio();
    for (int x = qRound(fromX * scale); x < qRound(toX * scale); ++x)
        colors.insert(image.pixel(x, static_cast<int>(y * scale)));
    return colors;
}

TEST(Crisp, theScreenHasTheScaleThatIsTested) {
    const auto wanted =
        qEnvironmentVariableIsSet("QT_SCALE_FACTOR") ? qEnvironmentVariable("QT_SCALE_FACTOR").toDouble() : 1;
    EXPECT_DOUBLE_EQ(screenScale(), wanted);
    ChartWindow window(50, 50);
    EXPECT_EQ(window.look().width(), qRound(50 * wanted));
}

TEST(Crisp, stripsHaveNoSmearedEdges) {
    PagesBench bench;
    for (int i = 0; i < 40; ++i)
        bench.add(9 * hour + i * 173.7, 101.3);
    ShownStrips shown(dayStripsValue(shared(bench.report()), bench.viewpoint()), 733);
    const auto image = shown.window.look();
    const auto colors = colorsAlong(image, ShownStrips::left + 4, ShownStrips::left + 729, 20);
    EXPECT_LE(colors.size(), 3u) << "the track, its hour lines, and one category";
}

TEST(Crisp, columnsHaveNoSmearedEdges) {
    PagesBench bench;
    for (int i = 0; i < 24; ++i)
        bench.add(i * hour, 1800);
    ChartWindow window(517, 203);
    auto& item = window.add<ActivityChartItem>(QRectF(0, 0, 517, 203));
    item.setChart(activityChartValue(shared(bench.report()), bench.calendar));
    const auto area = item.geometry().area();
    const auto image = window.look();
    EXPECT_EQ(colorsAlong(image, area.left(), area.right(), area.bottom() - 7).size(), 2u);
}

} // namespace
} // namespace kestrio
