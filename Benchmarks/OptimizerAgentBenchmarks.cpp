// What the optimizer costs in the agent, with real processes: a pass over 60 applications of 5 processes each, 10 of
// them frozen and 10 slowed, as CPU time; and how long it takes from the notice that an application of 12 processes was
// activated to the signal that lets its last process go on. `p50` and `p99` are in seconds.
#include "Benchmarks/HeldCrew.h"
#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Optimizer/Optimizer.h"
#include "Kestrio/Platform/Linux/LaunchDate.h"
#include "Kestrio/Platform/Linux/StopRefusals.h"
#include "Kestrio/Platform/Linux/X11Connection.h"
#include "Kestrio/Platform/Testing/MemoryKeyValueStore.h"
#include "Kestrio/Platform/Testing/ScriptedDesktop.h"

#include <algorithm>
#include <atomic>
#include <benchmark/benchmark.h>
#include <ctime>
#include <map>

namespace kestrio {
namespace {

/// The machine's processes, but with the crew parted among applications.
class PartedTable final : public ProcessTable {
public:
    std::map<pid_t, pid_t> mains;

    std::size_t activeProcessorCount() override { return real_.activeProcessorCount(); }
    std::vector<pid_t> processes() override { return real_.processes(); }
    std::optional<ProcessCounters> counters(pid_t process) override { return real_.counters(process); }
    std::optional<pid_t> responsible(pid_t process) override {
        const auto main = mains.find(process);
        return main == mains.end() ? real_.responsible(process) : main->second;
    }
    std::optional<std::string> programPath(pid_t process) override { return real_.programPath(process); }
    std::optional<ProcessApplication> application(pid_t process) override { return real_.application(process); }
    std::optional<ApplicationBundle> bundle(const std::string& path) override { return real_.bundle(path); }

private:
    LinuxProcessTable real_{{}, nullptr};
};

/// Notes when the last process was let go on.
class TimedSignals final : public ProcessSignals {
public:
    std::atomic<double> lastResume = 0; // uptime, seconds

    ProcessCondition condition(ProcessKey key) override { return real_.condition(key); }
    bool stop(ProcessKey key) override { return real_.stop(key); }
    bool resume(ProcessKey key) override {
        const bool isDone = real_.resume(key);
        lastResume = clock_.uptime().seconds();
        return isDone;
    }
    std::optional<ProcessPriority> priority(ProcessKey key) override { return real_.priority(key); }
    bool slow(ProcessKey key) override { return real_.slow(key); }
    bool restore(ProcessKey key, const ProcessPriority& before) override { return real_.restore(key, before); }
    std::vector<ProcessKey> heirs(const ProcessPriority& before) override { return real_.heirs(before); }

private:
    const SystemClock clock_;
    LinuxProcessSignals real_{{}};
};

/// The optimizer on a queue of its own, as in the agent.
class Scene {
public:
    Scene(std::size_t applications, std::size_t processes, int threads) : crew_(applications * processes, threads) {
        for (std::size_t i = 0; i < applications; ++i) {
            const auto first = crew_.members().begin() + static_cast<std::ptrdiff_t>(i * processes);
            for (auto member = first; member != first + static_cast<std::ptrdiff_t>(processes); ++member)
                table_.mains[*member] = *first;
            const auto name = "org.example.application" + std::to_string(i);
            workspace.running.push_back({name, name, *first});
        }
        queue.sync([this] {
            workspace.front = workspace.running.front();
            settings_.set(Optimizer::enabledKey, true);
            optimizer.emplace(
                Optimizer::Host{clock, queue, calendar_, workspace, settings_, holding_},
                Optimizer::Collaborators{.ownBundleID = "org.example.own",
                                         .launchDate = [this](pid_t process) { return launchDate(process, clock); },
                                         .refusal = [this](const auto& question) { return refusal(question); }});
            optimizer->start();
        });
    }
    ~Scene() {
        queue.sync([this] { optimizer.reset(); });
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;

private:
    std::optional<std::string> refusal(const Optimizer::StopQuestion& question) {
        return question.isStopped ? refusals_.whileStopped(question.processes.front())
                                  : refusals_.beforeStop(question.processes);
    }

    Crew crew_;
    const std::filesystem::path folder_ = HeldCrew::makeFolder();
    PartedTable table_;

public:
    const SystemClock clock;
    WorkerQueue queue{"optimizer"};
    TimedSignals signals;
    ScriptedWorkspace workspace;
    std::optional<Optimizer> optimizer;

private:
    const Calendar calendar_ = Calendar::current();
    MemoryKeyValueStore settings_;
    X11Connection connection_{queue, clock, ""};
    StopRefusals refusals_{connection_};
    LinuxWatchdog watchdog_{{.rescue = "/nonexistent"}};
    SafetyNet net_{{folder_, {getpid(), table_.counters(getpid()).value().start}}, signals, watchdog_};
    ProcessControl control_{table_, signals, net_};
    JournaledHolding holding_{table_, control_, net_};
};

double threadTime() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

void tellPercentiles(benchmark::State& state, std::vector<double> seconds) {
    std::sort(seconds.begin(), seconds.end());
    state.counters["p50"] = seconds[seconds.size() / 2];
    state.counters["p99"] = seconds[seconds.size() * 99 / 100];
}

void passOverSixtyApplications(benchmark::State& state) {
    constexpr std::size_t applications = 60;
    constexpr std::size_t held = 10; // of each kind
    Scene scene(applications, 5, 1);
    scene.queue.sync([&] {
        for (std::size_t i = 1; i <= held; ++i) {
            scene.optimizer->freezeNow(scene.workspace.running[i]);
            scene.optimizer->moveToEfficiencyCores(scene.workspace.running[held + i]);
        }
    });
    std::vector<double> seconds;
    for (auto _ : state) {
        const auto took = scene.queue.sync([&] {
            const auto before = threadTime();
            scene.optimizer->tick();
            return threadTime() - before;
        });
        state.SetIterationTime(took);
        seconds.push_back(took);
    }
    scene.queue.sync([&] {
        state.counters["frozen"] = static_cast<double>(scene.optimizer->frozenCount());
        state.counters["slowed"] = static_cast<double>(scene.optimizer->efficientCount());
    });
    tellPercentiles(state, std::move(seconds));
}

void fromNoticeToLastSignal(benchmark::State& state) {
    Scene scene(2, browserProcesses, browserThreads);
    const auto browser = scene.workspace.running[1];
    std::vector<double> seconds;
    for (auto _ : state) {
        scene.queue.sync([&] {
            scene.workspace.front = scene.workspace.running[0];
            scene.optimizer->freezeNow(browser);
        });
        scene.signals.lastResume = 0;
        const auto before = scene.clock.uptime().seconds();
        scene.queue.async([&] {
            scene.workspace.front = browser;
            scene.workspace.announce(WorkspaceNotice::activated);
        });
        while (!scene.queue.sync([&] { return scene.optimizer->frozenCount() == 0; })) {
        }
        const auto took = scene.signals.lastResume - before;
        state.SetIterationTime(took);
        seconds.push_back(took);
    }
    tellPercentiles(state, std::move(seconds));
}

BENCHMARK(passOverSixtyApplications)->UseManualTime()->Iterations(300)->Unit(benchmark::kMicrosecond);
BENCHMARK(fromNoticeToLastSignal)->UseManualTime()->Iterations(300)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace kestrio
