#include "Kestrio/Base/Sqlite.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

using sqlite::Statement;
using sqlite::Step;

sqlite::Connection memory() {
    sqlite3* raw = nullptr;
    sqlite3_open(":memory:", &raw);
    sqlite::Connection connection(raw);
    EXPECT_FALSE(sqlite::execute(raw, "CREATE TABLE t (n INTEGER, x REAL, s TEXT)"));
    return connection;
}

std::int64_t count(sqlite3* connection) {
    Statement statement(connection, "SELECT COUNT(*) FROM t");
    EXPECT_EQ(statement.step(), Step::row);
    return statement.integer(0);
}

TEST(SqliteStatement, roundTripsEveryKindOfValue) {
    const auto connection = memory();
    Statement insert(connection.get(), "INSERT INTO t VALUES (?, ?, ?)");
    insert.bind(1, std::int64_t{1} << 62);
    insert.bind(2, Date(1.5));
    insert.bind(3, std::string_view("a\0b", 3));
    EXPECT_EQ(insert.step(), Step::done);
    insert.reset();
    insert.bind(3, std::optional<std::string>());
    EXPECT_EQ(insert.step(), Step::done);
    insert.reset();
    insert.bind(3, std::string_view());
    EXPECT_EQ(insert.step(), Step::done);

    Statement select(connection.get(), "SELECT n, x, s FROM t ORDER BY rowid");
    ASSERT_EQ(select.step(), Step::row);
    EXPECT_EQ(select.integer(0), std::int64_t{1} << 62);
    EXPECT_EQ(select.date(1), Date(1.5));
    EXPECT_EQ(select.text(2), std::string("a\0b", 3));
    ASSERT_EQ(select.step(), Step::row);
    EXPECT_TRUE(select.isNull(2));
    EXPECT_EQ(select.text(2), std::nullopt);
    ASSERT_EQ(select.step(), Step::row);
    EXPECT_EQ(select.text(2), ""); // empty is not absent
    EXPECT_EQ(select.step(), Step::done);
}

TEST(SqliteStatement, thatCannotBePreparedFailsAndHarmsNothing) {
    const auto connection = memory();
    Statement statement(connection.get(), "SELECT n FROM nowhere");
    EXPECT_FALSE(statement.isValid());
    statement.bind(1, 1.0);
    statement.bind(1, std::optional<std::string>());
    EXPECT_EQ(statement.step(), Step::failed);
    EXPECT_EQ(sqlite::errorMessage(connection.get()), "no such table: nowhere");
    EXPECT_EQ(Statement(nullptr, "SELECT 1").step(), Step::failed);
    EXPECT_EQ(sqlite::errorMessage(nullptr), "unknown error");
}

TEST(SqliteTransaction, happensAsAWholeOrNotAtAll) {
    const auto connection = memory();
    {
        sqlite::Transaction transaction(connection.get());
        EXPECT_TRUE(transaction.isOpen());
        sqlite::execute(connection.get(), "INSERT INTO t VALUES (1, 1, '1')");
    }
    EXPECT_EQ(count(connection.get()), 0);
    {
        sqlite::Transaction transaction(connection.get());
        sqlite::execute(connection.get(), "INSERT INTO t VALUES (1, 1, '1')");
        EXPECT_TRUE(transaction.commit());
        EXPECT_FALSE(transaction.commit());
    }
    EXPECT_EQ(count(connection.get()), 1);
    EXPECT_FALSE(sqlite::Transaction(nullptr).isOpen());
}

TEST(SqliteExecute, saysWhatWentWrong) {
    const auto connection = memory();
    EXPECT_EQ(sqlite::execute(connection.get(), "NONSENSE"), "near \"NONSENSE\": syntax error");
}

} // namespace
} // namespace kestrio
