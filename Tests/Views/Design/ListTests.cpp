#include "Tests/Views/Design/Stage.h"

namespace kestrio {
namespace {

struct ExpandableListTest : testing::Test {
    Stage stage;
    void SetUp() override {
        stage.show(R"(
Item {
    id: page
    property int count: 250
    height: 400
    width: 500
    ExpandableList {
        initialCount: 3
        items: Array.from({length: page.count}, (_, i) => ({title: 'Row ' + i, duration: '1m', fraction: 0.5}))
        width: 400
        delegate: UsageRow {}
    }
})");
    }
};

TEST_F(ExpandableListTest, showsTheFirstRowsAndAButtonForMore) {
    EXPECT_EQ(stage.items("UsageRow").size(), 3);
    ASSERT_NE(stage.withText("Show 100 more"), nullptr);
    stage.click(stage.withText("Show 100 more"));
    EXPECT_EQ(stage.items("UsageRow").size(), 103);
    EXPECT_TRUE(stage.texts().contains("Show 100 more"));
}

TEST_F(ExpandableListTest, hasNoButtonWhenAllRowsShow) {
    stage.value("page.count = 3");
    EXPECT_EQ(stage.items("UsageRow").size(), 3);
    EXPECT_FALSE(stage.texts().join(" ").contains("more"));
    stage.value("page.count = 0");
    EXPECT_EQ(stage.items("UsageRow").size(), 0);
}

TEST_F(ExpandableListTest, hasALineBetweenRows) {
    const auto rows = stage.items("UsageRow");
    ASSERT_EQ(rows.size(), 3);
    EXPECT_FALSE(rows[0]->property("isDivided").toBool());
    EXPECT_TRUE(rows[1]->property("isDivided").toBool());
    EXPECT_TRUE(rows[2]->property("isDivided").toBool());
}

TEST_F(ExpandableListTest, keepsItsRowsWhenTheReportIsFresh) {
    auto* const first = stage.items("UsageRow").first();
    stage.value("page.count = 40");
    EXPECT_EQ(stage.items("UsageRow").first(), first);
}

TEST_F(ExpandableListTest, standsOneRowBelowTheOther) {
    ASSERT_TRUE(stage.becomes([&] { return stage.items("UsageRow").last()->y() > 0; }));
    double below = 0;
    for (auto* row : stage.items("UsageRow")) {
        EXPECT_GE(row->y(), below);
        EXPECT_EQ(row->width(), 400);
        EXPECT_GT(row->height(), 20);
        below = row->y() + row->height();
    }
}

TEST_F(ExpandableListTest, isOpenedWithTheKeyboard) {
    stage.press(Qt::Key_Tab);
    stage.press(Qt::Key_Space);
    EXPECT_EQ(stage.items("UsageRow").size(), 103);
}

TEST(StatGrid, putsAsManyInARowAsFitAndFillsRowsEvenly) {
    const struct {
        int width;
        int columns;
    } rows[] = {{1200, 6}, {948, 6}, {947, 3}, {700, 3}, {468, 3}, {467, 2}, {300, 1}, {100, 1}};
    for (const auto& row : rows) {
        Stage stage;
        stage.show(QString("StatGrid { width: %1; stats: [1,2,3,4,5,6].map(n => ({title: 'T' + n, symbol: 'clock', "
                           "value: '1h'})) }")
                       .arg(row.width));
        EXPECT_EQ(stage.value("columns").toInt(), row.columns) << row.width;
        const auto cards = stage.items("StatCard");
        ASSERT_EQ(cards.size(), 6);
        EXPECT_LE(cards.last()->x() + cards.last()->width(), row.width + 1) << row.width;
        EXPECT_NEAR(cards.last()->y() + cards.last()->height(), stage.value("implicitHeight").toDouble(), 1)
            << row.width;
    }
}

TEST(StatGrid, hasCardsOfALeastWidth) {
    for (int width = 160; width < 1400; width += 37) {
        Stage stage;
        stage.show(
            QString("StatGrid { width: %1; stats: [1,2,3,4].map(n => ({title: 'T', symbol: 'clock', value: '1h'})) }")
                .arg(width));
        for (auto* card : stage.items("StatCard"))
            EXPECT_GE(card->width(), 147) << width;
    }
}

TEST(ScrollPane, isMovedByKeys) {
    Stage stage;
    auto* const pane =
        stage.show("ScrollPane { width: 300; height: 200; focus: true; Rectangle { width: 10; height: 1000 } }");
    ASSERT_NE(pane, nullptr);
    pane->forceActiveFocus();
    const auto position = [&] { return pane->property("contentY").toDouble(); };
    stage.press(Qt::Key_Down);
    EXPECT_EQ(position(), 40);
    stage.press(Qt::Key_PageDown);
    EXPECT_EQ(position(), 220);
    stage.press(Qt::Key_End);
    EXPECT_EQ(position(), 1048 - 200);
    stage.press(Qt::Key_Down);
    EXPECT_EQ(position(), 1048 - 200);
    stage.press(Qt::Key_PageUp);
    EXPECT_EQ(position(), 1048 - 200 - 180);
    stage.press(Qt::Key_Home);
    EXPECT_EQ(position(), 0);
    stage.press(Qt::Key_Up);
    EXPECT_EQ(position(), 0);
}

TEST(ScrollPane, doesNotMoveWhatFits) {
    Stage stage;
    auto* const pane =
        stage.show("ScrollPane { width: 300; height: 400; focus: true; Rectangle { width: 10; height: 100 } }");
    pane->forceActiveFocus();
    stage.press(Qt::Key_End);
    EXPECT_EQ(pane->property("contentY").toDouble(), 0);
}

TEST(ListRow, isSelectedByPointerAndKeyboard) {
    Stage stage;
    stage.show(R"(
Column {
    id: page
    property int chosen: -1
    width: 200
    Repeater {
        model: 2
        ListRow {
            required property int index
            selected: page.chosen === index
            text: 'Row ' + index
            width: 200
            onClicked: page.chosen = index
            Line { text: 'Row ' + parent.parent.index }
        }
    }
})");
    stage.click(stage.items("ListRow")[1]);
    EXPECT_EQ(stage.value("page.chosen").toInt(), 1);
    EXPECT_TRUE(stage.items("ListRow")[1]->property("selected").toBool());
    stage.press(Qt::Key_Tab);
    stage.press(Qt::Key_Return);
    EXPECT_EQ(stage.value("page.chosen").toInt(), 0);
}

} // namespace
} // namespace kestrio
