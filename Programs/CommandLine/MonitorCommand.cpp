#include "Programs/CommandLine/MonitorCommand.h"

#include "Kestrio/Monitor/SystemSampler.h"
#include "Kestrio/Platform/Linux/LinuxSensors.h"
#include "Kestrio/Shell/HostWords.h"
#include "Programs/Agent/HostMachine.h"
#include "Programs/CommandLine/ExitStatus.h"
#include "Programs/CommandLine/MonitorText.h"
#include "Programs/CommandLine/Terminal.h"

#include <chrono>
#include <nlohmann/json.hpp>
#include <string_view>
#include <thread>

namespace kestrio {
namespace {

/// Between the two samples that CPU time is told by; a hundredth of it, in which the kernel counts, is a percent.
constexpr Seconds measuring{1.0};

MonitorReading takeReading(const Calendar& calendar) {
    const SystemClock clock;
    HostMachine machine(clock, processEnvironment);
    LinuxSensors sensors({});
    SystemSampler sampler(machine.kernel, machine.processes, sensors, clock);
    sampler.sample(SampleDetail::detailed);
    std::this_thread::sleep_for(measuring);
    MonitorReading reading{.chip = machine.kernel.chipName(),
                           .cores = machine.processes.activeProcessorCount(),
                           .uptime = Seconds(clock.uptime().seconds()),
                           .snapshot = sampler.sample(SampleDetail::detailed),
                           .insights = {},
                           .isLowPowerMode = sensors.isLowPowerModeEnabled()};
    reading.insights = SystemInsight::make(reading.snapshot, {}, calendar);
    for (auto& insight : reading.insights)
        insight.text = hostWords(insight.text);
    return reading;
}

} // namespace

int monitor(bool json) {
    const auto calendar = Calendar::current();
    const auto reading = takeReading(calendar);
    if (json)
        printJSON(toJSON(reading));
    else
        print(monitorText(reading, calendar, outputStyle()));
    return exitStatus::done;
}

} // namespace kestrio
