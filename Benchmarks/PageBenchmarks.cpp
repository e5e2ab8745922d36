// What each page costs over a month of sixty thousand sessions, once the report is there: paid at every refresh, and
// for the filters and searches at every key.
#include "Kestrio/Pages/AppsPage.h"
#include "Kestrio/Pages/DayStrips.h"
#include "Kestrio/Pages/ProjectsPage.h"
#include "Kestrio/Pages/TimelinePage.h"
#include "Kestrio/Pages/TodayPanel.h"
#include "Kestrio/Pages/WebsitesPage.h"
#include "Kestrio/Pages/YouTubePage.h"
#include "Kestrio/Reports/ReportBuilder.h"
#include "Tests/Examples/ExampleHistory.h"

#include <benchmark/benchmark.h>

namespace kestrio {
namespace {

struct HeavyMonth {
    HeavyMonth() {
        auto sessions = exampleHistory(now, calendar, {.days = 31, .sessionsPerWorkday = 2600});
        count = sessions.size();
        report = ReportBuilder::build(std::move(sessions), calendar.month(now), Granularity::day, calendar, {});
    }

    const Calendar calendar{"en_GB", "Europe/Berlin"};
    const Date now = calendar.date(2026, 10, 31, 20);
    const Viewpoint viewpoint{now, calendar};
    std::size_t count = 0;
    ActivityReport report;
};

const HeavyMonth& month() {
    static const HeavyMonth one;
    return one;
}

template <class Make>
void measure(benchmark::State& state, Make make) {
    const auto& heavy = month();
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(make(heavy.report, heavy.viewpoint));
    state.counters["sessions"] = static_cast<double>(heavy.count);
}

void overview(benchmark::State& state) {
    measure(state, [](const auto& report, const auto& viewpoint) {
        return overviewPage(report, RangeMode::month, Thumbnails::on, viewpoint);
    });
}

void apps(benchmark::State& state) {
    measure(state, [](const auto& report, const auto&) { return appsPage(report); });
}

void appPane(benchmark::State& state) {
    measure(state, [](const auto& report, const auto& viewpoint) {
        return appDetail(report, {.bundleID = report.apps.front().bundleID, .sort = AppSort::browser}, viewpoint);
    });
}

void websites(benchmark::State& state) {
    measure(state, [](const auto& report, const auto&) { return websitesPage(report, {}); });
}

void websitesFiltered(benchmark::State& state) {
    measure(state, [](const auto& report, const auto&) { return websitesPage(report, ItemFilter("no such site")); });
}

void sitePane(benchmark::State& state) {
    measure(state, [](const auto& report, const auto& viewpoint) {
        return domainDetail(report, {.domain = report.domains.front().domain}, viewpoint);
    });
}

void youtube(benchmark::State& state) {
    measure(state, [](const auto& report, const auto& viewpoint) { return youtubePage(report, {}, viewpoint); });
}

void projects(benchmark::State& state) {
    measure(state, [](const auto& report, const auto&) { return projectsPage(report); });
}

void projectPane(benchmark::State& state) {
    measure(state, [](const auto& report, const auto& viewpoint) {
        return projectDetail(report, report.projects.front().name, {}, viewpoint);
    });
}

void timeline(benchmark::State& state) {
    measure(state, [](const auto& report, const auto& viewpoint) { return timelinePage(report, {}, viewpoint); });
}

void timelineSearched(benchmark::State& state) {
    measure(state, [](const auto& report, const auto& viewpoint) {
        return timelinePage(report, {.text = "no such thing"}, viewpoint);
    });
}

void timelineRow(benchmark::State& state) {
    measure(state, [](const auto& report, const auto& viewpoint) {
        return timelineBlockRow(report.blocks.back(), "", viewpoint.calendar);
    });
}

void strips(benchmark::State& state) {
    measure(state, [](const auto& report, const auto& viewpoint) { return dayStrips(report, viewpoint); });
}

void stripUnderPointer(benchmark::State& state) {
    const auto made = dayStrips(month().report, month().viewpoint);
    measure(state, [&](const auto&, const auto& viewpoint) {
        return stripReadout(stripHover(made, made.days.front(), false, 400, 800), true, viewpoint.calendar);
    });
}

void panel(benchmark::State& state) {
    measure(state,
            [](const auto& report, const auto& viewpoint) { return todayPanel(report, {}, viewpoint.calendar); });
}

BENCHMARK(overview)->Unit(benchmark::kMicrosecond);
BENCHMARK(apps)->Unit(benchmark::kMicrosecond);
BENCHMARK(appPane)->Unit(benchmark::kMicrosecond);
BENCHMARK(websites)->Unit(benchmark::kMicrosecond);
BENCHMARK(websitesFiltered)->Unit(benchmark::kMicrosecond);
BENCHMARK(sitePane)->Unit(benchmark::kMicrosecond);
BENCHMARK(youtube)->Unit(benchmark::kMicrosecond);
BENCHMARK(projects)->Unit(benchmark::kMicrosecond);
BENCHMARK(projectPane)->Unit(benchmark::kMicrosecond);
BENCHMARK(timeline)->Unit(benchmark::kMicrosecond);
BENCHMARK(timelineSearched)->Unit(benchmark::kMicrosecond);
BENCHMARK(timelineRow)->Unit(benchmark::kMicrosecond);
BENCHMARK(strips)->Unit(benchmark::kMicrosecond);
BENCHMARK(stripUnderPointer)->Unit(benchmark::kMicrosecond);
BENCHMARK(panel)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace kestrio
