#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Base/TextFile.h"
#include "Kestrio/Base/VirtualQueue.h"
#include "Kestrio/Reports/CSVExporter.h"
#include "Kestrio/Reports/SessionExport.h"
#include "Kestrio/Reports/SessionImport.h"
#include "Tests/Support/TemporaryFolder.h"

#include <condition_variable>
#include <csignal>
#include <fcntl.h>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <mutex>
#include <rapidcheck.h>
#include <sys/resource.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

constexpr Date noon{1'700'049'600}; // 2023-11-15 12:00 UTC
constexpr auto foreign = "This doesn't look like a Kestrio export (missing column: start, end, bundle_id).";

const Calendar utc("en_GB", "UTC");

std::string rows(int first, int count) {
    std::string text;
    for (int i = first; i < first + count; ++i)
        text +=
            fmt::format("2023-11-15T{:02}:{:02}:{:02}Z,2023-11-15T{:02}:{:02}:{:02}.500Z,,,Editor,org.example.editor,,,"
                        "Title {},,\n",
                        i / 3600, i / 60 % 60, i % 60, i / 3600, i / 60 % 60, i % 60, i);
    return text;
}

class SessionImport : public testing::Test {
protected:
    TemporaryFolder folder;
    WorkerQueue queue{"Kestrio.database"};
    Database database{folder.path() / "data" / "activity.sqlite", queue};

    std::string csv(const std::string& rows_) { return std::string(CSVExporter::header) + rows_; }

    SessionFile file(const std::string& name, const std::string& text) {
        return {name, Descriptor(open(folder.write(name, text).c_str(), O_RDONLY | O_CLOEXEC))};
    }

    template <class... Files>
    static std::vector<SessionFile> list(Files... files) {
        std::vector<SessionFile> all;
        (all.push_back(std::move(files)), ...);
        return all;
    }

    std::string import(const std::vector<SessionFile>& files) {
        return importText(importFiles(files, database, {}), utc);
    }
};

TEST_F(SessionImport, takesInAllFilesTogether) {
    EXPECT_EQ(import(list(file("a.csv", csv(rows(0, 20))), file("b.csv", csv(rows(10, 20))))),
              "Added 30 sessions, ignored 10 already in your history.");
    EXPECT_EQ(import(list(file("a.csv", csv(rows(0, 30))))), "Added 0 sessions, ignored 30 already in your history.");
}

TEST_F(SessionImport, ofAnEmptyFileAddsNothing) {
    EXPECT_EQ(import(list(file("a.csv", ""))), "Added 0 sessions.");
    EXPECT_EQ(import(list(file("a.csv", csv("")))), "Added 0 sessions.");
    EXPECT_EQ(import({}), "Added 0 sessions.");
}

TEST_F(SessionImport, saysEverythingThatHappened) {
    struct Row {
        ImportOutcome outcome;
        const char* text;
    };
    const Row table[] = {
        {ImportReport{}, "Added 0 sessions."},
        {ImportReport{{1, 0, 0}, 0}, "Added 1 sessions."},
        {ImportReport{{1234, 0, 0}, 1}, "Added 1,234 sessions, skipped 1 unreadable rows."},
        {ImportReport{{0, 5678, 0}, 0}, "Added 0 sessions, extended 5,678."},
        {ImportReport{{0, 0, 1'000'000}, 0}, "Added 0 sessions, ignored 1,000,000 already in your history."},
        {ImportReport{{1, 3, 4}, 2},
         "Added 1 sessions, skipped 2 unreadable rows, extended 3, ignored 4 already in your history."},
        {ImportStopped{}, "Import stopped."},
        {ImportFailure{"database or disk is full"}, "Import failed: database or disk is full"},
    };
    for (const auto& row : table)
        EXPECT_EQ(importText(row.outcome, utc), row.text);
    EXPECT_EQ(importText(ImportReport{{1234, 0, 0}, 0}, Calendar("de_DE", "UTC")), "Added 1.234 sessions.");
}

TEST_F(SessionImport, ofOneBadFileAmongGoodOnesWritesNothing) {
    const auto good = csv(rows(0, 10));
    EXPECT_EQ(import(list(file("a.csv", good), file("b.csv", "not,an,export\n"))),
              std::string("Import failed: ") + foreign);
    EXPECT_EQ(import(list(file("a.csv", good), file("b.csv", good + "caf\xE9\n"))),
              "Import failed: The file \"b.csv\" isn't UTF-8 text.");
    EXPECT_EQ(import(list(file("a.csv", good), file("b.csv", good + "\xEF\xBB"))),
              "Import failed: The file \"b.csv\" isn't UTF-8 text.");
    SessionFile directory{"folder", Descriptor(open(folder.path().c_str(), O_RDONLY | O_CLOEXEC))};
    EXPECT_EQ(import(list(file("a.csv", good), std::move(directory))),
              "Import failed: The file \"folder\" couldn't be read: Is a directory.");
    EXPECT_EQ(database.sessionCount(), 0);
}

TEST_F(SessionImport, readsFromAPipe) {
    int ends[2] = {};
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    SessionFile pipe{"pipe", Descriptor(ends[0])};
    {
        const Descriptor writing(ends[1]);
        ASSERT_FALSE(writeAll(writing, csv(rows(0, 3))));
    }
    EXPECT_EQ(import(list(std::move(pipe))), "Added 3 sessions.");
}

TEST_F(SessionImport, tellsHowFarItIsOverReadingAndWriting) {
    std::vector<double> shares;
    const auto files = list(file("a.csv", csv(rows(0, 40'000))));
    importFiles(files, database, {.progress = [&](double share) { shares.push_back(share); }});
    ASSERT_GT(shares.size(), 10u);
    EXPECT_TRUE(std::is_sorted(shares.begin(), shares.end()));
    EXPECT_LT(shares.front(), 0.2);
    EXPECT_GT(shares.back(), 0.9);
    EXPECT_LE(shares.back(), 1);
}

TEST_F(SessionImport, thatIsStoppedWritesNothing) {
    for (const double at : {0.0, 0.1, 0.5, 0.9}) {
        std::stop_source stop;
        const auto files = list(file("a.csv", csv(rows(0, 40'000))));
        const auto outcome = importFiles(files, database,
                                         {.progress =
                                              [&](double share) {
                                                  if (share >= at)
                                                      stop.request_stop();
                                              },
                                          .stop = stop.get_token()});
        EXPECT_EQ(outcome, ImportOutcome(ImportStopped{})) << at;
        EXPECT_EQ(database.sessionCount(), 0) << at;
    }
}

/// A pipe into which a thread writes a beginning, and then one piece again and again.
SessionFile endless(std::thread& writer, std::string beginning, std::string piece, std::size_t bytes) {
    int ends[2] = {};
    EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
    writer =
        std::thread([writing = Descriptor(ends[1]), beginning = std::move(beginning), piece = std::move(piece), bytes] {
            auto error = writeAll(writing, beginning);
            for (std::size_t written = 0; written < bytes && !error; written += piece.size())
                error = writeAll(writing, piece);
        });
    return {"pipe", Descriptor(ends[0])};
}

std::int64_t peakKilobytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

TEST_F(SessionImport, ofTwoHundredMegabytesNeedsLittleMemory) {
    std::signal(SIGPIPE, SIG_IGN); // an import that ends early reads no further
    struct Row {
        const char* name;
        std::size_t bytes;
        std::string beginning;
        std::string piece;
        const char* text;
    };
    const std::string title(1000, 't');
    const Row table[] = {
        {"one field without an end", 200'000'000, csv("2023-11-15T12:00:00Z,2023-11-15T12:01:00Z,,,,a,,,\""),
         std::string(65'536, 'x'), "Added 0 sessions, skipped 1 unreadable rows."},
        {"one column name without an end", 200'000'000, "", std::string(65'536, 'x'), foreign},
        {"columns without an end", 40'000'000, "",
         [] {
             std::string names;
             for (int i = 0; i < 10'000; ++i)
                 names += "name,";
             return names;
         }(),
         foreign},
        {"rows of many fields", 100'000'000, csv(""), std::string(100'000, ',') + "\n", nullptr},
        {"rubbish lines", 100'000'000, csv(""), std::string("what is this\n", 13) + std::string(2000, 'y') + "\n",
         nullptr},
        {"sessions, the same again and again", 200'000'000, csv(""),
         "2023-11-15T12:00:00Z,2023-11-15T12:01:00Z,,,,a,,," + title + ",,\n", nullptr},
    };
    const auto before = peakKilobytes();
    for (const auto& row : table) {
        std::thread writer;
        auto pipe = endless(writer, row.beginning, row.piece, row.bytes);
        const auto text = import(list(std::move(pipe)));
        writer.join();
        if (row.text) {
            EXPECT_TRUE(text == row.text || text == std::string("Import failed: ") + row.text)
                << row.name << ": " << text;
        } else {
            EXPECT_TRUE(text.starts_with("Added ")) << row.name << ": " << text;
        }
    }
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // which keep much of what was freed
    EXPECT_LT(peakKilobytes() - before, 250'000);
#endif
}

// In the background

TEST_F(SessionImport, inTheBackgroundIsToldOnTheQueue) {
    VirtualTime time{noon};
    VirtualQueue main(time, "main");
    BackgroundImport background(database, main);
    std::optional<ImportOutcome> outcome;
    double last = 0;
    const auto token = background.start(list(file("a.csv", csv(rows(0, 20'000)))),
                                        {[&](double share) {
                                             EXPECT_TRUE(main.isCurrent());
                                             last = share;
                                         },
                                         [&](const ImportOutcome& ended) { outcome = ended; }});
    background.stop(); // waits, and the work that it handed over is there
    time.runPending();
    ASSERT_TRUE(outcome);
    EXPECT_GE(last, 0);
}

class QueuedImport : public SessionImport {
protected:
    void TearDown() override {
        main.sync([&] { background.reset(); });
    }

    std::vector<ImportOutcome> ended(std::size_t count) {
        std::unique_lock guard(mutex);
        EXPECT_TRUE(changed.wait_for(guard, std::chrono::seconds(30), [&] { return outcomes.size() >= count; }));
        return outcomes;
    }
    ImportReceiver receiver() {
        return {.ended = [this](const ImportOutcome& outcome) {
            const std::lock_guard guard(mutex);
            outcomes.push_back(outcome);
            changed.notify_all();
        }};
    }

    WorkerQueue main{"main"};
    std::unique_ptr<BackgroundImport> background = std::make_unique<BackgroundImport>(database, main);
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<ImportOutcome> outcomes; // guarded by the mutex
};

TEST_F(QueuedImport, runsOneAtATime) {
    int ends[2] = {};
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    const Descriptor writing(ends[1]); // open, so that the first import waits for more
    Subscription first;
    main.sync([&] { first = background->start(list(SessionFile{"pipe", Descriptor(ends[0])}), receiver()); });
    main.sync([&] { background->start(list(file("a.csv", csv(rows(0, 3)))), receiver()).cancel(); });
    EXPECT_EQ(ended(1).at(0), ImportOutcome(ImportFailure{"Another import is under way."}));
    main.sync([&] { first.cancel(); });
    EXPECT_EQ(ended(2).at(1), ImportOutcome(ImportStopped{}));
    Subscription third;
    main.sync([&] { third = background->start(list(file("a.csv", csv(rows(0, 3)))), receiver()); });
    EXPECT_EQ(ended(3).at(2), ImportOutcome(ImportReport{{3, 0, 0}, 0}));
}

TEST_F(QueuedImport, endsWithItsOwner) {
    int ends[2] = {};
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    const Descriptor writing(ends[1]);
    Subscription token;
    main.sync([&] {
        token = background->start(list(SessionFile{"pipe", Descriptor(ends[0])}), receiver());
        background.reset();
    });
    token.cancel(); // of something that is gone
    main.sync([] {});
    EXPECT_TRUE(outcomes.empty());
}

// Out and in again

TEST_F(SessionImport, ofAnExportOfTheSameHistoryAddsNothing) {
    rc::check([this] {
        database.deleteAll();
        std::vector<ActivitySession> recorded;
        for (const auto kind : allSessionKinds) {
            double at = 0;
            const int count = *rc::gen::inRange(0, 5);
            for (int i = 0; i < count; ++i) {
                ActivitySession made;
                made.kind = kind;
                made.start = noon + Seconds(at + *rc::gen::inRange(0, 1000) / 997.0);
                made.end = made.start + Seconds(1.1 + *rc::gen::inRange(0, 100'000) / 9.7);
                made.bundleID = "org.example.editor";
                made.appName = "Editor";
                made.title = *rc::gen::element<std::string>("Letter", "a,\"b\"\nc", "café", "");
                if (*rc::gen::arbitrary<bool>())
                    made.url = "https://www.example.org/";
                at = (made.end - noon).count() + *rc::gen::inRange(0, 100);
                database.insert(made.sample(), made.start, made.end);
                recorded.push_back(made);
            }
        }
        const DateInterval everything{noon, noon + Seconds(1e6)};
        const auto exported =
            exportedSessions(database.sessions(everything.start, everything.end), everything, utc, {});
        const auto files = list(file("export.csv", CSVExporter::csv(exported, utc)));
        const auto count = static_cast<std::int64_t>(recorded.size());
        RC_ASSERT(importFiles(files, database, {}) == ImportOutcome(ImportReport{{0, 0, count}, 0}));
    });
}

} // namespace
} // namespace kestrio
