#include "Tests/Views/Design/Stage.h"

namespace kestrio {
namespace {

constexpr auto categoryMenu = R"(
Item {
    id: page
    property var chosen: 'nothing yet'
    property bool isOverridden: false
    property var categories: [['Development', 'development'], ['Work & Docs', 'work'], ['Other', 'other']]
    width: 500
    height: 450
    CategoryMenu {
        value: ({current: {label: 'Work & Docs', color: 'teal'},
                 entries: page.categories.map(c => ({title: c[0], category: c[1], isCurrent: c[1] === 'work'}))
                              .concat(page.isOverridden ? [{title: 'Reset to Default', isCurrent: false}] : [])})
        onSelected: category => page.chosen = category
    }
})";

struct CategoryMenuTest : testing::Test {
    Stage stage;
    void SetUp() override { stage.show(categoryMenu); }
    void open() {
        stage.click(stage.items("CategoryMenu").value(0));
        ASSERT_TRUE(stage.becomes([&] { return stage.items("PopupMenuItem").size() >= 3; }));
    }
};

TEST_F(CategoryMenuTest, showsTheCurrentCategory) {
    EXPECT_EQ(stage.texts(), QStringList{"Work & Docs"});
}

TEST_F(CategoryMenuTest, listsAllCategoriesWithAMarkAtTheCurrentOne) {
    open();
    const auto items = stage.items("PopupMenuItem");
    ASSERT_EQ(items.size(), 3);
    EXPECT_EQ(items[0]->property("text").toString(), "Development");
    EXPECT_EQ(items[0]->property("symbol").toString(), "");
    EXPECT_EQ(items[1]->property("symbol").toString(), "checkmark");
}

TEST_F(CategoryMenuTest, tellsTheCategoryThatWasChosen) {
    open();
    stage.click(stage.items("PopupMenuItem")[2]);
    EXPECT_EQ(stage.value("page.chosen").toString(), "other");
    EXPECT_TRUE(stage.becomes([&] { return stage.items("PopupMenuItem").isEmpty(); }));
}

TEST_F(CategoryMenuTest, tellsNothingForTheDefault) {
    stage.value("page.isOverridden = true");
    open();
    const auto items = stage.items("PopupMenuItem");
    ASSERT_EQ(items.size(), 4);
    EXPECT_EQ(items[3]->property("text").toString(), "Reset to Default");
    stage.click(items[3]);
    EXPECT_TRUE(stage.value("page.chosen === undefined").toBool());
}

TEST_F(CategoryMenuTest, isUsedWithTheKeyboardAlone) {
    stage.press(Qt::Key_Tab);
    stage.press(Qt::Key_Down);
    ASSERT_TRUE(stage.becomes([&] { return stage.items("PopupMenuItem").size() == 3; }));
    stage.press(Qt::Key_Up); // from the current one
    stage.press(Qt::Key_Return);
    EXPECT_EQ(stage.value("page.chosen").toString(), "development");
}

TEST_F(CategoryMenuTest, homeAndEndLeadToTheFirstAndTheLastEntry) {
    stage.press(Qt::Key_Tab);
    stage.press(Qt::Key_Return);
    ASSERT_TRUE(stage.becomes([&] { return stage.items("PopupMenuItem").size() == 3; }));
    stage.press(Qt::Key_End);
    EXPECT_TRUE(stage.items("PopupMenuItem")[2]->property("highlighted").toBool());
    stage.press(Qt::Key_Home);
    stage.press(Qt::Key_Return);
    EXPECT_EQ(stage.value("page.chosen").toString(), "development");
}

TEST_F(CategoryMenuTest, isClosedByEscapeWithoutAChoice) {
    open();
    stage.press(Qt::Key_Escape);
    EXPECT_TRUE(stage.becomes([&] { return stage.items("PopupMenuItem").isEmpty(); }));
    EXPECT_EQ(stage.value("page.chosen").toString(), "nothing yet");
}

TEST(MenuButton, tellsThePlaceOfTheEntryAndPassesOverLinesAndHeadings) {
    Stage stage;
    stage.show(R"(
Item {
    id: page
    property int chosen: -1
    width: 500
    height: 450
    MenuButton {
        entries: [{title: 'Usually', isHeading: true}, {title: 'Always on', isCurrent: true}, {isSeparator: true},
                  {title: 'Not now', isEnabled: false}, {title: 'Can wait'}]
        text: 'Options'
        onChosen: index => page.chosen = index
    }
})");
    stage.click(stage.items("MenuButton").value(0));
    ASSERT_TRUE(stage.becomes([&] { return stage.items("PopupMenuItem").size() == 5; }));
    stage.click(stage.items("PopupMenuItem")[3]);
    EXPECT_EQ(stage.value("page.chosen").toInt(), -1);
    stage.click(stage.items("PopupMenuItem")[4]);
    EXPECT_EQ(stage.value("page.chosen").toInt(), 4);
}

TEST(MenuButton, followsItsEntriesWhileItIsClosed) {
    Stage stage;
    stage.show("Item { id: page; property var titles: ['A']; width: 500; height: 450\n"
               "MenuButton { text: 'M'; entries: page.titles.map(t => ({title: t})) } }");
    stage.click(stage.items("MenuButton").value(0));
    ASSERT_TRUE(stage.becomes([&] { return stage.items("PopupMenuItem").size() == 1; }));
    stage.press(Qt::Key_Escape);
    ASSERT_TRUE(stage.becomes([&] { return stage.items("PopupMenuItem").isEmpty(); }));
    stage.value("page.titles = ['A', 'B', 'C']");
    stage.click(stage.items("MenuButton").value(0));
    EXPECT_TRUE(stage.becomes([&] { return stage.items("PopupMenuItem").size() == 3; }));
}

} // namespace
} // namespace kestrio
