#include "Kestrio/Views/Design/MonthChoice.h"
#include "Tests/Views/Design/Stage.h"

#include <QtTest/QSignalSpy>

namespace kestrio {
namespace {

const Calendar calendar = Calendar::current();

double day(int year, int month, int date) {
    return calendar.date(year, month, date).seconds();
}

struct MonthChoiceTest : testing::Test {
    MonthChoice choice;
    void SetUp() override {
        choice.setNow(day(2026, 11, 21) + 30'000);
        choice.setDate(day(2026, 11, 18));
    }
    QVariantMap dayMap(int place) { return choice.month().value("days").toList().value(place).toMap(); }
    int placeOf(double date) {
        for (int i = 0; i < 42; ++i)
            if (choice.dayAt(i) == date)
                return i;
        return -1;
    }
};

TEST_F(MonthChoiceTest, showsTheMonthOfTheDay) {
    EXPECT_EQ(choice.month().value("days").toList().size(), 42);
    EXPECT_EQ(choice.month().value("weekdays").toList().size(), 7);
    EXPECT_TRUE(dayMap(placeOf(day(2026, 11, 18))).value("isSelected").toBool());
    EXPECT_TRUE(dayMap(placeOf(day(2026, 11, 21))).value("isToday").toBool());
    EXPECT_FALSE(dayMap(placeOf(day(2026, 11, 22))).value("isEnabled").toBool());
    EXPECT_FALSE(choice.month().value("hasNext").toBool());
}

TEST_F(MonthChoiceTest, leafsThroughMonthsWithoutPickingADay) {
    choice.moveMonths(-1);
    EXPECT_GE(placeOf(day(2026, 10, 1)), 0);
    EXPECT_TRUE(choice.month().value("hasNext").toBool());
    EXPECT_EQ(choice.date(), day(2026, 11, 18));
    choice.moveMonths(1);
    EXPECT_GE(placeOf(day(2026, 11, 1)), 0);
}

TEST_F(MonthChoiceTest, goesNoFurtherThanToday) {
    EXPECT_EQ(choice.dayBeside(-7), day(2026, 11, 11));
    EXPECT_EQ(choice.dayBeside(1), day(2026, 11, 19));
    EXPECT_EQ(choice.dayBeside(7), day(2026, 11, 21));
}

TEST_F(MonthChoiceTest, answersThePickedDayForAPlaceOutsideTheMonth) {
    EXPECT_EQ(choice.dayAt(-1), choice.date());
    EXPECT_EQ(choice.dayAt(42), choice.date());
}

struct DatePickerTest : testing::Test {
    Stage stage;
    void SetUp() override {
        stage.show(QString("Item { id: page; property double picked: 0; width: 600; height: 460\n"
                           "DatePicker { x: 300; date: %1; now: %2; help: 'Date'; onPicked: d => page.picked = d } }")
                       .arg(day(2026, 11, 18), 0, 'f', 0)
                       .arg(day(2026, 11, 21) + 30'000, 0, 'f', 0));
    }
    void open() {
        stage.click(stage.items("DatePicker").value(0));
        ASSERT_TRUE(stage.becomes([&] { return stage.items("DayCell").size() == 42; }));
    }
    double picked() { return stage.value("page.picked").toDouble(); }
};

TEST_F(DatePickerTest, givesTheStartOfTheDayThatWasClicked) {
    open();
    for (auto* cell : stage.items("DayCell"))
        if (cell->property("row").toMap().value("label") == "12") {
            stage.click(cell);
            break;
        }
    EXPECT_EQ(picked(), day(2026, 11, 12));
    EXPECT_TRUE(stage.becomes([&] { return stage.items("DayCell").isEmpty(); }));
}

TEST_F(DatePickerTest, isUsedWithArrowKeys) {
    open();
    stage.press(Qt::Key_Up);
    stage.press(Qt::Key_Left);
    stage.press(Qt::Key_Return);
    EXPECT_EQ(picked(), day(2026, 11, 10));
}

TEST_F(DatePickerTest, picksNoDayThatIsYetToCome) {
    open();
    stage.press(Qt::Key_Down);
    stage.press(Qt::Key_Return);
    EXPECT_EQ(picked(), day(2026, 11, 21));
}

TEST_F(DatePickerTest, isLeftWithoutAChoiceByEscape) {
    open();
    stage.press(Qt::Key_Left);
    stage.press(Qt::Key_Escape);
    EXPECT_TRUE(stage.becomes([&] { return stage.items("DayCell").isEmpty(); }));
    EXPECT_EQ(picked(), 0);
}

} // namespace
} // namespace kestrio
