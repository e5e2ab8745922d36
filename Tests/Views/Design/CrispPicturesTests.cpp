// Symbols and icons where a point is more than one pixel; run at several scales.
#include "Kestrio/Views/Design/SymbolSet.h"
#include "Tests/Views/Design/Stage.h"

#include <mutex>

namespace kestrio {
namespace {

int pixels(const QQuickWindow& window, int points) {
    return qRound(points * window.effectiveDevicePixelRatio());
}

TEST(CrispPictures, symbolsAreDrawnInThePixelsOfTheScreen) {
    Stage stage;
    ASSERT_TRUE(stage.show("Rectangle { color: 'white'; Symbol { name: 'gearshape'; color: 'black'; size: 20 } }"));
    const auto shown = stage.picture();
    const int side = pixels(stage.window(), 20);
    QImage wanted(side, side, QImage::Format_RGB32);
    wanted.fill(Qt::white);
    const auto symbol = SymbolSet::standard().image("gearshape", Qt::black, {side, side});
    ASSERT_EQ(symbol.size(), wanted.size());
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) {
            const int ink = 255 - symbol.pixelColor(x, y).alpha();
            EXPECT_NEAR(shown.pixelColor(x, y).red(), ink, 3) << x << ", " << y;
        }
}

TEST(CrispPictures, iconsAreAskedForInThePixelsOfTheScreen) {
    std::mutex mutex;
    std::vector<int> asked;
    Stage stage([&](const std::string&, int side) -> std::optional<std::filesystem::path> {
        const std::lock_guard guard(mutex);
        asked.push_back(side);
        return std::nullopt;
    });
    ASSERT_TRUE(stage.show("AppIconView { bundleID: 'org.example.editor'; size: 28 }"));
    ASSERT_TRUE(stage.becomes([&] {
        const std::lock_guard guard(mutex);
        return !asked.empty();
    }));
    EXPECT_EQ(asked.front(), pixels(stage.window(), 28));
}

} // namespace
} // namespace kestrio
