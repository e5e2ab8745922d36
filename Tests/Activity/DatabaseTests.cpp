#include "Kestrio/Activity/Database.h"
#include "Kestrio/Base/VirtualQueue.h"
#include "Tests/ExpectedLog.h"
#include "Tests/Support/TemporaryFolder.h"

#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

constexpr Date noon{1'700'000'000};
constexpr double hour = 3600;

const ActivitySample plain{"org.example.app", "App", "Title", {}, {}, {}, SessionKind::focus};
const ActivitySample full{"org.example.web",     "Web", "Page", "https://example.org/", "example.org", "kestrel",
                          SessionKind::listening};

std::string contents(const fs::path& file) {
    std::ifstream stream(file);
    std::stringstream text;
    text << stream.rdbuf();
    return text.str();
}

/// Runs SQL on a file behind the database's back.
void run(const fs::path& file, const std::string& sql) {
    sqlite3* raw = nullptr;
    sqlite3_open(file.c_str(), &raw);
    const sqlite::Connection connection(raw);
    EXPECT_EQ(sqlite::execute(raw, sql.c_str()), std::nullopt);
}

mode_t mode(const fs::path& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
}

class DatabaseTest : public testing::Test {
protected:
    TemporaryFolder folder;
    fs::path file = folder.path() / "Kestrio" / "activity.sqlite";
    VirtualTime time{noon};
    VirtualQueue queue{time, "Kestrio.database"};

    std::unique_ptr<Database> open() { return std::make_unique<Database>(file, queue); }

    /// What opening says when it fails.
    std::string openingError(Database::Access access = Database::Access::readWrite) {
        try {
            const Database database(file, queue, access);
            return "opened";
        } catch (const DatabaseError& error) {
            return error.what();
        }
    }
};

TEST_F(DatabaseTest, aSessionComesBackAsItWasWritten) {
    const auto database = open();
    const auto first = database->insert(plain, noon + Seconds(0.125), noon + Seconds(10.5));
    const auto second = database->insert(full, noon + Seconds(10.5), noon + Seconds(20));
    ASSERT_TRUE(first && second);
    EXPECT_EQ(database->sessions(noon, noon + Seconds(60)),
              (std::vector{activitySession(*first, plain, noon + Seconds(0.125), noon + Seconds(10.5)),
                           activitySession(*second, full, noon + Seconds(10.5), noon + Seconds(20))}));
}

TEST_F(DatabaseTest, theEndOfARowMovesBothWays) {
    const auto database = open();
    const auto id = database->insert(plain, noon, noon + Seconds(10));
    EXPECT_TRUE(database->updateEnd(*id, noon + Seconds(30)));
    EXPECT_EQ(database->sessions(noon, noon + Seconds(60))[0].end, noon + Seconds(30));
    EXPECT_TRUE(database->updateEnd(*id, noon + Seconds(5)));
    EXPECT_EQ(database->sessions(noon, noon + Seconds(60))[0].end, noon + Seconds(5));
    EXPECT_TRUE(database->updateEnd(999, noon)); // a row that is gone is nobody's failure
}

TEST_F(DatabaseTest, aRangeFindsWhatReachesIntoIt) {
    struct Row {
        const char* name;
        double start, end, from, to; // hours of a day
        bool found;
    };
    const Row table[] = {
        {"inside", 10, 11, 9, 12, true},
        {"from 22:00 to 23:30 for a range from 23:00", 22, 23.5, 23, 24, true},
        {"14 hours long, begun 13 hours before", 8, 22, 21, 24, false},
        {"begun exactly 12 hours before", 9, 22, 21, 24, true},
        {"begun a little over 12 hours before", 8.999, 22, 21, 24, false},
        {"ends exactly at the range's start", 8, 9, 9, 12, false},
        {"ends just after it", 8, 9.001, 9, 12, true},
        {"starts exactly at the range's end", 12, 13, 9, 12, false},
        {"starts just before it", 11.999, 13, 9, 12, true},
        {"around the whole range", 8, 13, 9, 12, true},
        {"of no length, at the start", 9, 9, 9, 12, false},
        {"of no length, inside", 10, 10, 9, 12, true},
    };
    const auto at = [](double hours) { return noon + Seconds(hours * hour); };
    for (const auto& row : table) {
        const auto database = open();
        database->insert(plain, at(row.start), at(row.end));
        const auto found = database->sessions(at(row.from), at(row.to));
        ASSERT_EQ(found.size(), row.found ? 1u : 0u) << row.name;
        const auto inside = std::min(row.end, row.to) - std::max(row.start, row.from);
        EXPECT_NEAR(database->timeInFront({at(row.from), at(row.to)}, std::nullopt).count(),
                    row.found ? inside * hour : 0, 0.001)
            << row.name; // clipped
        if (row.found) {
            EXPECT_EQ(found[0].start, at(row.start)) << row.name; // not clipped
            EXPECT_EQ(found[0].end, at(row.end)) << row.name;
        }
        database->deleteAll();
    }
}

TEST_F(DatabaseTest, timeInFrontLeavesOutWhatRanAlongsideAndARowOnRequest) {
    const auto database = open();
    const DateInterval day{noon, noon + Seconds(24 * hour)};
    EXPECT_EQ(database->timeInFront(day, std::nullopt), Seconds(0)) << "of nothing";
    database->insert(plain, noon, noon + Seconds(100));
    const auto row = database->insert(plain, noon + Seconds(100), noon + Seconds(130));
    database->insert(full, noon, noon + Seconds(50));
    EXPECT_EQ(database->timeInFront(day, std::nullopt), Seconds(130));
    EXPECT_EQ(database->timeInFront(day, row), Seconds(100));
    run(file, "UPDATE sessions SET kind = 7 WHERE id = " + std::to_string(*row));
    EXPECT_EQ(database->timeInFront(day, std::nullopt), Seconds(130)) << "a kind that nobody knows";
    run(file, "UPDATE sessions SET end = start - 5 WHERE id = " + std::to_string(*row));
    EXPECT_EQ(database->timeInFront(day, std::nullopt), Seconds(100)) << "no row counts less than nothing";
}

TEST_F(DatabaseTest, sessionsComeInTheOrderOfTheirStarts) {
    const auto database = open();
    for (const double start : {30.0, 10.0, 20.0})
        database->insert(plain, noon + Seconds(start), noon + Seconds(100));
    std::vector<double> starts;
    for (const auto& session : database->sessions(noon, noon + Seconds(60)))
        starts.push_back((session.start - noon).count());
    EXPECT_EQ(starts, (std::vector<double>{10, 20, 30}));
}

TEST_F(DatabaseTest, aRowIsDecodedTolerantly) {
    auto database = open();
    for (const char* values :
         {"1700000000, 1700000001, 'a', 'A', 't', NULL, NULL, NULL, 7",
          "1700000002, 1700000003, 'a', 'A', 't', NULL, NULL, NULL, -1",
          "1700000004, 1700000005, 'a', 'A', 't', NULL, NULL, NULL, 1",
          "1700000006, 1700000007, 'a', 'A', 't', NULL, NULL, NULL, 2",
          "1700000008, 1700000009, 'a', 'Micro' || char(8203) || 'soft', char(8206) || 'T', '', '', '', 0"})
        run(file,
            std::string("INSERT INTO sessions (start, end, bundle_id, app_name, title, url, domain, project, kind) "
                        "VALUES (") +
                values + ")");
    const auto found = database->sessions(noon, noon + Seconds(60));
    ASSERT_EQ(found.size(), 5u);
    EXPECT_EQ(found[0].kind, SessionKind::focus);
    EXPECT_EQ(found[1].kind, SessionKind::focus);
    EXPECT_EQ(found[2].kind, SessionKind::watching);
    EXPECT_EQ(found[3].kind, SessionKind::listening);
    EXPECT_EQ(found[4].appName, "Microsoft");
    EXPECT_EQ(found[4].title, "T");
    EXPECT_EQ(found[0].url, std::nullopt);
    EXPECT_EQ(found[4].url, "");
    EXPECT_EQ(found[4].domain, "");
    EXPECT_EQ(found[4].project, "");
}

TEST_F(DatabaseTest, textsThatAreNotThereAreReplaced) {
    fs::create_directories(file.parent_path());
    run(file, "CREATE TABLE sessions (id INTEGER PRIMARY KEY, start REAL, end REAL, bundle_id TEXT, app_name TEXT, "
              "title TEXT, url TEXT, domain TEXT, project TEXT, kind INTEGER)");
    run(file, "INSERT INTO sessions (start, end) VALUES (1700000000, 1700000001)");
    const auto found = open()->sessions(noon, noon + Seconds(60));
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].bundleID, "unknown");
    EXPECT_EQ(found[0].appName, "Unknown");
    EXPECT_EQ(found[0].title, "");
}

