#include "Kestrio/Views/Window/ValueRows.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

UsageRow row(const char* key, double fraction = 0) {
    UsageRow made;
    made.key = key;
    made.icon = SymbolIcon{"folder"};
    made.fraction = fraction;
    return made;
}

/// A list that tells what its readers are told.
struct Watched {
    Watched() {
        QObject::connect(&rows, &RowList::rowsInserted, [this](const auto&, int first, int last) {
            told.push_back("in " + std::to_string(first) + "-" + std::to_string(last));
        });
        QObject::connect(&rows, &RowList::rowsRemoved, [this](const auto&, int first, int last) {
            told.push_back("out " + std::to_string(first) + "-" + std::to_string(last));
        });
        QObject::connect(&rows, &RowList::dataChanged, [this](const QModelIndex& first, const QModelIndex& last) {
            told.push_back("new " + std::to_string(first.row()) + "-" + std::to_string(last.row()));
        });
        QObject::connect(&rows, &RowList::countChanged, [this] { told.push_back("count"); });
        QObject::connect(&rows, &RowList::modelReset, [this] { told.push_back("reset"); });
    }
    std::vector<std::string> after(std::vector<UsageRow> next) {
        told.clear();
        rows.set(std::move(next));
        return told;
    }
    std::string keys() const {
        std::string all;
        for (int i = 0; i < rows.count(); ++i)
            all += rows.data(rows.index(i), RowList::rowRole).toMap()["key"].toString().toStdString();
        return all;
    }

    ValueRows<UsageRow> rows;
    std::vector<std::string> told;
};

using Told = std::vector<std::string>;

TEST(ValueRows, tellOfPlacesInsteadOfBeingMadeAgain) {
    Watched list;
    EXPECT_EQ(list.after({row("a"), row("b"), row("c")}), (Told{"in 0-2", "count"}));
    EXPECT_EQ(list.after({row("a"), row("b"), row("c")}), Told{}) << "nothing new";
    EXPECT_EQ(list.after({row("a"), row("c"), row("b")}), Told{"new 1-2"});
    EXPECT_EQ(list.after({row("x"), row("c"), row("y")}), (Told{"new 0-0", "new 2-2"}));
    EXPECT_EQ(list.after({row("x"), row("c"), row("y"), row("z")}), (Told{"in 3-3", "count"}));
    EXPECT_EQ(list.after({row("x"), row("d")}), (Told{"out 2-3", "new 1-1", "count"}));
    EXPECT_EQ(list.keys(), "xd");
    EXPECT_EQ(list.after({}), (Told{"out 0-1", "count"}));
}

TEST(ValueRows, areReadByTheNamesOfTheirFields) {
    Watched list;
    list.after({row("a", 0.5)});
    EXPECT_EQ(list.rows.roleNames().value(RowList::rowRole), "row");
    const auto value = list.rows.data(list.rows.index(0), RowList::rowRole).toMap();
    EXPECT_EQ(value["fraction"].toDouble(), 0.5);
    EXPECT_EQ(value["icon"].toMap()["kind"].toString(), "symbol");
    EXPECT_FALSE(value.contains("subtitle"));
    EXPECT_FALSE(list.rows.data(list.rows.index(0), Qt::DisplayRole).isValid());
    EXPECT_FALSE(list.rows.data(list.rows.index(1), RowList::rowRole).isValid());
}

} // namespace
} // namespace kestrio
