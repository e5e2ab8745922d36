// What reading a browser by the tab bridge costs: with thirty tabs in three windows.
#include "Kestrio/Platform/Linux/BridgeBrowserReader.h"
#include "Kestrio/Platform/Linux/TabMessages.h"

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>

namespace kestrio {
namespace {

std::string message() {
    auto windows = nlohmann::json::array();
    for (int window = 0; window < 3; ++window) {
        auto tabs = nlohmann::json::array();
        for (int tab = 0; tab < 10; ++tab)
            tabs.push_back(
                {{"url", "https://www.example.org/a/path/of/usual/length?and=a&query=" + std::to_string(tab)},
                 {"title", "A title of usual length, number " + std::to_string(tab)},
                 {"active", tab == 3},
                 {"audible", false},
                 {"muted", false}});
        windows.push_back({{"id", window},
                           {"type", "normal"},
                           {"state", "normal"},
                           {"focused", window == 1},
                           {"left", 0},
                           {"top", 0},
                           {"width", 1280},
                           {"height", 800},
                           {"tabs", tabs}});
    }
    return nlohmann::json{{"version", 1}, {"windows", windows}}.dump();
}

struct Bench {
    TabBoard board;
    BridgeBrowserReader reader{board};
    Bench() { board.put(1, "browser", bridgedWindows(message()).value_or(TabBoard::Windows())); }
};

void frontTabOfThirty(benchmark::State& state) {
    Bench bench;
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(bench.reader.frontTab("browser"));
}
BENCHMARK(frontTabOfThirty)->Unit(benchmark::kMicrosecond);

void windowsWithThirtyTabs(benchmark::State& state) {
    Bench bench;
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(bench.reader.windows("browser"));
}
BENCHMARK(windowsWithThirtyTabs)->Unit(benchmark::kMicrosecond);

/// Once for each change in the browser.
void takingInThirtyTabs(benchmark::State& state) {
    Bench bench;
    const auto text = message();
    for ([[maybe_unused]] auto _ : state)
        bench.board.put(1, "browser", bridgedWindows(text).value_or(TabBoard::Windows()));
}
BENCHMARK(takingInThirtyTabs)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace kestrio
