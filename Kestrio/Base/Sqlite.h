// SQLite for the stores: a connection, a statement, a transaction, each released by its scope. SQL stands in the
// stores. A connection and all that was made from it belong to one queue. Nothing here throws or logs.
#pragma once

#include "Kestrio/Base/Date.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <sqlite3.h>
#include <string>
#include <string_view>

namespace kestrio::sqlite {

struct CloseConnection {
    void operator()(sqlite3* connection) const { sqlite3_close_v2(connection); }
};
using Connection = std::unique_ptr<sqlite3, CloseConnection>;

/// The library's text for the connection's last failure, or "unknown error" without a connection.
std::string errorMessage(sqlite3* connection);

/// Runs SQL text that returns no rows. Absent when all went well, else what went wrong.
std::optional<std::string> execute(sqlite3* connection, const char* sql);

enum class Step { row, done, failed };

/// One prepared statement. Parameters count from 1, result columns from 0, as in SQL.
class Statement {
public:
    /// When the SQL cannot be prepared the statement is not valid: `step` then fails, and binding does nothing.
    Statement(sqlite3* connection, std::string_view sql);

    bool isValid() const { return statement_ != nullptr; }

    void bind(int parameter, double value);
    void bind(int parameter, std::int64_t value);
    void bind(int parameter, std::string_view text);
    void bind(int parameter, Date date) { bind(parameter, date.seconds()); }
    // NULL when absent.
    void bind(int parameter, const std::optional<std::string>& text);
    void bind(int parameter, const std::optional<std::int64_t>& value);
    void bind(int parameter, const std::optional<double>& value);

    /// Binds parameter 1, 2 and so on.
    template <class... Values>
    void bindAll(const Values&... values) {
        int parameter = 0;
        (bind(++parameter, values), ...);
    }

    Step step();

    /// Makes the statement ready to run again; the bound values stay.
    void reset();

    bool isNull(int column) const;
    double real(int column) const;
    std::int64_t integer(int column) const;
    Date date(int column) const { return Date(real(column)); }
    /// Absent for NULL and for text that the library cannot deliver.
    std::optional<std::string> text(int column) const;

private:
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };
    std::unique_ptr<sqlite3_stmt, Finalize> statement_;
};

/// Reads the columns of a statement's row one after the other; each call takes the next.
class Columns {
public:
    explicit Columns(const Statement& row) : row_(row) {}

    double real() { return row_.real(next_++); }
    std::int64_t integer() { return row_.integer(next_++); }
    /// A count that cannot be below zero.
    std::uint64_t natural() { return static_cast<std::uint64_t>(std::max(integer(), std::int64_t{0})); }
    Date date() { return row_.date(next_++); }
    std::optional<std::string> text() { return row_.text(next_++); }
    std::optional<double> optionalReal();
    std::optional<std::int64_t> optionalInteger();

private:
    const Statement& row_;
    int next_ = 0;
};

/// Everything between its making and `commit` happens as a whole; without `commit` it never happened.
class Transaction {
public:
    /// Takes the write lock at once. `isOpen` is false when the database refused.
    explicit Transaction(sqlite3* connection);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    bool isOpen() const { return open_; }

    /// False when the changes could not be kept; they are then undone.
    bool commit();

    /// Why it could not be opened or kept.
    const std::string& error() const { return error_; }

private:
    sqlite3* connection_;
    bool open_ = false;
    std::string error_;
};

} // namespace kestrio::sqlite
