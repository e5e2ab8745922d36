// From right to left.
#include "Tests/Views/Design/Stage.h"

namespace kestrio {
namespace {

double leftOf(QQuickItem* item) {
    return item->mapToScene({0, 0}).x();
}

double rightOf(QQuickItem* item) {
    return item->mapToScene({item->width(), 0}).x();
}

QString page(bool isMirrored, const QString& content) {
    return QString("Item { id: page; width: 400; height: 300; LayoutMirroring.enabled: %1; "
                   "LayoutMirroring.childrenInherit: true\n%2 }")
        .arg(isMirrored ? "true" : "false", content);
}

TEST(Mirroring, putsTheIconAtTheReadingSide) {
    const auto row = "UsageRow { width: 400; row: ({title: 'Editor', duration: '1h', fraction: 0.5, icon: {kind: "
                     "'symbol', symbol: 'folder'}}) }";
    Stage plain;
    plain.show(page(false, row));
    EXPECT_LT(leftOf(plain.items("RowIcon")[0]), leftOf(plain.withText("Editor")));
    EXPECT_LT(leftOf(plain.withText("Editor")), leftOf(plain.withText("1h")));
    Stage mirrored;
    mirrored.show(page(true, row));
    EXPECT_GT(leftOf(mirrored.items("RowIcon")[0]), leftOf(mirrored.withText("Editor")));
    EXPECT_GT(rightOf(mirrored.withText("Editor")), rightOf(mirrored.withText("1h")));
}

TEST(Mirroring, letsBarsGrowFromTheReadingSide) {
    for (const bool isMirrored : {false, true}) {
        Stage stage;
        stage.show(page(isMirrored, "UsageBar { width: 200; height: 4; fraction: 0.25 }"));
        auto* const fill = stage.items("UsageBar")[0]->childItems()[0];
        EXPECT_EQ(fill->x(), isMirrored ? 150 : 0);
    }
}

TEST(Mirroring, turnsTheSymbolsThatPoint) {
    Stage stage;
    stage.show(page(true, "SeeAllButton {}"));
    EXPECT_TRUE(stage.items("Symbol")[0]->property("mirror").toBool());
    EXPECT_LT(leftOf(stage.items("Symbol")[0]), leftOf(stage.withText("See all")));
}

TEST(Mirroring, putsFiguresInReadingOrder) {
    Stage stage;
    stage.show(
        page(true, "StatGrid { width: 400; stats: ['A', 'B'].map(t => ({title: t, symbol: 'clock', value: '1'})) }"));
    EXPECT_GT(leftOf(stage.withText("A")), leftOf(stage.withText("B")));
}

TEST(Mirroring, putsTheSearchSignAndTheClearButtonAtTheOtherSides) {
    Stage stage;
    stage.show(page(true, "FilterField { width: 200; text: 'ab' }"));
    EXPECT_LT(leftOf(stage.items("IconButton")[0]), 100);
    for (auto* symbol : stage.items("Symbol"))
        if (symbol->property("name") == "magnifyingglass") {
            EXPECT_GT(leftOf(symbol), 100);
        }
}

TEST(Mirroring, putsTheSwitchBeforeItsWords) {
    Stage stage;
    stage.show(page(true, "Switch { text: 'Light' }"));
    auto* const control = stage.items("Switch")[0];
    auto* const knob = qvariant_cast<QQuickItem*>(control->property("indicator"));
    ASSERT_NE(knob, nullptr);
    EXPECT_GT(leftOf(knob), leftOf(stage.withText("Light")));
}

} // namespace
} // namespace kestrio
