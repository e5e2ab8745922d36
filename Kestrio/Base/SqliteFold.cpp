#include "Kestrio/Base/SqliteFold.h"

#include <utility>

namespace kestrio::sqlite {
namespace {

constexpr auto name = "fold";
constexpr int anyNumber = -1;

void step(sqlite3_context* context, int /*count*/, sqlite3_value** values) {
    const auto& receive = *static_cast<const RowFold::Receive*>(sqlite3_user_data(context));
    receive(RowValues(values));
}

void finish(sqlite3_context* /*context*/) {}

} // namespace

RowFold::RowFold(sqlite3* connection, Receive receive) : connection_(connection), receive_(std::move(receive)) {
    // Where it cannot be registered the query does not prepare, and says so.
    sqlite3_create_function_v2(connection_, name, anyNumber, SQLITE_UTF8, &receive_, nullptr, step, finish, nullptr);
}

RowFold::~RowFold() {
    sqlite3_create_function_v2(connection_, name, anyNumber, SQLITE_UTF8, nullptr, nullptr, nullptr, nullptr, nullptr);
}

} // namespace kestrio::sqlite
