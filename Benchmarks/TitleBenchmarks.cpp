// What the text tools cost, which run at every sample: a title made ready to be recorded, an address' site.
#include "Kestrio/Activity/BrowserInspector.h"
#include "Kestrio/Activity/MediaDomains.h"
#include "Kestrio/Classification/TextTools.h"
#include "Tests/Activity/RealTitles.h"

#include <benchmark/benchmark.h>
#include <iterator>

namespace kestrio {
namespace {

constexpr std::string_view addresses[] = {
    "https://www.example.org/",
    "https://mail.example.com/mail/u/0/#inbox/FMfcgzGxSbJvKqLpTrWnMzXcVbNm",
    "https://www.youtube.com/watch?v=dQw4w9WgXcQ&list=PL1234567890&index=3&t=42s",
    "https://en.m.wikipedia.org/wiki/Greenwich_Mean_Time?action=raw",
    "https://docs.example.com/document/d/1aBcDeFgHiJkLmNoPqRsTuVwXyZ/edit?tab=t.0#heading=h.abcdefghijkl",
    "http://localhost:8080/api/v1/sessions?from=2026-11-21T00:00:00Z",
    "https://bücher.example/größe ist alles?q=straße",
    "about:newtab",
};

/// Runs the work over and over on one after the other.
template <class Rows, class Work>
void onEach(benchmark::State& state, const Rows& rows, Work work) {
    std::size_t at = 0;
    for ([[maybe_unused]] auto _ : state) {
        work(rows[at]);
        at = (at + 1) % std::size(rows);
    }
    state.SetItemsProcessed(state.iterations());
}

void titleOfAnApplication(benchmark::State& state) {
    onEach(state, realTitles, [](const RealTitle& row) {
        benchmark::DoNotOptimize(TitleCleaner::removingAppName(TitleCleaner::clean(row.title), row.appName));
    });
}
BENCHMARK(titleOfAnApplication);

void titleOfABrowser(benchmark::State& state) {
    onEach(state, realBrowserTitles, [](const RealTitle& row) {
        const auto title = BrowserInspector::stripBrowserName(row.title, row.appName);
        benchmark::DoNotOptimize(TitleCleaner::removingAppName(TitleCleaner::clean(title), row.appName));
    });
}
BENCHMARK(titleOfABrowser);

void domainOfAnAddress(benchmark::State& state) {
    onEach(state, addresses, [](std::string_view url) { benchmark::DoNotOptimize(URLTools::domain(url)); });
}
BENCHMARK(domainOfAnAddress);

void isAMediaPage(benchmark::State& state) {
    onEach(state, addresses, [](std::string_view url) { benchmark::DoNotOptimize(isMediaPage(url)); });
}
BENCHMARK(isAMediaPage);

} // namespace
} // namespace kestrio
