// Going through very many rows inside SQLite. An aggregate function hands each row's values to the program where they
// are decoded, which takes a third of what grouping in SQL takes: that sorts all rows into a table of its own first,
// even those that already come in the order of the groups.
//
// Belongs, as the connection does, to one queue.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <sqlite3.h>

namespace kestrio::sqlite {

/// The values of one row in the order that the query names them, none of them NULL. Read one after the other.
class RowValues {
public:
    explicit RowValues(sqlite3_value** values) : next_(values) {}

    std::int64_t integer() { return sqlite3_value_int64(*next_++); }
    /// A count; one below 0 is none.
    std::uint64_t natural() { return static_cast<std::uint64_t>(std::max(integer(), std::int64_t{0})); }
    double real() { return sqlite3_value_double(*next_++); }

private:
    sqlite3_value** next_;
};

/// While it lives, a query such as "SELECT fold(a, b) FROM t" calls `receive` once per row, in the order in which
/// SQLite visits them: that of the key, where the key alone is searched. The query itself answers one row of no
/// meaning.
class RowFold {
public:
    using Receive = std::function<void(RowValues)>;

    /// `receive` must not throw, nor use the connection, which must outlive this.
    RowFold(sqlite3* connection, Receive receive);
    ~RowFold();
    RowFold(const RowFold&) = delete;
    RowFold& operator=(const RowFold&) = delete;

private:
    sqlite3* const connection_;
    Receive receive_;
};

} // namespace kestrio::sqlite
