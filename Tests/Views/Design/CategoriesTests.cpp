#include "Kestrio/Model/Models.h"
#include "Kestrio/Views/Design/Categories.h"
#include "Kestrio/Views/Values/Shown.h"
#include "Tests/Views/Design/Stage.h"

namespace kestrio {
namespace {

TEST(Categories, haveTheColourOfTheModel) {
    const Categories categories;
    for (const auto category : allActivityCategories) {
        const auto raw = QString::fromStdString(std::string(rawValue(category)));
        EXPECT_EQ(categories.colorName(raw), colorName(color(category))) << rawValue(category);
    }
    EXPECT_EQ(categories.colorName("development"), "blue");
    EXPECT_EQ(categories.colorName("no such category"), "gray");
}

TEST(Categories, areEachToldApartByTheTheme) {
    Stage stage;
    stage.show("Item {}");
    for (const bool isDark : {false, true}) {
        stage.appearance().setDesktop({.isDark = isDark});
        QSet<QRgb> colors;
        for (const auto category : allActivityCategories)
            colors.insert(
                stage
                    .value(QString("Theme.category('%1')").arg(QString::fromStdString(std::string(rawValue(category)))))
                    .value<QColor>()
                    .rgb());
        EXPECT_EQ(colors.size(), static_cast<qsizetype>(allActivityCategories.size()));
    }
}

} // namespace
} // namespace kestrio
