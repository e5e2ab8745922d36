#include "Kestrio/Activity/Database.h"
#include "Kestrio/Base/VirtualQueue.h"
#include "Tests/ExpectedLog.h"
#include "Tests/Support/TemporaryFolder.h"

#include <csignal>
#include <fstream>
#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <sys/resource.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

constexpr Date noon{1'700'000'000};

ActivitySession session(double start, double end, std::string title = "Letter") {
    ActivitySession made;
    made.start = noon + Seconds(start);
    made.end = noon + Seconds(end);
    made.bundleID = "org.example.editor";
    made.appName = "Editor";
    made.title = std::move(title);
    return made;
}

class DatabaseImport : public testing::Test {
protected:
    TemporaryFolder folder;
    fs::path file = folder.path() / "activity.sqlite";
    VirtualTime time{noon};
    VirtualQueue queue{time, "Kestrio.database"};
    Database database{file, queue};

    using Summary = Database::ImportSummary;
    using Sessions = std::vector<ActivitySession>;

    Summary import(const Sessions& sessions) { return database.importSessions(sessions); }

    void store(const ActivitySession& one) { database.insert(one.sample(), one.start, one.end); }

    /// What is stored, without the identifiers.
    Sessions stored() {
        auto found = database.sessions(distantPast, distantFuture);
        for (auto& one : found)
            one.id = 0;
        return found;
    }

    PackedSessions many(int count) {
        PackedSessions packed;
        for (int i = 0; i < count; ++i)
            packed.add(session(i * 100, i * 100 + 90, "Title " + std::to_string(i)));
        return packed;
    }
};

TEST_F(DatabaseImport, ofNothingTouchesNothing) {
    EXPECT_EQ(import({}), Summary{});
    EXPECT_EQ(database.sessionCount(), 0);
}

TEST_F(DatabaseImport, addsWhatIsNew) {
    auto full = session(100, 200);
    full.url = "https://example.org/";
    full.domain = "example.org";
    full.project = "kestrel";
    full.kind = SessionKind::watching;
    EXPECT_EQ(import({full, session(0, 60.5)}), (Summary{2, 0, 0}));
    EXPECT_EQ(stored(), (Sessions{session(0, 60.5), full}));
    EXPECT_EQ(import({full, session(0, 60.5)}), (Summary{0, 0, 2}));
}

TEST_F(DatabaseImport, comparesWithWhatIsStored) {
    struct Row {
        const char* name;
        ActivitySession stored, incoming;
        Summary summary;
    };
    const auto with = [](auto change) {
        auto made = session(0, 100);
        change(made);
        return made;
    };
    const Summary added{1, 0, 0};
    const Summary extended{0, 1, 0};
    const Summary duplicate{0, 0, 1};
    const Row table[] = {
        {"the same", session(0, 100), session(0, 100), duplicate},
        {"an end half a second later", session(0, 100), session(0, 100.5), duplicate},
        {"an end a second later", session(0, 100), session(0, 101), duplicate},
        {"an end 1.5 seconds later", session(0, 100), session(0, 101.5), extended},
        {"an end long before", session(0, 100), session(0, 10), duplicate},
        {"a start a second later", session(0, 1.5), session(1, 2.5), duplicate},
        {"a start a second before", session(1, 2), session(0, 2), duplicate},
        {"a start more than a second later, overlapping by less than half", session(0, 10), session(6, 16), added},
        {"overlapping by half of the shorter", session(0, 10), session(5, 15), extended},
        {"overlapping by half of the shorter, ended before", session(5, 15), session(0, 10), duplicate},
        {"within", session(0, 100), session(40, 50), duplicate},
        {"around", session(40, 50), session(0, 100), extended},
        {"right after", session(0, 100), session(100, 200), added},
        {"right before", session(100, 200), session(0, 100), added},
        {"a start a second before, ending there", session(100, 200), session(99, 100), duplicate},
        {"another title", session(0, 100), session(0, 100, "Other"), added},
        {"another application", session(0, 100), with([](auto& s) { s.bundleID = "org.example.other"; }), added},
        {"another kind", session(0, 100), with([](auto& s) { s.kind = SessionKind::listening; }), added},
        {"an address", session(0, 100), with([](auto& s) { s.url = "https://example.org/"; }), added},
        {"an empty address", session(0, 100), with([](auto& s) { s.url = ""; }), duplicate},
        {"another name of the application", session(0, 100), with([](auto& s) { s.appName = "Ed"; }), duplicate},
        {"another site and project", session(0, 100), with([](auto& s) { s.domain = s.project = "x"; }), duplicate},
        {"a title encoded otherwise", session(0, 100, "caf\xC3\xA9"), session(0, 100, "cafe\xCC\x81"), duplicate},
        {"a title with a mark that nobody sees", session(0, 100), session(0, 100, "\xE2\x80\x8ELetter"), duplicate},
    };
    for (const auto& row : table) {
        database.deleteAll();
        store(row.stored);
        EXPECT_EQ(import({row.incoming}), row.summary) << row.name;
        const auto found = stored();
        ASSERT_EQ(found.size(), row.summary == added ? 2u : 1u) << row.name;
        if (row.summary != added) {
            auto expected = row.stored;
            expected.end = row.summary == extended ? row.incoming.end : row.stored.end;
            EXPECT_EQ(found[0], expected) << row.name;
        }
    }
}

TEST_F(DatabaseImport, knowsATitleWithInvisibleMarksAgain) {
    const Sessions marked{session(0, 100, "\xE2\x80\x8ELetter\xEF\xBB\xBF")};
    EXPECT_EQ(import(marked), (Summary{1, 0, 0}));
    EXPECT_EQ(import(marked), (Summary{0, 0, 1}));
}

TEST_F(DatabaseImport, comparesWithinItself) {
    EXPECT_EQ(import({session(0, 100), session(0, 100)}), (Summary{1, 0, 1}));
    database.deleteAll();
    EXPECT_EQ(import({session(0, 150), session(0, 100)}), (Summary{1, 0, 1}));
    database.deleteAll();
    EXPECT_EQ(import({session(0, 100), session(0, 150)}), (Summary{1, 1, 0}));
    EXPECT_EQ(stored(), Sessions{session(0, 150)});
    database.deleteAll();
    // In the order of the starts, whatever the order of the list.
    EXPECT_EQ(import({session(50, 150), session(0, 100)}), (Summary{1, 1, 0}));
    EXPECT_EQ(stored(), Sessions{session(0, 150)});
}

TEST_F(DatabaseImport, looksAtTheTwoNeighboursAlone) {
    store(session(0, 100));
    store(session(100.5, 100.7));
    store(session(100.8, 100.9));
    // Two short ones start within a second after its end, and hide it.
    EXPECT_EQ(import({session(0, 100)}), (Summary{1, 0, 0}));
    database.deleteAll();
    store(session(0, 100));
    store(session(100.5, 100.7));
    EXPECT_EQ(import({session(0, 100)}), (Summary{0, 0, 1}));
}

TEST_F(DatabaseImport, triesTheLaterNeighbourFirst) {
    store(session(0, 100));
    store(session(0.5, 50));
    EXPECT_EQ(import({session(0.25, 70)}), (Summary{0, 1, 0}));
    EXPECT_EQ(stored(), (Sessions{session(0, 100), session(0.5, 70)}));
}

TEST_F(DatabaseImport, findsRowsAroundTheIncomingOnes) {
    store(session(-1, 100));
    store(session(300, 400, "Other"));
    EXPECT_EQ(import({session(0, 50), session(200, 299, "Other"), session(299.5, 310, "Other")}), (Summary{1, 0, 2}));
}

TEST_F(DatabaseImport, tellsHowFarItIs) {
    std::vector<double> shares;
    const auto outcome =
        database.importSessions(many(20'000), {.progress = [&](double share) { shares.push_back(share); }});
    EXPECT_EQ(std::get<Summary>(outcome), (Summary{20'000, 0, 0}));
    database.importSessions(many(20'000), {.progress = [&](double share) { shares.push_back(share - 1); }});
    ASSERT_GT(shares.size(), 8u);
    EXPECT_GE(shares.front(), 0);
    EXPECT_TRUE(std::all_of(shares.begin(), shares.end(), [](double share) { return share <= 1; }));
    const auto second = std::find_if(shares.begin(), shares.end(), [](double share) { return share < 0; });
    EXPECT_TRUE(std::is_sorted(shares.begin(), second));
    EXPECT_TRUE(std::is_sorted(second, shares.end()));
}

TEST_F(DatabaseImport, thatIsStoppedLeavesTheDatabaseAsItWas) {
    store(session(0, 50, "Title 0"));
    const auto before = stored();
    for (const double at : {0.0, 0.4, 0.8}) {
        std::stop_source stop;
        const auto outcome = database.importSessions(many(20'000), {.progress =
                                                                        [&](double share) {
                                                                            if (share >= at)
                                                                                stop.request_stop();
                                                                        },
                                                                    .stop = stop.get_token()});
        EXPECT_TRUE(std::holds_alternative<Database::ImportStopped>(outcome)) << at;
        EXPECT_EQ(stored(), before) << at;
    }
    EXPECT_EQ(std::get<Summary>(database.importSessions(many(20'000))), (Summary{19'999, 1, 0}));
}

/// No file may grow beyond so many bytes while this lives, as on a disk that is full.
class FullDisk {
public:
    explicit FullDisk(std::uintmax_t bytes) : ignored_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        rlimit limit = before_;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, ignored_);
    }

private:
    void (*ignored_)(int);
    rlimit before_{};
};

TEST_F(DatabaseImport, onAFullDiskLeavesTheDatabaseAsItWas) {
    store(session(0, 50, "Title 0"));
    const auto before = stored();
    for (const std::uintmax_t room : {100'000, 1'000'000, 3'000'000}) {
        Database::ImportOutcome outcome;
        {
            const FullDisk disk(room);
            outcome = database.importSessions(many(40'000));
        }
        ASSERT_TRUE(std::holds_alternative<Database::ImportFailure>(outcome)) << room;
        EXPECT_NE(std::get<Database::ImportFailure>(outcome).message, "");
        EXPECT_EQ(stored(), before) << room;
    }
    EXPECT_EQ(std::get<Summary>(database.importSessions(many(100))), (Summary{99, 1, 0}));
}

TEST_F(DatabaseImport, passesOverARowThatTheDatabaseRefuses) {
    sqlite3* raw = nullptr;
    sqlite3_open(file.c_str(), &raw);
    const sqlite::Connection other(raw);
    ASSERT_FALSE(sqlite::execute(raw, "CREATE TRIGGER t BEFORE INSERT ON sessions WHEN NEW.title = 'No' BEGIN SELECT "
                                      "RAISE(ABORT, 'no'); END"));
    EXPECT_EQ(import({session(0, 10), session(20, 30, "No"), session(40, 50)}), (Summary{2, 0, 0}));
    EXPECT_EQ(stored(), (Sessions{session(0, 10), session(40, 50)}));
}

TEST_F(DatabaseImport, ofALockedDatabaseAddsNothingAndWaitsButOnce) {
    store(session(0, 10));
    sqlite3* raw = nullptr;
    sqlite3_open(file.c_str(), &raw);
    const sqlite::Connection holder(raw);
    ASSERT_FALSE(sqlite::execute(raw, "BEGIN IMMEDIATE"));
    const auto outcome = database.importSessions(many(1000));
    EXPECT_EQ(std::get<Summary>(outcome), Summary{});
    EXPECT_EQ(stored(), Sessions{session(0, 10)});
    ASSERT_FALSE(sqlite::execute(raw, "COMMIT"));
    EXPECT_EQ(std::get<Summary>(database.importSessions(many(10))), (Summary{10, 0, 0}));
}

TEST_F(DatabaseImport, intoATableThatIsGoneFails) {
    sqlite3* raw = nullptr;
    sqlite3_open(file.c_str(), &raw);
    const sqlite::Connection other(raw);
    ASSERT_FALSE(sqlite::execute(raw, "DROP TABLE sessions"));
    const auto outcome = database.importSessions(many(10));
    ASSERT_TRUE(std::holds_alternative<Database::ImportFailure>(outcome));
    EXPECT_EQ(std::get<Database::ImportFailure>(outcome).message, "no such table: sessions");
}

TEST_F(DatabaseImport, leavesNoLargeSidecar) {
    database.importSessions(many(20'000));
    EXPECT_EQ(fs::file_size(file.string() + "-wal"), 0u);
}

// Sessions as the program records them: those of one key lie apart, and each lasts more than a second.

using Recorded = std::vector<ActivitySession>;

rc::Gen<Recorded> recorded() {
    return rc::gen::exec([] {
        Recorded all;
        for (const char* title : {"Letter", "Song", "café"}) {
            double at = *rc::gen::inRange(0, 2000) / 10.0;
            const int count = *rc::gen::inRange(0, 6);
            for (int i = 0; i < count; ++i) {
                const double length = 1.5 + *rc::gen::inRange(0, 3000) / 10.0;
                all.push_back(session(at, at + length, title));
                at += length + *rc::gen::inRange(0, 500) / 10.0;
            }
        }
        return all;
    });
}

TEST_F(DatabaseImport, ofTheSameAgainAddsNothing) {
    rc::check([this] {
        const auto all = *recorded();
        database.deleteAll();
        RC_ASSERT(import(all) == (Summary{static_cast<std::int64_t>(all.size()), 0, 0}));
        const auto once = stored();
        RC_ASSERT(import(all) == (Summary{0, 0, static_cast<std::int64_t>(all.size())}));
        RC_ASSERT(stored() == once);
    });
}

TEST_F(DatabaseImport, ofOverlappingExportsGivesWhatTheirUnionGives) {
    rc::check([this] {
        const auto all = *recorded();
        // Two exports of one history that share what lies in the middle.
        const auto from = noon + Seconds(*rc::gen::inRange(0, 800));
        const auto to = from + Seconds(*rc::gen::inRange(0, 400));
        Recorded early;
        Recorded late;
        for (const auto& one : all) {
            if (one.start < to)
                early.push_back(one);
            if (one.start >= from)
                late.push_back(one);
        }
        database.deleteAll();
        import(all);
        auto expected = stored();
        for (const bool earlyFirst : {true, false}) {
            database.deleteAll();
            import(earlyFirst ? early : late);
            import(earlyFirst ? late : early);
            auto found = stored();
            const auto inOrder = [](const auto& a, const auto& b) {
                return std::tie(a.start, a.title) < std::tie(b.start, b.title);
            };
            std::sort(found.begin(), found.end(), inOrder);
            std::sort(expected.begin(), expected.end(), inOrder);
            RC_ASSERT(found == expected);
        }
    });
}

TEST_F(DatabaseImport, ofAnEarlierAndALaterExportExtendsTheOpenSession) {
    EXPECT_EQ(import({session(0, 100), session(100, 110, "Open")}), (Summary{2, 0, 0}));
    EXPECT_EQ(import({session(0, 100), session(100, 400, "Open"), session(400, 500)}), (Summary{1, 1, 1}));
    EXPECT_EQ(stored(), (Sessions{session(0, 100), session(100, 400, "Open"), session(400, 500)}));
}

} // namespace
} // namespace kestrio
