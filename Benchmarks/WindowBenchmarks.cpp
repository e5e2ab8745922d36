// The dashboard over a month of sixty thousand sessions, on no screen: opening it, and turning to each page, up to the
// picture of it.
#include "Kestrio/Views/Window/DashboardModel.h"
#include "Kestrio/Views/Window/WindowApplication.h"
#include "Kestrio/Views/Window/Windows.h"
#include "Tests/Examples/ExampleHistory.h"
#include "Tests/Views/Window/WindowStage.h"

#include <QCoreApplication>
#include <QImage>
#include <QQuickWindow>
#include <benchmark/benchmark.h>

namespace kestrio {
namespace {

std::vector<ActivitySession> hugeMonth() {
    const Calendar calendar("en_GB", "Europe/Berlin");
    const auto now = calendar.date(2026, 11, 20, 17, 30);
    auto sessions = exampleHistory(now, calendar, {.days = 30, .sessionsPerWorkday = 2'700});
    std::erase_if(sessions, [&](const ActivitySession& session) { return session.end > now; });
    return sessions;
}

WindowStage& hugeStage() {
    static WindowStage stage(hugeMonth(), RangeMode::month);
    return stage;
}

void draw(QQuickWindow& window) {
    hugeStage().settle();
    QCoreApplication::processEvents();
    benchmark::DoNotOptimize(window.grabWindow());
}

void openDashboard(benchmark::State& state) {
    for (auto _ : state) {
        Windows windows(hugeStage().parts);
        windows.show(DashboardRequest{"overview"});
        draw(*windows.dashboard());
    }
}
BENCHMARK(openDashboard)->Unit(benchmark::kMillisecond);

void turnToPage(benchmark::State& state, const std::string& page) {
    Windows windows(hugeStage().parts);
    for (auto _ : state) {
        state.PauseTiming();
        windows.show(DashboardRequest{page == "overview" ? "timeline" : "overview"});
        draw(*windows.dashboard());
        state.ResumeTiming();
        windows.show(DashboardRequest{page});
        draw(*windows.dashboard());
    }
}
BENCHMARK_CAPTURE(turnToPage, overview, "overview")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(turnToPage, timeline, "timeline")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(turnToPage, apps, "apps")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(turnToPage, websites, "websites")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(turnToPage, youtube, "youtube")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(turnToPage, projects, "projects")->Unit(benchmark::kMillisecond);

} // namespace
} // namespace kestrio

int main(int count, char** words) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const kestrio::WindowApplication application(count, words);
    benchmark::Initialize(&count, words);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
