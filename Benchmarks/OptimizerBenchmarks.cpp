// What it costs to hold an application of 12 processes with 8 threads each: real sleeping ones, which end with this.
// `p50` and `p99` are in seconds.
#include "Benchmarks/HeldCrew.h"
#include "Kestrio/Base/Clock.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdlib>
#include <functional>

namespace kestrio {
namespace {

void measure(benchmark::State& state, const std::function<void()>& prepare, const std::function<void()>& work,
             const std::function<void()>& undo) {
    const SystemClock clock;
    std::vector<double> seconds;
    for (auto _ : state) {
        prepare();
        const auto before = clock.uptime();
        work();
        const auto took = (clock.uptime() - before).count();
        undo();
        state.SetIterationTime(took);
        seconds.push_back(took);
    }
    std::sort(seconds.begin(), seconds.end());
    state.counters["p50"] = seconds[seconds.size() / 2];
    state.counters["p99"] = seconds[seconds.size() * 99 / 100];
}

void stopWithJournal(benchmark::State& state) {
    HeldCrew bench;
    std::vector<ProcessKey> frozen;
    measure(
        state, [] {}, [&] { frozen = bench.control.freeze(bench.keys); },
        [&] {
            bench.control.resume(frozen);
            bench.net.record({}, {});
        });
}

/// Until the last of them is seen to run.
void thaw(benchmark::State& state) {
    HeldCrew bench;
    std::vector<ProcessKey> frozen;
    measure(
        state, [&] { frozen = bench.control.freeze(bench.keys); },
        [&] {
            bench.control.resume(frozen);
            for (const auto& key : frozen)
                while (bench.signals.condition(key) == ProcessCondition::stopped) {
                }
        },
        [&] { bench.net.record({}, {}); });
}

void slowWithJournal(benchmark::State& state) {
    HeldCrew bench;
    std::vector<SlowedProcess> slowed;
    measure(
        state, [] {}, [&] { slowed = bench.control.slow(bench.keys); },
        [&] {
            bench.control.restore(slowed);
            bench.net.record({}, {});
        });
}

void restore(benchmark::State& state) {
    HeldCrew bench;
    std::vector<SlowedProcess> slowed;
    measure(
        state, [&] { slowed = bench.control.slow(bench.keys); }, [&] { bench.control.restore(slowed); },
        [&] { bench.net.record({}, {}); });
}

/// What the host's own tools take for the same, all threads of a process at a time.
void restoreByTools(benchmark::State& state) {
    HeldCrew bench;
    std::string script;
    for (const auto& key : bench.keys) {
        const auto pid = std::to_string(key.pid);
        script += "taskset -a -p -c 0-1 " + pid + "; chrt -a -o -p 0 " + pid + "; ionice -c 0 -p $(ls /proc/" + pid +
                  "/task); ";
    }
    script = "{ " + script + "} >/dev/null 2>&1";
    std::vector<SlowedProcess> slowed;
    measure(
        state, [&] { slowed = bench.control.slow(bench.keys); },
        [&] { benchmark::DoNotOptimize(std::system(script.c_str())); },
        [&] {
            bench.control.restore(slowed);
            bench.net.record({}, {});
        });
}

/// One sweep for the processes of an application.
void processesOfAnApplication(benchmark::State& state) {
    HeldCrew bench;
    for (auto _ : state)
        benchmark::DoNotOptimize(bench.control.processes(bench.keys.front().pid));
}

BENCHMARK(stopWithJournal)->UseManualTime()->Iterations(300)->Unit(benchmark::kMicrosecond);
BENCHMARK(thaw)->UseManualTime()->Iterations(300)->Unit(benchmark::kMicrosecond);
BENCHMARK(slowWithJournal)->UseManualTime()->Iterations(300)->Unit(benchmark::kMicrosecond);
BENCHMARK(restore)->UseManualTime()->Iterations(300)->Unit(benchmark::kMicrosecond);
BENCHMARK(restoreByTools)->UseManualTime()->Iterations(20)->Unit(benchmark::kMicrosecond);
BENCHMARK(processesOfAnApplication)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace kestrio
