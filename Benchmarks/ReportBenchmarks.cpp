// What reports cost over three heavy years in a real database file, a million sessions: a day, a month, a year and
// everything. `rowsRaw` is the floor: the same rows through SQLite without keeping anything. `sessionsRead` is the
// reading as the program does it, `reportBuilt` the building from what was read, `report` both together.
#include "Kestrio/Activity/Database.h"
#include "Kestrio/Base/VirtualQueue.h"
#include "Kestrio/Reports/ReportBuilder.h"
#include "Tests/Examples/ExampleHistory.h"

#include <benchmark/benchmark.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

/// Made once for all cases, in a folder beside the benchmark, on a real disk rather than in memory.
class HeavyYears {
public:
    HeavyYears() {
        fs::remove_all(folder_);
        ExampleHistoryOptions options;
        options.days = 3 * 365;
        options.sessionsPerWorkday = 1060;
        writeHistory(file(), exampleHistory(end, calendar, options));
        database_.emplace(file(), queue_);
    }
    ~HeavyYears() { fs::remove_all(folder_); }

    fs::path file() const { return folder_ / "activity.sqlite"; }
    Database& database() { return *database_; }

    /// So many days before the last one.
    DateInterval range(std::int64_t days) const {
        const auto last = calendar.day(end).end;
        return {calendar.day(calendar.addingDays(end, static_cast<int>(1 - days))).start, last};
    }

    const Calendar calendar{"en_GB", "Europe/Berlin"};
    const Date end{1'793'900'000}; // in autumn 2026

private:
    const fs::path folder_ = fs::current_path() / "kestrio-report-benchmark";
    VirtualTime time_{end};
    VirtualQueue queue_{time_, "Kestrio.database"};
    std::optional<Database> database_;
};

HeavyYears& history() {
    static HeavyYears years;
    return years;
}

Granularity granularity(std::int64_t days) {
    return days == 1 ? Granularity::hour : Granularity::day;
}

void rowsRaw(benchmark::State& state) {
    auto& years = history();
    const auto range = years.range(state.range(0));
    sqlite3* raw = nullptr;
    sqlite3_open_v2(years.file().c_str(), &raw, SQLITE_OPEN_READONLY, nullptr);
    const sqlite::Connection connection(raw);
    std::size_t rows = 0;
    for ([[maybe_unused]] auto _ : state) {
        sqlite3_stmt* statement = nullptr;
        sqlite3_prepare_v2(raw,
                           "SELECT id, start, end, bundle_id, app_name, title, url, domain, project, kind "
                           "FROM sessions WHERE start >= ? AND start < ? AND end > ? ORDER BY start",
                           -1, &statement, nullptr);
        sqlite3_bind_double(statement, 1, range.start.seconds() - 43'200);
        sqlite3_bind_double(statement, 2, range.end.seconds());
        sqlite3_bind_double(statement, 3, range.start.seconds());
        rows = 0;
        for (; sqlite3_step(statement) == SQLITE_ROW; ++rows)
            for (int column = 0; column < 10; ++column) {
                const bool isText = column >= 3 && column <= 8;
                if (isText)
                    benchmark::DoNotOptimize(sqlite3_column_text(statement, column));
                else
                    benchmark::DoNotOptimize(sqlite3_column_double(statement, column));
            }
        sqlite3_finalize(statement);
    }
    state.counters["rows"] = static_cast<double>(rows);
}

void sessionsRead(benchmark::State& state) {
    auto& years = history();
    const auto range = years.range(state.range(0));
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(years.database().sessions(range.start, range.end));
}

void reportBuilt(benchmark::State& state) {
    auto& years = history();
    const auto range = years.range(state.range(0));
    const Classification classification;
    for ([[maybe_unused]] auto _ : state) {
        state.PauseTiming();
        auto sessions = years.database().sessions(range.start, range.end);
        std::optional<ActivityReport> report;
        state.ResumeTiming();
        report = ReportBuilder::build(std::move(sessions), range, granularity(state.range(0)), years.calendar,
                                      classification);
        state.PauseTiming();
        report.reset();
        state.ResumeTiming();
    }
}

void report(benchmark::State& state) {
    auto& years = history();
    const auto range = years.range(state.range(0));
    const Classification classification;
    for ([[maybe_unused]] auto _ : state) {
        const auto made = ReportBuilder::build(years.database().sessions(range.start, range.end), range,
                                               granularity(state.range(0)), years.calendar, classification);
        benchmark::DoNotOptimize(made.total);
    }
}

void reportUnderRules(benchmark::State& state) {
    auto& years = history();
    const auto range = years.range(state.range(0));
    Classification classification;
    for (const char* keyword : {"lantern", "budget", "trains", "sourdough", "review"})
        classification.rules.push_back({{}, keyword, "A project"});
    for ([[maybe_unused]] auto _ : state) {
        const auto made = ReportBuilder::build(years.database().sessions(range.start, range.end), range,
                                               granularity(state.range(0)), years.calendar, classification);
        benchmark::DoNotOptimize(made.total);
    }
}

void ranges(benchmark::internal::Benchmark* benchmark) {
    for (const int days : {1, 30, 61, 365, 1095}) // 61 of such days are sixty thousand sessions
        benchmark->Arg(days);
    benchmark->ArgName("days")->Unit(benchmark::kMillisecond);
}

BENCHMARK(rowsRaw)->Apply(ranges);
BENCHMARK(sessionsRead)->Apply(ranges);
BENCHMARK(reportBuilt)->Apply(ranges);
BENCHMARK(report)->Apply(ranges);
BENCHMARK(reportUnderRules)->Apply(ranges);

} // namespace
} // namespace kestrio
