// What a picture of the machine costs: the cheap one that is taken every three seconds while the icon is shown, and the
// detailed one while the panel is open. The parts that the cheap one is made of beside it.
#include "Kestrio/Base/Clock.h"
#include "Kestrio/Monitor/SystemInsight.h"
#include "Kestrio/Monitor/SystemSampler.h"
#include "Kestrio/Platform/Linux/LinuxKernelCounters.h"
#include "Kestrio/Platform/Linux/LinuxProcessTable.h"
#include "Kestrio/Platform/Linux/LinuxSensors.h"

#include <benchmark/benchmark.h>

namespace kestrio {
namespace {

struct Machine {
    SystemClock clock;
    LinuxKernelCounters kernel;
    LinuxProcessTable processes{LinuxProcessTable::setupOfThisMachine(), nullptr};
    LinuxSensors sensors{{}};
    SystemSampler sampler{kernel, processes, sensors, clock};
};

void sample(benchmark::State& state, SampleDetail detail) {
    Machine machine;
    machine.sampler.sample(detail);
    for (auto _ : state)
        benchmark::DoNotOptimize(machine.sampler.sample(detail));
    state.counters["processes"] = static_cast<double>(machine.processes.processes().size());
}

void cheapSample(benchmark::State& state) {
    sample(state, SampleDetail::cheap);
}
BENCHMARK(cheapSample)->Unit(benchmark::kMicrosecond);

void detailedSample(benchmark::State& state) {
    sample(state, SampleDetail::detailed);
}
BENCHMARK(detailedSample)->Unit(benchmark::kMicrosecond);

void kernelCounters(benchmark::State& state) {
    LinuxKernelCounters kernel;
    for (auto _ : state) {
        benchmark::DoNotOptimize(kernel.coreTimes());
        benchmark::DoNotOptimize(kernel.memory());
        benchmark::DoNotOptimize(kernel.swap());
        benchmark::DoNotOptimize(kernel.memoryPressure());
    }
}
BENCHMARK(kernelCounters)->Unit(benchmark::kMicrosecond);

void sensors(benchmark::State& state) {
    LinuxSensors sensors({});
    for (auto _ : state) {
        benchmark::DoNotOptimize(sensors.thermalState());
        benchmark::DoNotOptimize(sensors.battery());
    }
}
BENCHMARK(sensors)->Unit(benchmark::kMicrosecond);

void insights(benchmark::State& state) {
    const Calendar calendar("en_GB", "UTC");
    SystemSnapshot snapshot;
    snapshot.thermalState = ThermalState::fair;
    snapshot.pressure = MemoryPressure::critical;
    snapshot.disk = DiskUsage{1, 1};
    const std::vector<double> history(60, 1.0);
    for (auto _ : state)
        benchmark::DoNotOptimize(SystemInsight::make(snapshot, history, calendar));
}
BENCHMARK(insights)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace kestrio
