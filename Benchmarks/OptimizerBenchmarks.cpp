// What it costs to hold an application of 12 processes with 8 threads each: real sleeping ones, which end with this.
// `p50` and `p99` are in seconds.
#include "Kestrio/Base/Clock.h"
#include "Kestrio/Optimizer/ProcessControl.h"
#include "Kestrio/Optimizer/SafetyNet.h"
#include "Kestrio/Platform/Linux/LinuxProcessSignals.h"
#include "Kestrio/Platform/Linux/LinuxProcessTable.h"
#include "Kestrio/Platform/Linux/LinuxWatchdog.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t processCount = 12;
constexpr int threadCount = 8;

class Crew {
public:
    Crew() {
        for (std::size_t i = 0; i < processCount; ++i) {
            const pid_t child = fork();
            if (child == 0) {
                prctl(PR_SET_PDEATHSIG, SIGKILL);
                for (int thread = 1; thread < threadCount; ++thread)
                    std::thread([] {
                        for (;;)
                            pause();
                    }).detach();
                for (;;)
                    pause();
            }
            members_.push_back(child);
        }
        usleep(100'000); // for the threads to be there
    }
    ~Crew() {
        for (const auto member : members_) {
            kill(member, SIGKILL);
            waitpid(member, nullptr, 0);
        }
    }
    Crew(const Crew&) = delete;
    Crew& operator=(const Crew&) = delete;

    const std::vector<pid_t>& members() const { return members_; }

private:
    std::vector<pid_t> members_;
};

/// The folder is where people's own is: not in memory.
struct Bench {
    Bench() {
        for (const auto member : crew.members())
            keys.push_back({member, table.counters(member).value().start});
    }
    ~Bench() {
        std::error_code ignored;
        fs::remove_all(folder, ignored);
    }
    Bench(const Bench&) = delete;
    Bench& operator=(const Bench&) = delete;

    static fs::path makeFolder() {
        std::string name = (fs::path(std::getenv("HOME") ? std::getenv("HOME") : "/tmp") / ".kestrio-XXXXXX").string();
        return mkdtemp(name.data()) ? fs::path(name) : fs::path("/tmp");
    }

    Crew crew;
    const fs::path folder = makeFolder();
    LinuxProcessTable table{{}, nullptr};
    LinuxProcessSignals signals{{}};
    LinuxWatchdog watchdog{{.rescue = "/nonexistent"}};
    SafetyNet net{{folder, {getpid(), table.counters(getpid()).value().start}}, signals, watchdog};
    ProcessControl control{table, signals, net};
    std::vector<ProcessKey> keys;
};

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
    Bench bench;
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
    Bench bench;
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
    Bench bench;
    std::vector<SlowedProcess> slowed;
    measure(
        state, [] {}, [&] { slowed = bench.control.slow(bench.keys); },
        [&] {
            bench.control.restore(slowed);
            bench.net.record({}, {});
        });
}

void restore(benchmark::State& state) {
    Bench bench;
    std::vector<SlowedProcess> slowed;
    measure(
        state, [&] { slowed = bench.control.slow(bench.keys); }, [&] { bench.control.restore(slowed); },
        [&] { bench.net.record({}, {}); });
}

/// What the host's own tools take for the same, all threads of a process at a time.
void restoreByTools(benchmark::State& state) {
    Bench bench;
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
    Bench bench;
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
