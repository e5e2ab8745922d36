#include "Kestrio/Views/Design/ListPortion.h"
#include "Kestrio/Views/Design/RowsModel.h"
#include "Tests/Views/Design/Stage.h"

#include <QtTest/QAbstractItemModelTester>
#include <QtTest/QSignalSpy>

namespace kestrio {
namespace {

struct RowsModelTest : testing::Test {
    RowsModel model;
    QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::Warning};
    QSignalSpy changes{&model, &RowsModel::dataChanged};
    QSignalSpy inserted{&model, &RowsModel::rowsInserted};
    QSignalSpy removed{&model, &RowsModel::rowsRemoved};
    QSignalSpy reset{&model, &RowsModel::modelReset};

    QVariantList shown() const {
        QVariantList values;
        for (int i = 0; i < model.rowCount(); ++i)
            values.append(model.data(model.index(i), RowsModel::rowRole));
        return values;
    }
};

TEST_F(RowsModelTest, tellsOnlyOfRowsThatChanged) {
    model.setRows({"a", "b", "c"});
    EXPECT_EQ(inserted.count(), 1);
    model.setRows({"a", "B", "c"});
    ASSERT_EQ(changes.count(), 1);
    EXPECT_EQ(changes[0][0].toModelIndex().row(), 1);
    EXPECT_EQ(shown(), (QVariantList{"a", "B", "c"}));
    model.setRows({"a", "B", "c"});
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(reset.count(), 0);
}

TEST_F(RowsModelTest, growsAndShrinksAtItsEnd) {
    model.setRows({"a"});
    model.setRows({"a", "b", "c"});
    EXPECT_EQ(inserted.last()[1].toInt(), 1);
    EXPECT_EQ(inserted.last()[2].toInt(), 2);
    model.setRows({"x"});
    EXPECT_EQ(removed.last()[1].toInt(), 1);
    EXPECT_EQ(removed.last()[2].toInt(), 2);
    EXPECT_EQ(shown(), QVariantList{"x"});
    model.setRows({});
    EXPECT_EQ(model.count(), 0);
}

TEST_F(RowsModelTest, showsNoMoreThanItsLimit) {
    model.setLimit(2);
    model.setRows({"a", "b", "c"});
    EXPECT_EQ(shown(), (QVariantList{"a", "b"}));
    model.setRows({"a", "b", "C"});
    EXPECT_EQ(changes.count(), 0) << "what does not show";
    model.setLimit(5);
    EXPECT_EQ(shown(), (QVariantList{"a", "b", "C"}));
    model.setLimit(0);
    EXPECT_EQ(model.count(), 0);
    model.setLimit(-1);
    EXPECT_EQ(model.count(), 3);
}

TEST_F(RowsModelTest, comparesMapsByWhatIsInThem) {
    model.setRows({QVariantMap{{"title", "a"}, {"duration", "1m"}}});
    model.setRows({QVariantMap{{"title", "a"}, {"duration", "1m"}}});
    EXPECT_EQ(changes.count(), 0);
    model.setRows({QVariantMap{{"title", "a"}, {"duration", "2m"}}});
    EXPECT_EQ(changes.count(), 1);
}

TEST(ListPortion, offersNoMoreThanAHundredAtOnce) {
    const struct {
        int count;
        int initial;
        int shown;
        const char* title;
    } rows[] = {{0, 10, 0, ""},
                {10, 10, 10, ""},
                {11, 10, 10, "Show 1 more"},
                {110, 10, 10, "Show 100 more"},
                {111, 10, 10, "Show 100 more"},
                {60'000, 25, 25, "Show 100 more"},
                {5, 0, 0, "Show 5 more"},
                {-3, 10, 0, ""}};
    for (const auto& row : rows) {
        ListPortion portion;
        portion.setInitialCount(row.initial);
        portion.setCount(row.count);
        EXPECT_EQ(portion.shown(), row.shown) << row.count;
        EXPECT_EQ(portion.moreTitle(), row.title) << row.count;
    }
}

TEST(ListPortion, showsAHundredMoreAtEachPress) {
    ListPortion portion;
    portion.setInitialCount(10);
    portion.setCount(250);
    const struct {
        int shown;
        const char* title;
    } steps[] = {{110, "Show 100 more"}, {210, "Show 40 more"}, {250, ""}};
    for (const auto& step : steps) {
        portion.showMore();
        EXPECT_EQ(portion.shown(), step.shown);
        EXPECT_EQ(portion.moreTitle(), step.title);
    }
}

TEST(ListPortion, keepsWhatWasAskedForWhenTheListChanges) {
    ListPortion portion;
    portion.setInitialCount(2);
    portion.setCount(50);
    portion.showMore();
    portion.setCount(3);
    EXPECT_EQ(portion.shown(), 3);
    portion.setCount(80);
    EXPECT_EQ(portion.shown(), 80);
}

} // namespace
} // namespace kestrio
