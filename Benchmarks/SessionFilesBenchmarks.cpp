// What files of sessions cost: reading their text, writing it, and bringing a million sessions into a database that has
// none of them, and again into one that has them all. `fieldsScanned` is the floor of reading.
#include "Kestrio/Activity/Database.h"
#include "Kestrio/Base/VirtualQueue.h"
#include "Kestrio/Reports/CSVExporter.h"
#include "Kestrio/Reports/CSVImporter.h"
#include "Kestrio/Reports/SessionExport.h"
#include "Tests/Examples/ExampleHistory.h"

#include <benchmark/benchmark.h>
#include <filesystem>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

constexpr Date lastDay{1'793'900'000}; // in autumn 2026

const Calendar& calendar() {
    static const Calendar made("en_GB", "Europe/Berlin");
    return made;
}

/// About a million sessions: three years of somebody who switches all the time.
const std::vector<ActivitySession>& history() {
    static const auto made = [] {
        ExampleHistoryOptions options;
        options.days = 3 * 365;
        options.sessionsPerWorkday = 1060;
        return exampleHistory(lastDay, calendar(), options);
    }();
    return made;
}

const std::vector<ClassifiedSession>& exported() {
    static const auto made = exportedSessions(history(), {lastDay, lastDay}, calendar(), {});
    return made;
}

const std::string& text() {
    static const auto made = CSVExporter::csv(exported(), calendar());
    return made;
}

void countText(benchmark::State& state) {
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text().size()));
    state.counters["rows"] = static_cast<double>(exported().size());
}

void fieldsScanned(benchmark::State& state) {
    struct Nobody : CSVScanner::Receiver {
        void takeField(std::size_t, std::optional<std::string_view> field) override { benchmark::DoNotOptimize(field); }
        void endRecord() override {}
    } nobody;
    text();
    for ([[maybe_unused]] auto _ : state) {
        CSVScanner scanner(nobody);
        scanner.scan(text());
        scanner.finish();
    }
    countText(state);
}
BENCHMARK(fieldsScanned)->Unit(benchmark::kMillisecond);

void sessionsParsed(benchmark::State& state) {
    text();
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(CSVImporter::parse(text()));
    countText(state);
}
BENCHMARK(sessionsParsed)->Unit(benchmark::kMillisecond);

void sessionsPacked(benchmark::State& state) {
    text();
    for ([[maybe_unused]] auto _ : state) {
        PackedSessions packed;
        CSVImporter::Reader reader([&](const ActivitySession& session) { packed.add(session); });
        reader.read(text());
        reader.finish();
        benchmark::DoNotOptimize(packed.rows().size());
    }
    countText(state);
}
BENCHMARK(sessionsPacked)->Unit(benchmark::kMillisecond);

void sessionsWritten(benchmark::State& state) {
    text();
    for ([[maybe_unused]] auto _ : state)
        CSVExporter::write(exported(), calendar(), [](std::string_view piece) { benchmark::DoNotOptimize(piece); });
    countText(state);
}
BENCHMARK(sessionsWritten)->Unit(benchmark::kMillisecond);

PackedSessions packed() {
    PackedSessions made;
    for (const auto& session : history())
        made.add(session);
    return made;
}

/// A folder beside the benchmark, on a real disk rather than in memory.
class Target {
public:
    ~Target() { fs::remove_all(folder_); }

    void make() {
        database_.reset();
        fs::remove_all(folder_);
        database_.emplace(folder_ / "activity.sqlite", queue_);
    }
    Database& database() { return *database_; }

private:
    const fs::path folder_ = fs::current_path() / "kestrio-import-benchmark";
    VirtualTime time_{lastDay};
    VirtualQueue queue_{time_, "Kestrio.database"};
    std::optional<Database> database_;
};

/// Into an empty database, or with an argument of 1 into one that has everything already.
void sessionsImported(benchmark::State& state) {
    Target target;
    target.make();
    if (state.range(0) == 1)
        target.database().importSessions(packed());
    Database::ImportSummary summary;
    for ([[maybe_unused]] auto _ : state) {
        state.PauseTiming();
        if (state.range(0) == 0)
            target.make();
        auto sessions = packed();
        state.ResumeTiming();
        summary = std::get<Database::ImportSummary>(target.database().importSessions(std::move(sessions)));
    }
    state.counters["added"] = static_cast<double>(summary.added);
    state.counters["duplicates"] = static_cast<double>(summary.duplicates);
}
BENCHMARK(sessionsImported)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace kestrio
