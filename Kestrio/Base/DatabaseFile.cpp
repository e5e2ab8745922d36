#include "Kestrio/Base/DatabaseFile.h"

#include "Kestrio/Base/Files.h"

namespace kestrio {
namespace {

namespace fs = std::filesystem;

/// How long a statement waits for another connection's lock.
constexpr int busyTimeoutMilliseconds = 3000;

void makePrivate(const fs::path& file) {
    if (const auto error = makePrivateFolder(file.parent_path()))
        throw DatabaseError::open(file.parent_path().string() + ": " + error.message());
    if (const auto error = makePrivateFile(file)) // SQLite gives its sidecars the mode of the file
        throw DatabaseError::open(file.string() + ": " + error.message());
}

} // namespace

sqlite::Connection openDatabaseFile(const fs::path& file, DatabaseAccess access) {
    const bool writes = access == DatabaseAccess::readWrite;
    if (writes)
        makePrivate(file);
    const int flags = writes ? SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE : SQLITE_OPEN_READONLY;
    sqlite3* raw = nullptr;
    const int result = sqlite3_open_v2(file.c_str(), &raw, flags | SQLITE_OPEN_FULLMUTEX, nullptr);
    sqlite::Connection connection(raw);
    if (result != SQLITE_OK)
        throw DatabaseError::open(sqlite::errorMessage(raw));
    sqlite3_busy_timeout(raw, busyTimeoutMilliseconds);
    return connection;
}

void executeOrThrow(sqlite3* connection, const char* sql) {
    if (const auto error = sqlite::execute(connection, sql))
        throw DatabaseError::execute(*error);
}

std::set<std::string> tableColumns(sqlite3* connection, const std::string& table) {
    std::set<std::string> names;
    sqlite::Statement statement(connection, "PRAGMA table_info(" + table + ")");
    while (statement.step() == sqlite::Step::row)
        if (auto name = statement.text(1))
            names.insert(std::move(*name));
    return names;
}

std::int64_t databaseFileSize(const fs::path& file) {
    std::int64_t bytes = 0;
    for (const char* suffix : {"", "-wal", "-shm"}) {
        std::error_code error;
        const auto size = fs::file_size(file.string() + suffix, error);
        if (!error)
            bytes += static_cast<std::int64_t>(size);
    }
    return bytes;
}

} // namespace kestrio