TEST_F(DatabaseTest, anOldFileGainsTheKindOnceAndItsRowsReadAsFocus) {
    fs::create_directories(file.parent_path());
    run(file, contents(KESTRIO_FIXTURES "/activity-before-kind.sql"));
    for (int opening = 0; opening < 2; ++opening) {
        const auto found = open()->sessions(noon, noon + Seconds(200));
        ASSERT_EQ(found.size(), 2u);
        EXPECT_EQ(found[0].kind, SessionKind::focus);
        EXPECT_EQ(found[0].domain, "example.org");
        EXPECT_EQ(found[1].project, "kestrel");
    }
    sqlite3* raw = nullptr;
    sqlite3_open(file.c_str(), &raw);
    const sqlite::Connection connection(raw);
    sqlite::Statement columns(raw, "SELECT COUNT(*) FROM pragma_table_info('sessions')");
    ASSERT_EQ(columns.step(), sqlite::Step::row);
    EXPECT_EQ(columns.integer(0), 10);
}

TEST_F(DatabaseTest, deletingKeepsARowThatCrossesTheDateAndShrinksTheFile) {
    const auto database = open();
    auto long_ = plain;
    long_.title = std::string(4000, 'x');
    for (int i = 0; i < 500; ++i)
        database->insert(long_, noon + Seconds(i), noon + Seconds(i + 1));
    const auto before = database->fileSize();
    database->deleteSessions(noon + Seconds(490.5));
    EXPECT_EQ(database->sessionCount(), 10); // the one from 490 to 491 crosses
    EXPECT_EQ(database->earliestStart(), noon + Seconds(490));
    EXPECT_LT(database->fileSize(), before / 4);
    database->deleteAll();
    EXPECT_EQ(database->sessionCount(), 0);
    EXPECT_EQ(database->earliestStart(), std::nullopt);
    EXPECT_GT(*database->insert(plain, noon, noon + Seconds(1)), 500); // identifiers are never given out again
}

