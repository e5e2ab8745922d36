// What a pass of the optimizer costs: 60 applications with 5 processes each, 10 of them frozen and 10 slowed, on a
// made-up machine; and beside it the sweep over this machine's processes, which a pass needs while anything is slowed.
#include "Kestrio/Optimizer/JournaledHolding.h"
#include "Kestrio/Optimizer/ProcessControl.h"
#include "Kestrio/Optimizer/SafetyNet.h"
#include "Kestrio/Platform/Linux/LinuxProcessTable.h"
#include "Kestrio/Platform/Testing/ScriptedProcessSignals.h"
#include "Kestrio/Platform/Testing/ScriptedWatchdog.h"
#include "Tests/Optimizer/OptimizerBench.h"

#include <benchmark/benchmark.h>
#include <unistd.h>

namespace kestrio {
namespace {

struct BusyMachine : OptimizerBench {
    BusyMachine() {
        settings.set(Optimizer::enabledKey, true);
        for (int number = 0; number < 57; ++number)
            machine.launch(name(number), 1000 + number * 10, 4, origin);
        make().start();
        tindra::OptimizerRules rules;
        for (int number = 0; number < 10; ++number)
            rules.tiers[name(number)] = tindra::AppTier::canWait;
        optimizer->setRules(rules);
        std::vector<AppProcesses> busy;
        for (int number = 10; number < 20; ++number)
            busy.push_back({.id = name(number),
                            .name = name(number),
                            .appPath = {},
                            .bundleID = name(number),
                            .cpuCores = 1,
                            .processes = {}});
        sample(busy);
        tickAfter(600);
    }
    static std::string name(int number) { return "org.example.application" + std::to_string(number); }
};

void passWithTwentyHeld(benchmark::State& state) {
    BusyMachine bench;
    for (auto unused : state)
        bench.optimizer->tick();
    state.counters["frozen"] = static_cast<double>(bench.optimizer->frozenCount());
    state.counters["slowed"] = static_cast<double>(bench.optimizer->efficientCount());
}
BENCHMARK(passWithTwentyHeld)->Unit(benchmark::kMicrosecond);

void passWithNothingHeld(benchmark::State& state) {
    BusyMachine bench;
    bench.optimizer->setRules({});
    bench.optimizer->setTuning({.useEfficiencyCores = false});
    for (auto unused : state)
        bench.optimizer->tick();
}
BENCHMARK(passWithNothingHeld)->Unit(benchmark::kMicrosecond);

/// The real hold on this machine's processes, with signals that reach nobody.
struct RealProcesses {
    LinuxProcessTable table{LinuxProcessTable::setupOfThisMachine(), nullptr};
    ScriptedProcessSignals signals;
    ScriptedWatchdog watchdog;
    SafetyNet net{{"/nonexistent", {1, 1}}, signals, watchdog};
    ProcessControl control{table, signals, net};
    JournaledHolding holding{table, control, net};
};

void rememberedSweep(benchmark::State& state) {
    RealProcesses machine;
    for (auto unused : state)
        benchmark::DoNotOptimize(machine.holding.rememberedProcesses({getpid(), getppid()}));
    state.counters["processes"] = static_cast<double>(machine.table.processes().size());
}
BENCHMARK(rememberedSweep)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace kestrio
