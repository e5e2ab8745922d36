#include "Kestrio/Base/DatabaseFile.h"

#include "Kestrio/Base/Files.h"

#include <cerrno>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

/// How long a statement waits for another connection's lock.
constexpr int busyTimeoutMilliseconds = 3000;

/// The part of the library's codes that is not about the details.
constexpr int primaryCode = 0xff;

void makePrivate(const fs::path& file) {
    if (const auto error = makePrivateFolder(file.parent_path()))
        throw DatabaseError::open(file.parent_path().string() + ": " + error.message());
    if (const auto error = makePrivateFile(file)) // SQLite gives its sidecars the mode of the file
        throw DatabaseError::open(file.string() + ": " + error.message());
}

DatabaseTrouble troubleOfOpening(int systemError) {
    switch (systemError) {
    case ENOENT:
    case ENOTDIR: return DatabaseTrouble::missing;
    case EACCES:
    case EPERM:
    case EROFS: return DatabaseTrouble::forbidden;
    default: return DatabaseTrouble::unreadable;
    }
}

sqlite::Connection connectTo(const std::string& name, int flags) {
    sqlite3* raw = nullptr;
    const int result = sqlite3_open_v2(name.c_str(), &raw, flags | SQLITE_OPEN_FULLMUTEX, nullptr);
    sqlite::Connection connection(raw);
    if (result != SQLITE_OK)
        throw DatabaseError::open(sqlite::errorMessage(raw), databaseTrouble(raw));
    sqlite3_busy_timeout(raw, busyTimeoutMilliseconds);
    return connection;
}

/// Whether a failure was that the sidecars, by which readers and a writer share a file, cannot be made: the folder is
/// not to be written to, or the disk is full. Where they hold something already, the file alone would not be the whole.
bool lacksSidecars(int code, const fs::path& file) {
    switch (code & primaryCode) {
    case SQLITE_CANTOPEN:
    case SQLITE_FULL:
    case SQLITE_IOERR:
    case SQLITE_READONLY: break;
    default: return false;
    }
    std::error_code error;
    const auto written = fs::file_size(file.string() + "-wal", error);
    return error || written == 0;
}

/// As an address that says that nobody changes the file.
std::string immutableAddress(const fs::path& file) {
    std::string address = "file:";
    for (const char byte : file.string())
        if (byte == '%' || byte == '?' || byte == '#')
            address += byte == '%' ? "%25" : byte == '?' ? "%3f" : "%23";
        else
            address += byte;
    return address + "?immutable=1";
}

sqlite::Connection connectToLook(const fs::path& file) {
    auto connection = connectTo(file.string(), SQLITE_OPEN_READONLY);
    const auto error = sqlite::execute(connection.get(), "PRAGMA schema_version"); // opening alone looks at nothing
    if (!error)
        return connection;
    if (!lacksSidecars(sqlite3_errcode(connection.get()), file))
        throw DatabaseError::execute(*error, databaseTrouble(connection.get()));
    return connectTo(immutableAddress(file), SQLITE_OPEN_READONLY | SQLITE_OPEN_URI);
}

} // namespace

sqlite::Connection openDatabaseFile(const fs::path& file, DatabaseAccess access) {
    if (access == DatabaseAccess::readOnly)
        return connectToLook(file);
    makePrivate(file);
    return connectTo(file.string(), SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
}

DatabaseTrouble databaseTrouble(sqlite3* connection) {
    switch (sqlite3_errcode(connection) & primaryCode) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED: return DatabaseTrouble::locked;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB: return DatabaseTrouble::damaged;
    case SQLITE_CANTOPEN: return troubleOfOpening(sqlite3_system_errno(connection));
    case SQLITE_PERM:
    case SQLITE_READONLY: return DatabaseTrouble::forbidden;
    default: return DatabaseTrouble::unreadable;
    }
}

void executeOrThrow(sqlite3* connection, const char* sql) {
    if (const auto error = sqlite::execute(connection, sql))
        throw DatabaseError::execute(*error, databaseTrouble(connection));
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