TEST_F(DatabaseTest, aRowThatEndsExactlyAtTheDateStays) {
    const auto database = open();
    database->insert(plain, noon, noon + Seconds(10));
    database->deleteSessions(noon + Seconds(10));
    EXPECT_EQ(database->sessionCount(), 1);
}

TEST_F(DatabaseTest, totalsAddUpAllKindsByApplicationAndBySite) {
    const auto database = open();
    database->insert(plain, noon, noon + Seconds(10));
    database->insert(plain, noon + Seconds(10), noon + Seconds(25));
    database->insert(full, noon, noon + Seconds(30));
    auto focused = full;
    focused.kind = SessionKind::focus;
    focused.appName = "Zweb";
    database->insert(focused, noon, noon + Seconds(5));
    EXPECT_EQ(
        database->totals(Database::appTotals, 10),
        (std::vector<NamedTotal>{{"org.example.web", "Zweb", Seconds(35)}, {"org.example.app", "App", Seconds(25)}}));
    EXPECT_EQ(database->totals(Database::appTotals, 1).size(), 1u);
    EXPECT_EQ(database->totals(Database::domainTotals, 10),
              (std::vector<NamedTotal>{{"example.org", "example.org", Seconds(35)}}));
}

TEST_F(DatabaseTest, totalsPassOverNullAndFallBackToTheIdentifier) {
    const auto database = open();
    database->insert(plain, noon, noon + Seconds(10));
    EXPECT_TRUE(database->totals("SELECT domain, domain, SUM(end - start) FROM sessions LIMIT ?", 5).empty());
    EXPECT_EQ(database->totals("SELECT bundle_id, domain, SUM(end - start) FROM sessions LIMIT ?", 5),
              (std::vector<NamedTotal>{{"org.example.app", "org.example.app", Seconds(10)}}));
}

