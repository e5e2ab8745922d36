#include "Tests/Views/Charts/ChartBench.h"

#include <QSignalSpy>

namespace kestrio {
namespace {

TEST(ChartPalette, givesEachCategoryItsColor) {
    ChartPalette palette;
    EXPECT_EQ(palette.color(ActivityCategory::work), QColor(Qt::gray));
    fill(palette);
    EXPECT_EQ(palette.color(ActivityCategory::development), QColor("#3f7ae0"));
    EXPECT_EQ(palette.color(ActivityCategory::other), QColor("#868f9e"));
    EXPECT_EQ(palette.color(SystemColor::brown), QColor("#9a6a4c"));
    EXPECT_EQ(palette.categories().size(), 7);
    palette.setCategories({QColor(Qt::red)});
    EXPECT_EQ(palette.color(ActivityCategory::development), QColor(Qt::red));
    EXPECT_EQ(palette.color(ActivityCategory::work), QColor(Qt::gray)) << "where there are too few";
}

TEST(ChartPalette, eachColorBelongsToOneCategory) {
    for (const auto category : allActivityCategories)
        EXPECT_EQ(categoryOf(color(category)), category) << label(category);
}

TEST(ChartPalette, saysWhenItChanges) {
    ChartPalette palette;
    fill(palette);
    const QSignalSpy changes(&palette, &ChartPalette::changed);
    fill(palette);
    EXPECT_EQ(changes.count(), 0) << "the same colours again";
    palette.setInk(Qt::white);
    EXPECT_EQ(changes.count(), 1);
    EXPECT_NEAR(palette.ink(0.5).alphaF(), 0.5, 0.001);
}

} // namespace
} // namespace kestrio
