// What the resource log costs to keep and to look at, in real files: a year of minutes, and a week of a machine that
// never sleeps with everything, at a reading every second. `bytesPerDay` counts what a day of that takes on the disk,
// in all and for the seconds alone.
#include "Kestrio/Base/VirtualQueue.h"
#include "Kestrio/Resources/ResourceExporter.h"
#include "Tests/Examples/ExampleResourceLog.h"

#include <benchmark/benchmark.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

const Calendar calendar("en_GB", "Europe/Berlin");
constexpr Date end{1'793'900'040}; // in autumn 2026

/// Made once, in a folder beside the benchmark, on a real disk rather than in memory.
class ExampleLog {
public:
    ExampleLog(const char* name, const ExampleResourceLogOptions& options)
        : folder_(fs::current_path() / (std::string("kestrio-resource-benchmark-") + name)), days_(options.days) {
        fs::remove_all(folder_);
        writeResourceLog(folder_ / ResourceStore::fileName, end, calendar, options);
        store_.emplace(folder_ / ResourceStore::fileName, queue_, clock_, DatabaseAccess::readOnly);
    }
    ~ExampleLog() {
        store_.reset();
        fs::remove_all(folder_);
    }
    ExampleLog(const ExampleLog&) = delete;
    ExampleLog& operator=(const ExampleLog&) = delete;

    ResourceStore& store() { return *store_; }
    const fs::path& folder() const { return folder_; }
    double bytesPerDay() const { return static_cast<double>(store_->fileSize()) / days_; }

    static DateInterval lastDays(double days) { return {end - Seconds(86'400 * days), end}; }

private:
    const fs::path folder_;
    const int days_;
    const SystemClock clock_;
    VirtualTime time_{end};
    VirtualQueue queue_{time_, ResourceStore::queueLabel};
    std::optional<ResourceStore> store_;
};

ExampleLog& year() {
    static ExampleLog log("year", {.days = 365, .detailDays = 0, .hasApps = false, .sleeps = false});
    return log;
}

ExampleLog& week() {
    static ExampleLog log("week", {.sleeps = false});
    return log;
}

ExampleLog& weekOfSeconds() {
    static ExampleLog log("seconds", {.hasApps = false, .sleeps = false});
    return log;
}

constexpr std::int64_t points = 600;

std::int64_t bucketOf(DateInterval range) {
    return static_cast<std::int64_t>(range.duration().count()) / points;
}

void secondsOfSevenDays(benchmark::State& state) {
    auto& store = week().store();
    const auto range = ExampleLog::lastDays(7);
    std::size_t found = 0;
    for ([[maybe_unused]] auto _ : state)
        found = store.secondsSeries(range, bucketOf(range)).size();
    state.counters["points"] = static_cast<double>(found);
}

void secondsOfAnHour(benchmark::State& state) {
    auto& store = week().store();
    const auto range = ExampleLog::lastDays(1.0 / 24);
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(store.secondsSeries(range, bucketOf(range)));
}

void minutesOfAYear(benchmark::State& state) {
    auto& store = year().store();
    const auto range = ExampleLog::lastDays(365);
    std::size_t found = 0;
    for ([[maybe_unused]] auto _ : state)
        found = store.systemSeries(range, bucketOf(range)).size();
    state.counters["points"] = static_cast<double>(found);
}

void setupsOfNinetyDays(benchmark::State& state) {
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(year().store().configGroups(ExampleLog::lastDays(90)));
}

void hoursOfNinetyDays(benchmark::State& state) {
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(year().store().hourProfiles(ExampleLog::lastDays(90)));
}

void appsOfSevenDays(benchmark::State& state) {
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(week().store().appSummaries(ExampleLog::lastDays(7)));
}

void worstOfSevenDays(benchmark::State& state) {
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(
            week().store().worstSeconds(ExampleLog::lastDays(7), ResourceStore::SecondMeasure::lag, 10));
}

void exportOfSevenDays(benchmark::State& state) {
    ResourceExporter::Surroundings surroundings;
    surroundings.calendar = calendar;
    auto& log = week();
    for ([[maybe_unused]] auto _ : state) {
        const auto made = ResourceExporter::exportEverything(
            {.destination = log.folder(),
             .interval = ExampleLog::lastDays(7),
             .title = "",
             .now = end,
             .sessions = [](DateInterval) { return std::vector<ResourceExporter::UsedSession>(); }},
            surroundings, log.store());
        if (made.error)
            state.SkipWithError(made.error->c_str());
        state.PauseTiming();
        fs::remove_all(made.folder);
        state.ResumeTiming();
    }
}

void bytesPerDay(benchmark::State& state) {
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(week().bytesPerDay());
    state.counters["MB"] = week().bytesPerDay() / 1e6;
    state.counters["MBWithoutApps"] = weekOfSeconds().bytesPerDay() / 1e6;
}

BENCHMARK(secondsOfAnHour)->Unit(benchmark::kMillisecond);
BENCHMARK(secondsOfSevenDays)->Unit(benchmark::kMillisecond);
BENCHMARK(minutesOfAYear)->Unit(benchmark::kMillisecond);
BENCHMARK(setupsOfNinetyDays)->Unit(benchmark::kMillisecond);
BENCHMARK(hoursOfNinetyDays)->Unit(benchmark::kMillisecond);
BENCHMARK(appsOfSevenDays)->Unit(benchmark::kMillisecond);
BENCHMARK(worstOfSevenDays)->Unit(benchmark::kMillisecond);
BENCHMARK(exportOfSevenDays)->Unit(benchmark::kMillisecond);
BENCHMARK(bytesPerDay);

} // namespace
} // namespace kestrio
