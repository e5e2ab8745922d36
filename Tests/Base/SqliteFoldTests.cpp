#include "Kestrio/Base/Sqlite.h"
#include "Kestrio/Base/SqliteFold.h"

#include <gtest/gtest.h>
#include <vector>

namespace kestrio::sqlite {
namespace {

class SqliteFold : public testing::Test {
protected:
    SqliteFold() {
        sqlite3* raw = nullptr;
        sqlite3_open(":memory:", &raw);
        connection_.reset(raw);
        sqlite3_exec(raw, "CREATE TABLE t (a INTEGER PRIMARY KEY, b INTEGER, c REAL) WITHOUT ROWID", nullptr, nullptr,
                     nullptr);
        sqlite3_exec(raw, "INSERT INTO t VALUES (3, -7, 0.25), (1, 5, 1.5), (2, 6, 2.5)", nullptr, nullptr, nullptr);
    }

    Connection connection_;
};

TEST_F(SqliteFold, receivesTheRowsOfARangeInTheOrderOfTheKey) {
    std::vector<std::tuple<std::int64_t, std::uint64_t, double>> rows;
    {
        const RowFold fold(connection_.get(), [&](RowValues row) {
            const auto a = row.integer();
            const auto b = row.natural();
            rows.emplace_back(a, b, row.real());
        });
        Statement select(connection_.get(), "SELECT fold(a, b, c) FROM t WHERE a >= ? AND a < ?");
        select.bind(1, std::int64_t{1});
        select.bind(2, std::int64_t{4});
        EXPECT_EQ(select.step(), Step::row);
    }
    const decltype(rows) expected{{1, 5, 1.5}, {2, 6, 2.5}, {3, 0, 0.25}};
    EXPECT_EQ(rows, expected);
}

TEST_F(SqliteFold, receivesNothingOfAnEmptyRange) {
    int rows = 0;
    const RowFold fold(connection_.get(), [&](RowValues) { ++rows; });
    Statement select(connection_.get(), "SELECT fold(a) FROM t WHERE a > 9");
    EXPECT_EQ(select.step(), Step::row);
    EXPECT_EQ(rows, 0);
}

TEST_F(SqliteFold, isGoneWithItsEnd) {
    {
        const RowFold fold(connection_.get(), [](RowValues) {});
    }
    EXPECT_FALSE(Statement(connection_.get(), "SELECT fold(a) FROM t").isValid());
}

} // namespace
} // namespace kestrio::sqlite
