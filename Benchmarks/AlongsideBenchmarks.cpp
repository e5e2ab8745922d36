// What a check of the alongside activity costs, every four seconds, without what the readers take.
#include "Kestrio/Base/VirtualQueue.h"
#include "Tests/Activity/AlongsideBench.h"

#include <benchmark/benchmark.h>

namespace kestrio {
namespace {

const std::string chrome = "com.google.Chrome";
const Rectangle whole{0, 0, 1920, 1080};

struct Desktop {
    VirtualTime time{Date(1'700'000'000)};
    ScriptedWorkspace workspace;
    ScriptedWindowTitles titles;
    AlongsideBench bench{time, workspace, titles};

    Desktop() {
        for (int i = 0; i < 12; ++i)
            bench.run("org.example.app" + std::to_string(i), "Application " + std::to_string(i), 100 + i, "A title");
        bench.run(chrome, "Google Chrome", 2);
    }

    void check(benchmark::State& state) {
        const auto front = workspace.running.front();
        for ([[maybe_unused]] auto _ : state) {
            benchmark::DoNotOptimize(bench.detection.evidence(front, true));
            bench.reader.asked.clear();
        }
    }
};

std::vector<BrowserTab> pages(int count) {
    std::vector<BrowserTab> tabs;
    for (int i = 0; i < count; ++i)
        tabs.push_back(
            tab("https://www.example.org/section/" + std::to_string(i) + "/an-article-of-usual-length?ref=home",
                "An article of usual length, number " + std::to_string(i) + " - Example"));
    return tabs;
}

void checkWithNothingPlaying(benchmark::State& state) {
    Desktop desktop;
    desktop.check(state);
}
BENCHMARK(checkWithNothingPlaying);

void checkWithAPlayer(benchmark::State& state) {
    Desktop desktop;
    desktop.bench.audio = {"org.example.app7"};
    desktop.check(state);
}
BENCHMARK(checkWithAPlayer)->Unit(benchmark::kMicrosecond);

/// All tabs are looked at, and none is of a media site.
void checkWithABrowserThatSounds(benchmark::State& state) {
    Desktop desktop;
    desktop.bench.audio = {chrome};
    desktop.bench.open(chrome, {browserWindow(whole, pages(static_cast<int>(state.range(0))))});
    desktop.check(state);
}
BENCHMARK(checkWithABrowserThatSounds)->Arg(1)->Arg(30)->Arg(300)->Unit(benchmark::kMicrosecond);

void checkWithABrowserThatIsWatched(benchmark::State& state) {
    Desktop desktop;
    desktop.bench.audio = desktop.bench.video = {chrome};
    desktop.bench.screen = {{100, whole, true}, {2, {1920, 0, 1920, 1080}, true}};
    auto film = browserWindow({1920, 0, 1920, 1080}, pages(1));
    film.activeTab = film.tabs.front() = tab("https://www.youtube.com/watch?v=dQw4w9WgXcQ", "A film - YouTube");
    desktop.bench.open(chrome, {browserWindow(whole, pages(29)), film});
    desktop.check(state);
}
BENCHMARK(checkWithABrowserThatIsWatched)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace kestrio
