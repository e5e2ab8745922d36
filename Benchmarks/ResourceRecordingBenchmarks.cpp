// What the resource log costs on this machine: a tick of the sampler with and without a look at every process, and what
// the store takes for what a minute leaves behind.
#include "Kestrio/Base/Clock.h"
#include "Kestrio/Base/VirtualQueue.h"
#include "Kestrio/Platform/Linux/LinuxDisks.h"
#include "Kestrio/Platform/Linux/LinuxKernelCounters.h"
#include "Kestrio/Platform/Linux/LinuxMemoryTraffic.h"
#include "Kestrio/Platform/Linux/LinuxOwnUse.h"
#include "Kestrio/Platform/Linux/LinuxProcessTable.h"
#include "Kestrio/Resources/ResourceSampler.h"
#include "Kestrio/Resources/ResourceStore.h"

#include <benchmark/benchmark.h>
#include <filesystem>
#include <unistd.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

struct ThisMachine {
    SystemClock clock;
    LinuxProcessTable processes{LinuxProcessTable::setupOfThisMachine(), nullptr};
    LinuxKernelCounters kernel;
    LinuxMemoryTraffic memoryTraffic;
    LinuxDisks disks{{}};
    ResourceSampler sampler{
        {.clock = clock, .processes = processes, .kernel = kernel, .disks = disks, .memoryTraffic = memoryTraffic}};
};

void tick(benchmark::State& state, bool scanApps) {
    ThisMachine machine;
    const ResourceContext context{.frontmost = "org.example.front", .scanApps = scanApps};
    machine.sampler.sample(context, machine.clock.now());
    for (auto _ : state)
        benchmark::DoNotOptimize(machine.sampler.sample(context, machine.clock.now()));
    state.counters["processes"] = static_cast<double>(machine.processes.processes().size());
}
void tickWithoutScan(benchmark::State& state) {
    tick(state, false);
}
void tickWithScan(benchmark::State& state) {
    tick(state, true);
}
BENCHMARK(tickWithoutScan)->Unit(benchmark::kMicrosecond);
BENCHMARK(tickWithScan)->Unit(benchmark::kMicrosecond);

void readingOfOwnUse(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(readOwnUse());
}
BENCHMARK(readingOfOwnUse)->Unit(benchmark::kMicrosecond);

/// A log in a file on the machine's drive.
struct Log {
    Log() { fs::remove_all(folder); }
    ~Log() { fs::remove_all(folder); }
    Log(const Log&) = delete;
    Log& operator=(const Log&) = delete;

    const fs::path folder = fs::path("/var/tmp") / ("kestrio-benchmark-" + std::to_string(getpid()));
    VirtualTime time{Date(1'700'000'000)};
    VirtualQueue queue{time, ResourceStore::queueLabel};
};

void writeOfAMinuteWith60Applications(benchmark::State& state) {
    Log log;
    ResourceStore store(log.folder / ResourceStore::fileName, log.queue, log.time);
    std::vector<AppMinute> apps(60);
    for (std::size_t i = 0; i < apps.size(); ++i)
        apps[i].appID = apps[i].name = "org.example.app" + std::to_string(i);
    double minute = 1'699'999'980;
    for (auto _ : state) {
        for (auto& app : apps)
            app.minute = Date(minute);
        store.write({.minute = Date(minute), .frontApp = apps[0].appID, .config = tindra::OptimizerConfig::off()},
                    apps);
        log.time.runPending();
        minute += 60;
    }
}
BENCHMARK(writeOfAMinuteWith60Applications)->Unit(benchmark::kMicrosecond);

void writeOf30Seconds(benchmark::State& state) {
    Log log;
    ResourceStore store(log.folder / ResourceStore::fileName, log.queue, log.time);
    std::vector<SystemSecond> seconds(30);
    double at = 1'700'000'000;
    for (auto _ : state) {
        for (auto& second : seconds) {
            second.at = Date(at++);
            second.frontApp = "org.example.front";
        }
        store.write(seconds);
        log.time.runPending();
    }
}
BENCHMARK(writeOf30Seconds)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace kestrio