TEST_F(DatabaseTest, theSizeCountsTheSidecars) {
    const auto database = open();
    database->insert(plain, noon, noon + Seconds(1));
    std::int64_t expected = 0;
    for (const char* suffix : {"", "-wal", "-shm"})
        expected += static_cast<std::int64_t>(fs::file_size(file.string() + suffix));
    EXPECT_EQ(database->fileSize(), expected);
    EXPECT_GT(expected, 0);
}

TEST_F(DatabaseTest, everyFileAndTheFolderBelongToTheOwnerAlone) {
    fs::create_directories(file.parent_path());
    fs::permissions(file.parent_path(), fs::perms(0755));
    std::ofstream(file).close();
    fs::permissions(file, fs::perms(0644));
    const auto database = open();
    database->insert(plain, noon, noon + Seconds(1));
    EXPECT_EQ(mode(file.parent_path()), mode_t{0700});
    for (const char* suffix : {"", "-wal", "-shm"})
        EXPECT_EQ(mode(file.string() + suffix), mode_t{0600}) << suffix;
    EXPECT_NE(mode(folder.path().parent_path()), mode_t{0700}); // what was there above stays as it was
}

TEST_F(DatabaseTest, aFileThatIsNoDatabaseIsRefusedAndNotTouched) {
    fs::create_directories(file.parent_path());
    const std::string text = "These are my notes, not a database. " + std::string(2000, 'n');
    std::ofstream(file) << text;
    EXPECT_EQ(openingError(), "Database error: file is not a database");
    EXPECT_EQ(contents(file), text);
}

TEST_F(DatabaseTest, aFolderInTheFilesPlaceIsRefused) {
    fs::create_directories(file);
    EXPECT_EQ(openingError(), "Could not open database: " + file.string() + ": Is a directory");
}

TEST_F(DatabaseTest, aFileInTheFoldersPlaceIsRefused) {
    std::ofstream(file.parent_path()) << "x";
    EXPECT_EQ(openingError(), "Could not open database: " + file.parent_path().string() + ": Not a directory");
}

TEST_F(DatabaseTest, aDatabaseThatSomebodyHoldsIsRefusedAfterTheTimeOut) {
    open();
    sqlite3* raw = nullptr;
    sqlite3_open(file.c_str(), &raw);
    const sqlite::Connection holder(raw);
    ASSERT_FALSE(sqlite::execute(raw, "PRAGMA locking_mode = EXCLUSIVE; BEGIN EXCLUSIVE; DELETE FROM sessions"));
    EXPECT_EQ(openingError(), "Database error: database is locked");
}

TEST_F(DatabaseTest, aLockedDatabaseFailsTheWriteAndTheReadStillWorks) {
    const auto database = open();
    const auto id = database->insert(plain, noon, noon + Seconds(1));
    sqlite3* raw = nullptr;
    sqlite3_open(file.c_str(), &raw);
    const sqlite::Connection holder(raw);
    ASSERT_FALSE(sqlite::execute(raw, "BEGIN IMMEDIATE"));
    EXPECT_EQ(database->insert(plain, noon, noon + Seconds(1)), std::nullopt);
    EXPECT_FALSE(database->updateEnd(*id, noon + Seconds(9)));
    EXPECT_EQ(database->lastError(), "database is locked");
    EXPECT_EQ(database->sessions(noon, noon + Seconds(60)).size(), 1u);
    ASSERT_FALSE(sqlite::execute(raw, "COMMIT"));
    EXPECT_TRUE(database->updateEnd(*id, noon + Seconds(9)));
}

