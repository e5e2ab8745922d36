// Opening the files of the stores: for the one that writes them, private to their owner; for those who only look, as
// they are. Takes as long as the disk; belongs to the queue that the connection will belong to.
#pragma once

#include "Kestrio/Base/DatabaseTrouble.h"
#include "Kestrio/Base/Sqlite.h"

#include <filesystem>
#include <set>
#include <stdexcept>
#include <string>

namespace kestrio {

/// Thrown at opening alone.
class DatabaseError : public std::runtime_error {
public:
    static DatabaseError open(const std::string& message, DatabaseTrouble trouble = DatabaseTrouble::unreadable) {
        return {"Could not open database: " + message, trouble};
    }
    static DatabaseError execute(const std::string& message, DatabaseTrouble trouble) {
        return {"Database error: " + message, trouble};
    }

    DatabaseTrouble trouble() const { return trouble_; }

private:
    DatabaseError(const std::string& message, DatabaseTrouble trouble)
        : std::runtime_error(message), trouble_(trouble) {}

    DatabaseTrouble trouble_;
};

enum class DatabaseAccess {
    readWrite, // the agent: makes the file, brings old ones up to date
    readOnly,  // the faces: look at a file that the agent writes
};

/// A connection to the file, which with its folder is made when missing and the access is `readWrite`. Any statement on
/// it waits up to three seconds for another connection's lock. Where the folder cannot be written to or the disk is
/// full, `readOnly` may show the file as it is now: it is for a short look then. Throws `DatabaseError`.
sqlite::Connection openDatabaseFile(const std::filesystem::path& file, DatabaseAccess access);

/// What the connection's last failure comes to.
DatabaseTrouble databaseTrouble(sqlite3* connection);

/// Runs SQL text that returns no rows. Throws `DatabaseError` when it fails.
void executeOrThrow(sqlite3* connection, const char* sql);

/// The names of a table's columns; empty for a table that is not there.
std::set<std::string> tableColumns(sqlite3* connection, const std::string& table);

/// Bytes of the file and its two sidecars; one that cannot be read counts 0. Any thread.
std::int64_t databaseFileSize(const std::filesystem::path& file);

} // namespace kestrio
