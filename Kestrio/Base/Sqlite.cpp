#include "Kestrio/Base/Sqlite.h"

namespace kestrio::sqlite {

std::string errorMessage(sqlite3* connection) {
    return connection ? sqlite3_errmsg(connection) : "unknown error";
}

std::optional<std::string> execute(sqlite3* connection, const char* sql) {
    char* raw = nullptr;
    const int result = sqlite3_exec(connection, sql, nullptr, nullptr, &raw);
    const std::unique_ptr<char, void (*)(void*)> message(raw, sqlite3_free);
    if (result == SQLITE_OK)
        return std::nullopt;
    return message ? std::string(message.get()) : "unknown error";
}

Statement::Statement(sqlite3* connection, std::string_view sql) {
    sqlite3_stmt* statement = nullptr;
    if (connection)
        sqlite3_prepare_v2(connection, sql.data(), static_cast<int>(sql.size()), &statement, nullptr);
    statement_.reset(statement);
}

void Statement::bind(int parameter, double value) {
    if (statement_)
        sqlite3_bind_double(statement_.get(), parameter, value);
}

void Statement::bind(int parameter, std::int64_t value) {
    if (statement_)
        sqlite3_bind_int64(statement_.get(), parameter, value);
}

void Statement::bind(int parameter, std::string_view text) {
    // An empty view may have no address at all, which SQLite would take for NULL.
    if (statement_)
        sqlite3_bind_text(statement_.get(), parameter, text.empty() ? "" : text.data(), static_cast<int>(text.size()),
                          SQLITE_TRANSIENT);
}

void Statement::bind(int parameter, const std::optional<std::string>& text) {
    if (text)
        bind(parameter, std::string_view(*text));
    else if (statement_)
        sqlite3_bind_null(statement_.get(), parameter);
}

void Statement::bind(int parameter, const std::optional<std::int64_t>& value) {
    if (value)
        bind(parameter, *value);
    else if (statement_)
        sqlite3_bind_null(statement_.get(), parameter);
}

void Statement::bind(int parameter, const std::optional<double>& value) {
    if (value)
        bind(parameter, *value);
    else if (statement_)
        sqlite3_bind_null(statement_.get(), parameter);
}

Step Statement::step() {
    if (!statement_)
        return Step::failed;
    switch (sqlite3_step(statement_.get())) {
    case SQLITE_ROW: return Step::row;
    case SQLITE_DONE: return Step::done;
    default: return Step::failed;
    }
}

void Statement::reset() {
    if (statement_)
        sqlite3_reset(statement_.get());
}

bool Statement::isNull(int column) const {
    return sqlite3_column_type(statement_.get(), column) == SQLITE_NULL;
}

double Statement::real(int column) const {
    return sqlite3_column_double(statement_.get(), column);
}

std::int64_t Statement::integer(int column) const {
    return sqlite3_column_int64(statement_.get(), column);
}

std::optional<std::string> Statement::text(int column) const {
    const auto* bytes = sqlite3_column_text(statement_.get(), column);
    if (!bytes)
        return std::nullopt;
    return std::string(reinterpret_cast<const char*>(bytes),
                       static_cast<std::size_t>(sqlite3_column_bytes(statement_.get(), column)));
}

std::optional<double> Columns::optionalReal() {
    const int column = next_++;
    return row_.isNull(column) ? std::nullopt : std::optional(row_.real(column));
}

std::optional<std::int64_t> Columns::optionalInteger() {
    const int column = next_++;
    return row_.isNull(column) ? std::nullopt : std::optional(row_.integer(column));
}

Transaction::Transaction(sqlite3* connection) : connection_(connection) {
    const auto error = connection ? execute(connection, "BEGIN IMMEDIATE") : errorMessage(connection);
    open_ = !error;
    error_ = error.value_or("");
}

Transaction::~Transaction() {
    if (open_)
        execute(connection_, "ROLLBACK");
}

bool Transaction::commit() {
    if (!open_)
        return false;
    open_ = false;
    const auto error = execute(connection_, "COMMIT");
    if (!error)
        return true;
    error_ = *error;
    execute(connection_, "ROLLBACK");
    return false;
}

} // namespace kestrio::sqlite