TEST_F(DatabaseTest, aTableThatIsGoneGivesEmptyResultsAndALine) {
    const auto database = open();
    run(file, "DROP TABLE sessions");
    ExpectedLog log;
    EXPECT_EQ(database->insert(plain, noon, noon + Seconds(1)), std::nullopt);
    EXPECT_FALSE(database->updateEnd(1, noon));
    EXPECT_TRUE(database->sessions(noon, noon + Seconds(60)).empty());
    EXPECT_EQ(database->sessionCount(), 0);
    EXPECT_EQ(database->earliestStart(), std::nullopt);
    EXPECT_TRUE(database->totals(Database::appTotals, 5).empty());
    database->deleteAll();
    // The insert was prepared by the schema the connection still knew, and failed in its step, which says nothing.
    EXPECT_EQ(log.lines(), std::vector<std::string>(6, "Kestrio SQL error: no such table: sessions"));
}

TEST_F(DatabaseTest, aReadOnlyOneSeesWhatAnotherWritesAndMakesNothing) {
    EXPECT_EQ(openingError(Database::Access::readOnly), "Could not open database: unable to open database file");
    EXPECT_FALSE(fs::exists(file.parent_path()));
    const auto writer = open();
    Database reader(file, queue, Database::Access::readOnly);
    writer->insert(plain, noon, noon + Seconds(1));
    EXPECT_EQ(reader.sessions(noon, noon + Seconds(60)).size(), 1u);
    EXPECT_EQ(reader.insert(plain, noon, noon + Seconds(1)), std::nullopt);
}

std::optional<DatabaseTrouble> troubleOf(const FoundSessions& found) {
    const auto* const trouble = std::get_if<DatabaseTrouble>(&found);
    return trouble ? std::optional(*trouble) : std::nullopt;
}

/// Somebody to whom permissions apply, as they do not to the system's own account.
class OrdinaryPerson {
public:
    OrdinaryPerson() : before_(geteuid()) { EXPECT_EQ(seteuid(before_ == 0 ? nobody : before_), 0); }
    ~OrdinaryPerson() { EXPECT_EQ(seteuid(before_), 0); }
    OrdinaryPerson(const OrdinaryPerson&) = delete;
    OrdinaryPerson& operator=(const OrdinaryPerson&) = delete;

private:
    static constexpr uid_t nobody = 65'534;
    const uid_t before_;
};

