// What one reading of a browser costs through the desktop's accessibility, before a real browser that runs on this
// desktop: `KESTRIO_BROWSER` is its bundle identifier, the application in front where it is not set.
//
// The first reading waits by design for a page to settle, 0.2 s; the walk alone is that reading without the wait.
#include "Tests/Support/RealBrowserReaders.h"

#include <benchmark/benchmark.h>
#include <memory>

namespace kestrio {
namespace {

/// Absent where there is nobody to read.
std::optional<std::string> browser(RealBrowserReaders& readers) {
    if (auto named = processEnvironment("KESTRIO_BROWSER"))
        return named;
    const auto front = readers.workspace.frontmostApplication();
    return front ? front->bundleIdentifier : std::nullopt;
}

struct Bench {
    MainQueue queue;
    std::unique_ptr<RealBrowserReaders> readers = std::make_unique<RealBrowserReaders>(queue);
    std::string id = browser(*readers).value_or("");

    /// False, and said so, where the browser does not answer.
    bool isReady(benchmark::State& state) {
        if (std::get<std::string>(readers->accessibility.frontTab(id)).empty()) {
            state.SkipWithError("no browser that can be read");
            return false;
        }
        return true;
    }
};

void frontTabWarm(benchmark::State& state) {
    Bench bench;
    if (!bench.isReady(state))
        return;
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(bench.readers->accessibility.frontTab(bench.id));
}
BENCHMARK(frontTabWarm)->Unit(benchmark::kMicrosecond);

void frontTabFirst(benchmark::State& state) {
    Bench bench;
    if (!bench.isReady(state))
        return;
    for ([[maybe_unused]] auto _ : state) {
        state.PauseTiming();
        AccessibilityBrowserReader reader(bench.queue, bench.readers->clock, bench.readers->places,
                                          bench.readers->applicationOf,
                                          titledWindows(bench.readers->windows, bench.readers->applicationOf));
        state.ResumeTiming();
        benchmark::DoNotOptimize(reader.frontTab(bench.id));
    }
}
BENCHMARK(frontTabFirst)->Unit(benchmark::kMillisecond);

void walkCold(benchmark::State& state) {
    Bench bench;
    if (!bench.isReady(state))
        return;
    const auto& readers = *bench.readers;
    for ([[maybe_unused]] auto _ : state) {
        const auto bus =
            AccessibilityBus::open(bench.queue, readers.clock, readers.places.sessionBus, readers.places.runtime);
        if (!bus)
            break;
        bus->allow(AccessibilityBrowserReader::tabDeadline);
        BrowserTree tree(*bus, readers.clock, readers.applicationOf);
        const auto frames = tree.frames(bench.id);
        for (const auto& frame : frames.value_or(std::vector<BrowserFrame>()))
            benchmark::DoNotOptimize(tree.page(frame));
    }
}
BENCHMARK(walkCold)->Unit(benchmark::kMicrosecond);

void windowsWarm(benchmark::State& state) {
    Bench bench;
    if (!bench.isReady(state))
        return;
    bench.readers->accessibility.windows(bench.id);
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(bench.readers->accessibility.windows(bench.id));
}
BENCHMARK(windowsWarm)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace kestrio
