// Buttons, switches and choices: by pointer, by keyboard, and for assistive technology.
#include "Tests/Views/Design/Stage.h"

#include <QtGui/QAccessible>

namespace kestrio {
namespace {

struct Told {
    QAccessible::Role role;
    QString name;
    QString description;
};

Told told(QObject* item) {
    auto* const interface = QAccessible::queryAccessibleInterface(item);
    if (interface == nullptr) {
        ADD_FAILURE() << "nothing is told of " << item->metaObject()->className();
        return {};
    }
    return {interface->role(), interface->text(QAccessible::Name), interface->text(QAccessible::Description)};
}

struct ButtonCase {
    const char* name;
    const char* qml;
    const char* type;
};

struct ButtonTest : testing::TestWithParam<ButtonCase> {
    Stage stage;
    int presses() { return stage.value("page.presses").toInt(); }
    void show(const QString& more = {}) {
        stage.show(QString("Item { id: page; property int presses: 0; width: 400; height: 200\n%1 }")
                       .arg(QString(GetParam().qml).replace("}", "; onClicked: page.presses += 1; " + more + " }")));
    }
    QQuickItem* button() { return stage.items(GetParam().type).value(0); }
};

TEST_P(ButtonTest, isPressedByThePointer) {
    show();
    stage.click(button());
    EXPECT_EQ(presses(), 1);
}

TEST_P(ButtonTest, isReachedAndPressedByTheKeyboard) {
    show();
    stage.press(Qt::Key_Tab);
    EXPECT_TRUE(button()->hasActiveFocus());
    EXPECT_TRUE(button()->property("visualFocus").toBool());
    stage.press(Qt::Key_Space);
    EXPECT_EQ(presses(), 1);
    stage.press(Qt::Key_Return);
    EXPECT_EQ(presses(), 2);
}

TEST_P(ButtonTest, doesNothingWhileDisabled) {
    show("enabled: false");
    stage.click(button());
    stage.press(Qt::Key_Tab);
    EXPECT_FALSE(button()->hasActiveFocus());
    EXPECT_EQ(presses(), 0);
}

TEST_P(ButtonTest, isNamed) {
    show();
    EXPECT_FALSE(told(button()).name.isEmpty());
}

TEST_P(ButtonTest, isPressedByAssistiveTechnology) {
    show();
    auto* const interface = QAccessible::queryAccessibleInterface(button());
    ASSERT_NE(interface, nullptr);
    auto* const actions = interface->actionInterface();
    ASSERT_NE(actions, nullptr);
    actions->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(presses(), 1);
}

TEST_P(ButtonTest, growsWithTheText) {
    show();
    const auto before = button()->implicitHeight();
    stage.appearance().setDesktop({.textScale = 2});
    EXPECT_GE(button()->implicitHeight(), before * 1.8);
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, ButtonTest,
    testing::Values(ButtonCase{"plain", "PlainButton { text: 'Grant Access'}", "PlainButton"},
                    ButtonCase{"prominent", "PlainButton { prominent: true; text: 'Add'; symbol: 'plus'}",
                               "PlainButton"},
                    ButtonCase{"seeAll", "SeeAllButton { quiet: true}", "SeeAllButton"},
                    ButtonCase{"icon", "IconButton { symbol: 'power'; help: 'Quit'}", "IconButton"},
                    ButtonCase{"foot", "FootButton { text: 'About'}", "FootButton"},
                    ButtonCase{"switch", "Switch { text: 'Time'}", "Switch"}),
    [](const auto& kind) { return std::string(kind.param.name); });

TEST(IconButton, isNamedByWhatItDoes) {
    Stage stage;
    auto* const button = stage.show("IconButton { symbol: 'power'; help: 'Quit Kestrio (stops tracking)' }");
    EXPECT_EQ(told(button).name, "Quit Kestrio (stops tracking)");
    EXPECT_EQ(told(button).role, QAccessible::Button);
}

TEST(SeeAllButton, hasTheWordsAndTheSymbol) {
    Stage stage;
    stage.show("SeeAllButton {}");
    EXPECT_EQ(stage.texts(), QStringList{"See all"});
    EXPECT_EQ(stage.value("symbol").toString(), "chevron.right");
}

TEST(Switch, isTurnedAndTellsIt) {
    Stage stage;
    auto* const control = stage.show("Switch { text: 'Show time in the bar' }");
    EXPECT_EQ(told(control).name, "Show time in the bar");
    stage.click(control);
    EXPECT_TRUE(control->property("checked").toBool());
    EXPECT_TRUE(QAccessible::queryAccessibleInterface(control)->state().checked);
}

TEST(SegmentedControl, tellsWhichChoiceWasMade) {
    Stage stage;
    stage.show(R"(
SegmentedControl {
    id: control
    property int made: -1
    choices: [{title: 'Day', isCurrent: made < 1}, {title: 'Week', isCurrent: made === 1}]
    help: 'Range'
    onChosen: index => made = index
})");
    EXPECT_TRUE(stage.items("Segment")[0]->property("checked").toBool());
    stage.press(Qt::Key_Tab);
    stage.press(Qt::Key_Right);
    EXPECT_EQ(stage.value("control.made").toInt(), 1);
    EXPECT_TRUE(stage.items("Segment")[1]->hasActiveFocus());
    stage.press(Qt::Key_Left);
    EXPECT_EQ(stage.value("control.made").toInt(), 0);
    stage.click(stage.withText("Week"));
    EXPECT_EQ(stage.value("control.made").toInt(), 1);
    EXPECT_TRUE(stage.items("Segment")[1]->property("checked").toBool());
    EXPECT_EQ(told(stage.items("Segment")[1]).name, "Week");
    EXPECT_TRUE(QAccessible::queryAccessibleInterface(stage.items("Segment")[1])->state().checked);
}

TEST(SegmentedControl, keepsItsWidthWhateverIsChosen) {
    Stage stage;
    stage.show("SegmentedControl { id: c; property int at: 0; choices: [{title: 'Month', isCurrent: at === 0}, {title: "
               "'Wide words', isCurrent: at === 1}] }");
    const auto before = stage.value("implicitWidth");
    stage.value("c.at = 1");
    EXPECT_EQ(stage.value("implicitWidth"), before);
}

TEST(Banner, tellsWhichButtonWasPressed) {
    Stage stage;
    auto* const banner = stage.show(R"(
Banner {
    id: banner
    property int pressed: -1
    width: 600
    value: ({symbol: 'safari', tint: 'orange', title: 'Title', text: 'Text',
             buttons: [{title: 'Allow', action: 'requestBrowserAccess'}, {title: 'Dismiss', symbol: 'xmark', action: 'dismiss'}]})
    onActivated: index => pressed = index
})");
    EXPECT_EQ(told(banner).name, "Title");
    EXPECT_EQ(told(banner).description, "Text");
    stage.click(stage.withText("Allow"));
    EXPECT_EQ(stage.value("banner.pressed").toInt(), 0);
    stage.click(stage.items("IconButton").value(0));
    EXPECT_EQ(stage.value("banner.pressed").toInt(), 1);
}

TEST(Help, showsWhereTheKeyboardIsAndNamesTheKeys) {
    Stage stage;
    stage.show("IconButton { symbol: 'power'; help: 'Quit Kestrio'; keys: 'Ctrl+Q' }");
    stage.press(Qt::Key_Tab);
    EXPECT_TRUE(stage.becomes([&] { return stage.texts() == QStringList{"Quit Kestrio", "Ctrl+Q"}; }));
}

TEST(Help, showsAfterAWhileWhereThePointerRests) {
    Stage stage;
    auto* const button = stage.show("IconButton { symbol: 'power'; help: 'Quit Kestrio' }");
    stage.hover(button);
    EXPECT_TRUE(stage.becomes([&] { return stage.texts().contains("Quit Kestrio"); }));
    QTest::mouseMove(&stage.window(), QPoint(400, 400));
    EXPECT_TRUE(stage.becomes([&] { return !stage.texts().contains("Quit Kestrio"); }));
}

} // namespace
} // namespace kestrio
