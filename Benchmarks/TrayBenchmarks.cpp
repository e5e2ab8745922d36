// What the icons of the bar cost the agent: drawing one in all sizes, a whole update of an icon on the bus (`update`,
// in a desktop with a bus, as Tools/virtual-desktop makes one), and today's time: added up by the database, beside the
// report that a panel would build for it (`timeByReport`).
#include "Kestrio/Activity/Database.h"
#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Base/VirtualQueue.h"
#include "Kestrio/Drawing/TrayIcons.h"
#include "Kestrio/Platform/Linux/BusConnection.h"
#include "Kestrio/Platform/Linux/StatusNotifierTray.h"
#include "Kestrio/Reports/ReportBuilder.h"
#include "Tests/Examples/ExampleHistory.h"

#include <benchmark/benchmark.h>
#include <filesystem>

namespace kestrio {
namespace {

MenuBarLabel statusLabel(std::int64_t minutes) {
    return menuBarLabel(TrackingState::tracking, Seconds(60.0 * static_cast<double>(minutes % 1440)), {});
}

SystemMenuLabel systemLabel(std::int64_t percent) {
    return systemMenuLabel({}, static_cast<double>(percent % 100) / 100, {});
}

void drawStatus(benchmark::State& state) {
    std::int64_t minutes = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(trayIcon(statusLabel(++minutes)));
}
BENCHMARK(drawStatus)->Unit(benchmark::kMicrosecond);

void drawSystem(benchmark::State& state) {
    std::int64_t percent = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(trayIcon(systemLabel(++percent)));
}
BENCHMARK(drawSystem)->Unit(benchmark::kMicrosecond);

/// Nobody but a panel makes the icon known; without one this is the cost of keeping it.
void update(benchmark::State& state) {
    const auto address = BusConnection::address(BusConnection::Bus::session);
    WorkerQueue queue("tray");
    auto tray = queue.sync([&] { return std::make_unique<StatusNotifierTray>(queue, address.value_or("")); });
    TrayItem item;
    item.id = "kestrio";
    std::int64_t minutes = 0;
    for (auto _ : state) {
        item.icon = trayIcon(statusLabel(++minutes));
        queue.sync([&] { tray->show(item); });
    }
    state.SetLabel(queue.sync([&] { return tray->isShown(); }) ? "in a bar" : "nobody shows it");
    queue.sync([&] { tray.reset(); });
}
BENCHMARK(update)->Unit(benchmark::kMicrosecond);

/// A month of a heavy user, in a file beside the benchmark.
class HeavyMonth {
public:
    HeavyMonth() {
        std::filesystem::remove_all(folder_);
        writeHistory(folder_ / "activity.sqlite",
                     exampleHistory(end, calendar, {.seed = 1, .days = 30, .sessionsPerWorkday = 2000}));
        database.emplace(folder_ / "activity.sqlite", queue_);
    }
    ~HeavyMonth() { std::filesystem::remove_all(folder_); }

    const Calendar calendar{"en_GB", "Europe/Berlin"};
    const Date end{1'793'900'000};
    std::optional<Database> database;

private:
    const std::filesystem::path folder_ = std::filesystem::current_path() / "kestrio-tray-benchmark";
    VirtualTime time_{end};
    VirtualQueue queue_{time_, "Kestrio.database"};
};

HeavyMonth& month() {
    static HeavyMonth history;
    return history;
}

void timeBySum(benchmark::State& state) {
    const auto day = month().calendar.day(month().end);
    for (auto _ : state)
        benchmark::DoNotOptimize(month().database->timeInFront(day, std::nullopt));
}
BENCHMARK(timeBySum)->Unit(benchmark::kMicrosecond);

void timeByReport(benchmark::State& state) {
    const auto day = month().calendar.day(month().end);
    for (auto _ : state)
        benchmark::DoNotOptimize(ReportBuilder::build(month().database->sessions(day.start, day.end), day,
                                                      Granularity::hour, month().calendar, Classification()));
}
BENCHMARK(timeByReport)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace kestrio
