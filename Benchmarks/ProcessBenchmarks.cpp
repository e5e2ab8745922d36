// What a scan of all processes costs, beside what others take for the same: `ps`, and libproc2 with the same fields.
//
// The machine's own processes are topped up to 300 with sleeping ones; 3,000 are a made-up /proc in memory, where the
// files cost less to open than the kernel's and nothing is kept open. `per_process` is in seconds, `allocations` of the
// scan as a whole.
#include "Kestrio/Base/Clock.h"
#include "Kestrio/Platform/Linux/LinuxProcessTable.h"
#include "Kestrio/Resources/AppProcessScanner.h"
#include "Tests/Support/AllocationCounter.h"

#include <benchmark/benchmark.h>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <libproc2/pids.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

/// Enough sleeping children for the machine to have so many processes.
class Crowd {
public:
    explicit Crowd(std::size_t wanted) {
        const auto there = LinuxProcessTable({}, nullptr).processes().size();
        for (auto count = there; count < wanted; ++count) {
            const auto child = fork();
            if (child == 0) {
                prctl(PR_SET_PDEATHSIG, SIGKILL);
                while (true)
                    pause();
            }
            children_.push_back(child);
        }
    }
    ~Crowd() {
        for (const auto child : children_)
            kill(child, SIGKILL);
        for (const auto child : children_)
            waitpid(child, nullptr, 0);
    }
    Crowd(const Crowd&) = delete;
    Crowd& operator=(const Crowd&) = delete;

private:
    std::vector<pid_t> children_;
};

/// A made-up /proc in memory.
class MadeUpProcesses {
public:
    explicit MadeUpProcesses(int count) {
        fs::remove_all(path);
        for (int process = 1; process <= count; ++process) {
            const auto folder = path / std::to_string(process);
            fs::create_directories(folder);
            const auto number = std::to_string(process);
            write(folder / "stat", number + " (program) S " + (process % 50 == 1 ? "1" : std::to_string(process - 1)) +
                                       " 1 1 0 -1 4194304 1234 55 66 77 120 30 8 9 20 0 12 0 " + number +
                                       " 53841920 5253 18446744073709551615 1 1 0 0 0 0 0 4096 1256 0 0 0 17 1 0 0 0 0 "
                                       "0 0 0 0 0 0 0 0 0\n");
            write(folder / "statm", "765 428 399 5 0 90 0\n");
            write(folder / "io", "rchar: 1\nwchar: 1\nsyscr: 1\nsyscw: 1\nread_bytes: 4096\nwrite_bytes: 8192\n");
            write(folder / "status", realStatus());
            write(folder / "cgroup", "0::/\n");
            fs::create_symlink("/usr/bin/program-" + std::to_string(process / 50), folder / "exe");
        }
    }
    ~MadeUpProcesses() { fs::remove_all(path); }
    MadeUpProcesses(const MadeUpProcesses&) = delete;
    MadeUpProcesses& operator=(const MadeUpProcesses&) = delete;

    const fs::path path = fs::path("/dev/shm") / ("kestrio-benchmark-" + std::to_string(getpid()));

private:
    static void write(const fs::path& file, const std::string& text) { std::ofstream(file) << text; }
    static std::string realStatus() {
        std::ifstream own("/proc/self/status");
        return {std::istreambuf_iterator<char>(own), {}};
    }
};

