// What the recording costs: the tick, with a scripted desktop and a real database, and before a real X server where
// DISPLAY names one; and reading ranges out of a million rows.
#include "Kestrio/Activity/ActivityMonitor.h"
#include "Kestrio/Activity/Database.h"
#include "Kestrio/Base/VirtualQueue.h"
#include "Kestrio/Platform/Linux/ApplicationIdentity.h"
#include "Kestrio/Platform/Linux/FileKeyValueStore.h"
#include "Kestrio/Platform/Linux/X11InputIdle.h"
#include "Kestrio/Platform/Linux/X11WindowTitles.h"
#include "Kestrio/Platform/Linux/X11Windows.h"
#include "Kestrio/Platform/Linux/X11Workspace.h"
#include "Kestrio/Platform/Testing/MemoryKeyValueStore.h"
#include "Kestrio/Platform/Testing/ScriptedDesktop.h"
#include "Kestrio/Platform/Testing/ScriptedSessionEvents.h"

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <filesystem>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

constexpr Date origin{1'700'000'000};

/// A folder beside the benchmark, on a real disk rather than in memory.
class Scratch {
public:
    Scratch() {
        fs::remove_all(path);
        fs::create_directories(path);
    }
    ~Scratch() { fs::remove_all(path); }
    const fs::path path = fs::current_path() / "kestrio-benchmark";
};

ActivitySample sample(int i) {
    return {"org.example.app" + std::to_string(i % 40),
            "Application " + std::to_string(i % 40),
            "A title of usual length, number " + std::to_string(i % 977),
            std::nullopt,
            std::nullopt,
            std::nullopt,
            SessionKind::focus};
}

struct ScriptedBench {
    Scratch scratch;
    VirtualTime time{origin};
    VirtualQueue databaseQueue{time, "Kestrio.database"};
    VirtualQueue queue{time, "Kestrio.monitor"};
    Database database{scratch.path / "activity.sqlite", databaseQueue};
    ScriptedWorkspace workspace;
    ScriptedWindowTitles titles;
    ScriptedInputIdle input;
    ScriptedSessionEvents events{queue};
    FileKeyValueStore settings{scratch.path / "settings.json"};
    ActivityMonitor monitor{{time, queue, workspace, titles, input, events, settings}, database, {}, {}};

    ScriptedBench() {
        settings.registerDefaults({{"idleMinutes", std::int64_t{3}}});
        workspace.front = RunningApplication{"org.mozilla.firefox", "Firefox", 100};
        titles.titles[100] = "Inbox, with a title of usual length";
        monitor.start();
        time.advance(Seconds(1));
    }

    void tick() {
        workspace.announce(WorkspaceNotice::activated);
        time.runPending();
    }
};

void tickWithNothingChanged(benchmark::State& state) {
    ScriptedBench bench;
    for ([[maybe_unused]] auto _ : state)
        bench.tick();
}
BENCHMARK(tickWithNothingChanged)->Unit(benchmark::kMicrosecond);

void tickThatFlushes(benchmark::State& state) {
    ScriptedBench bench;
    for ([[maybe_unused]] auto _ : state) {
        state.PauseTiming();
        bench.time.advance(Seconds(13)); // the timer's own ticks flush at most once in this
        state.ResumeTiming();
        bench.time.advance(Seconds(2));
    }
}
BENCHMARK(tickThatFlushes)->Unit(benchmark::kMicrosecond);

void tickWithAChange(benchmark::State& state) {
    ScriptedBench bench;
    int i = 0;
    for ([[maybe_unused]] auto _ : state) {
        state.PauseTiming();
        bench.time.advance(Seconds(1.5)); // long enough to be worth a row
        bench.titles.titles[100] = "Another title, number " + std::to_string(++i);
        state.ResumeTiming();
        bench.tick();
    }
}
BENCHMARK(tickWithAChange)->Unit(benchmark::kMicrosecond);

/// The readers alone, before a real server.
void readersWithNothingChanged(benchmark::State& state) {
    const char* display = std::getenv("DISPLAY");
    if (!display) {
        state.SkipWithError("no DISPLAY");
        return;
    }
    const SystemClock clock;
    MainQueue queue;
    DesktopEntries entries(applicationFolders(processEnvironment), "en_US", clock);
    ApplicationIdentity identity(entries, IdentityCatalogue::builtIn());
    X11Connection connection(queue, clock, display);
    X11Windows windows(connection);
    X11Workspace workspace(queue, windows, identity);
    X11WindowTitles titles(windows);
    X11InputIdle idle(connection);
    for ([[maybe_unused]] auto _ : state) {
        const auto front = workspace.frontmostApplication();
        benchmark::DoNotOptimize(idle.sinceLastInput());
        if (front && front->processIdentifier)
            benchmark::DoNotOptimize(titles.focusedWindowTitle(*front->processIdentifier));
    }
}
BENCHMARK(readersWithNothingChanged)->Unit(benchmark::kMicrosecond);

/// A million sessions of a minute and a half each: almost three years without a break.
class MillionRows {
public:
    static constexpr int count = 1'000'000;
    static constexpr double each = 90;

    MillionRows() {
        Database make(file, queue_); // the schema
        sqlite3* raw = nullptr;
        sqlite3_open(file.c_str(), &raw);
        const sqlite::Connection connection(raw);
        sqlite::Transaction transaction(raw);
        sqlite::Statement insert(
            raw, "INSERT INTO sessions (start, end, bundle_id, app_name, title) VALUES (?, ?, ?, ?, ?)");
        for (int i = 0; i < count; ++i) {
            const auto one = sample(i);
            insert.bind(1, origin + Seconds(i * each));
            insert.bind(2, origin + Seconds((i + 1) * each));
            insert.bind(3, std::string_view(one.bundleID));
            insert.bind(4, std::string_view(one.appName));
            insert.bind(5, std::string_view(one.title));
            insert.step();
            insert.reset();
        }
        transaction.commit();
    }

    Database& database() { return database_ ? *database_ : database_.emplace(file, queue_); }

private:
    Scratch scratch_;
    const fs::path file = scratch_.path / "activity.sqlite";
    VirtualTime time_{origin};
    VirtualQueue queue_{time_, "Kestrio.database"};
    std::optional<Database> database_;
};

void sessionsOfDays(benchmark::State& state) {
    static MillionRows rows;
    auto& database = rows.database();
    const auto from = origin + Seconds(MillionRows::count * MillionRows::each / 2);
    std::size_t found = 0;
    for ([[maybe_unused]] auto _ : state)
        found = database.sessions(from, from + Seconds(86'400.0 * static_cast<double>(state.range(0)))).size();
    state.counters["rows"] = static_cast<double>(found);
}
BENCHMARK(sessionsOfDays)->Arg(1)->Arg(31)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace kestrio