class LookingAtADatabase : public DatabaseTest {
protected:
    LookingAtADatabase() {
        const auto database = open();
        for (int i = 0; i < 2'000; ++i)
            database->insert(plain, noon + Seconds(i), noon + Seconds(i + 1));
    }

    /// What somebody who only looks is told.
    FoundSessions look() {
        try {
            Database database(file, queue, Database::Access::readOnly);
            return database.findSessions(noon, noon + Seconds(hour));
        } catch (const DatabaseError& error) {
            return error.trouble();
        }
    }

    void overwrite(std::streamoff from, std::size_t length) const {
        std::fstream stream(file, std::ios::in | std::ios::out | std::ios::binary);
        stream.seekp(from);
        stream << std::string(length, 'x');
    }
};

TEST_F(LookingAtADatabase, findsWhatIsThere) {
    EXPECT_EQ(std::get<std::vector<ActivitySession>>(look()).size(), 2'000U);
}

TEST_F(LookingAtADatabase, saysWhyItCannotBeRead) {
    const auto size = fs::file_size(file);
    struct Row {
        const char* what;
        std::function<void()> harm;
        DatabaseTrouble trouble;
    };
    using enum DatabaseTrouble;
    const Row rows[]{
        {"gone", [&] { fs::remove(file); }, missing},
        {"gone with its folder", [&] { fs::remove_all(file.parent_path()); }, missing},
        {"a folder in its place",
         [&] {
             fs::remove(file);
             fs::create_directory(file);
         },
         unreadable},
        {"another file", [&] { overwrite(0, size); }, damaged},
        {"damaged at its head", [&] { overwrite(0, 100); }, damaged},
        {"damaged from its second page on", [&] { overwrite(4'096, size - 4'096); }, damaged},
        {"cut off", [&] { fs::resize_file(file, size / 2); }, damaged},
        {"a few bytes", [&] { fs::resize_file(file, 20); }, damaged},
        {"emptied", [&] { fs::resize_file(file, 0); }, unreadable},
        {"of another program", [&] { run(file, "DROP TABLE sessions"); }, unreadable},
    };
    const auto whole = contents(file);
    for (const auto& row : rows) {
        row.harm();
        EXPECT_EQ(troubleOf(look()), row.trouble) << row.what;
        fs::remove_all(file);
        fs::create_directories(file.parent_path());
        writeFile(file, whole);
        EXPECT_EQ(troubleOf(look()), std::nullopt) << "after it was " << row.what;
    }
}

TEST_F(LookingAtADatabase, saysThatAnotherProgramKeepsItToItself) {
    sqlite3* raw = nullptr;
    sqlite3_open(file.c_str(), &raw);
    {
        const sqlite::Connection holder(raw);
        ASSERT_FALSE(sqlite::execute(raw, "PRAGMA locking_mode = EXCLUSIVE; BEGIN EXCLUSIVE"));
        EXPECT_EQ(troubleOf(look()), DatabaseTrouble::locked);
    }
    EXPECT_EQ(troubleOf(look()), std::nullopt);
}

TEST_F(LookingAtADatabase, saysThatOneMayNot) {
    fs::permissions(folder.path(), fs::perms(0755));
    fs::permissions(file.parent_path(), fs::perms(0755));
    fs::permissions(file, fs::perms(0));
    const OrdinaryPerson person;
    EXPECT_EQ(troubleOf(look()), DatabaseTrouble::forbidden);
}

TEST_F(LookingAtADatabase, needsNoFolderThatItMayWriteTo) {
    const auto odd = folder.path() / "a #1? 100%";
    fs::rename(file.parent_path(), odd);
    file = odd / file.filename();
    fs::permissions(folder.path(), fs::perms(0755));
    fs::permissions(odd, fs::perms(0555));
    fs::permissions(file, fs::perms(0444));
    const OrdinaryPerson person;
    EXPECT_EQ(troubleOf(look()), std::nullopt);
    EXPECT_FALSE(fs::exists(file.string() + "-wal"));
}

// The data folder

class DataFolder : public testing::Test {
protected:
    TemporaryFolder base;

    void make(const std::string& name) {
        fs::create_directories(base.path() / name);
        std::ofstream(base.path() / name / "activity.sqlite") << name;
        std::ofstream(base.path() / name / "anything") << "else";
    }
};

TEST_F(DataFolder, isReturnedWithoutBeingMade) {
    EXPECT_EQ(Database::directory(base.path()), base.path() / "Kestrio");
    EXPECT_FALSE(fs::exists(base.path() / "Kestrio"));
}

TEST_F(DataFolder, ofAnEarlierNameIsMovedWhole) {
    for (const char* earlier : {"TindraDesk", "Timeweft"}) {
        make(earlier);
        EXPECT_EQ(Database::directory(base.path()), base.path() / "Kestrio");
        EXPECT_EQ(contents(base.path() / "Kestrio" / "activity.sqlite"), earlier);
        EXPECT_EQ(contents(base.path() / "Kestrio" / "anything"), "else");
        EXPECT_FALSE(fs::exists(base.path() / earlier));
        fs::remove_all(base.path() / "Kestrio");
    }
}

TEST_F(DataFolder, theNewerOfTwoEarlierNamesIsMovedAlone) {
    make("TindraDesk");
    make("Timeweft");
    Database::directory(base.path());
    EXPECT_EQ(contents(base.path() / "Kestrio" / "activity.sqlite"), "TindraDesk");
    EXPECT_TRUE(fs::exists(base.path() / "Timeweft"));
    EXPECT_FALSE(fs::exists(base.path() / "TindraDesk"));
}

TEST_F(DataFolder, thatIsThereIsLeftAlone) {
    make("Kestrio");
    make("TindraDesk");
    Database::directory(base.path());
    EXPECT_EQ(contents(base.path() / "Kestrio" / "activity.sqlite"), "Kestrio");
    EXPECT_TRUE(fs::exists(base.path() / "TindraDesk"));
}

TEST_F(DataFolder, evenAFileOfTheNameCountsAsThere) {
    std::ofstream(base.path() / "Kestrio") << "x";
    make("TindraDesk");
    EXPECT_EQ(Database::directory(base.path()), base.path() / "Kestrio");
    EXPECT_TRUE(fs::exists(base.path() / "TindraDesk"));
}

} // namespace
} // namespace kestrio