void report(benchmark::State& state, std::size_t processes, std::size_t allocated) {
    const auto count = static_cast<double>(processes);
    state.counters["processes"] = count;
    state.counters["per_process"] =
        benchmark::Counter(count, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
    if (allocated > 0)
        state.counters["allocations"] = static_cast<double>(allocated) / static_cast<double>(state.iterations());
}

void scan(benchmark::State& state, LinuxProcessTable& table) {
    const SystemClock clock;
    AppProcessScanner scanner(table, clock, Seconds(40));
    scanner.scan();
    scanner.scan();
    const auto before = allocationCount();
    for (auto _ : state)
        benchmark::DoNotOptimize(scanner.scan());
    report(state, scanner.processCount(), allocationCount() - before);
}

void scanOf300(benchmark::State& state) {
    const Crowd crowd(300);
    LinuxProcessTable table(LinuxProcessTable::setupOfThisMachine(), nullptr);
    scan(state, table);
}
BENCHMARK(scanOf300)->Unit(benchmark::kMicrosecond);

/// Every process read in full every time, as if all of them had run.
void scanOf300WithoutTheClock(benchmark::State& state) {
    const Crowd crowd(300);
    LinuxProcessTable table({}, nullptr);
    scan(state, table);
}
BENCHMARK(scanOf300WithoutTheClock)->Unit(benchmark::kMicrosecond);

void firstScanOf300(benchmark::State& state) {
    const Crowd crowd(300);
    const SystemClock clock;
    std::size_t count = 0;
    const auto before = allocationCount();
    for (auto _ : state) {
        LinuxProcessTable table(LinuxProcessTable::setupOfThisMachine(), nullptr);
        AppProcessScanner scanner(table, clock, Seconds(40));
        benchmark::DoNotOptimize(scanner.scan());
        count = scanner.processCount();
    }
    report(state, count, allocationCount() - before);
}
BENCHMARK(firstScanOf300)->Unit(benchmark::kMicrosecond);

void libproc2Of300(benchmark::State& state) {
    const Crowd crowd(300);
    // The same figures; disk traffic and the program's path, which we read too, are left out.
    pids_item items[] = {PIDS_ID_PID,  PIDS_TIME_START,  PIDS_TICS_ALL,      PIDS_FLT_MAJ, PIDS_PROCESSOR,
                         PIDS_MEM_RES, PIDS_VM_RSS_ANON, PIDS_VM_RSS_SHARED, PIDS_VM_SWAP, PIDS_CMD};
    pids_info* info = nullptr;
    procps_pids_new(&info, items, static_cast<int>(std::size(items)));
    int count = 0;
    for (auto _ : state)
        if (const auto* fetched = procps_pids_reap(info, PIDS_FETCH_TASKS_ONLY))
            count = fetched->counts->total;
    procps_pids_unref(&info);
    report(state, static_cast<std::size_t>(count), 0);
}
BENCHMARK(libproc2Of300)->Unit(benchmark::kMicrosecond);

void psOf300(benchmark::State& state) {
    const Crowd crowd(300);
    const auto count = LinuxProcessTable({}, nullptr).processes().size();
    for (auto _ : state)
        if (std::system("exec ps -eo pid,comm,rss,time >/dev/null") != 0)
            state.SkipWithError("no ps");
    report(state, count, 0);
}
BENCHMARK(psOf300)->Unit(benchmark::kMicrosecond)->UseRealTime();

/// What starting any program takes, to be taken off the one above.
void startingAProgram(benchmark::State& state) {
    for (auto _ : state)
        if (std::system("exec true >/dev/null") != 0)
            state.SkipWithError("no true");
}
BENCHMARK(startingAProgram)->Unit(benchmark::kMicrosecond)->UseRealTime();

void scanOf3000MadeUp(benchmark::State& state) {
    const MadeUpProcesses processes(3'000);
    LinuxProcessTable table({.processes = processes.path, .sys = "/sys"}, nullptr);
    scan(state, table);
}
BENCHMARK(scanOf3000MadeUp)->Unit(benchmark::kMicrosecond);

/// With a clock that stands still: nothing has run.
void scanOf3000MadeUpThatSleep(benchmark::State& state) {
    const MadeUpProcesses processes(3'000);
    LinuxProcessTable table({.processes = processes.path,
                             .sys = "/sys",
                             .clock = [](pid_t) { return std::optional<std::uint64_t>(1); },
                             .mostDescriptors = 4'000},
                            nullptr);
    scan(state, table);
}
BENCHMARK(scanOf3000MadeUpThatSleep)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace kestrio
