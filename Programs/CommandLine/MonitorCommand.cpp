#include "Programs/CommandLine/MonitorCommand.h"

#include "Kestrio/Monitor/SystemSampler.h"
#include "Kestrio/Platform/Linux/LinuxSensors.h"
#include "Kestrio/Shell/HostWords.h"
#include "Programs/Agent/HostMachine.h"
#include "Programs/CommandLine/ExitStatus.h"
#include "Programs/CommandLine/MonitorText.h"
#include "Programs/CommandLine/Places.h"
#include "Programs/CommandLine/Terminal.h"

#include <nlohmann/json.hpp>
#include <thread>

namespace kestrio {
namespace {

/// Between the two samples that CPU time is told by; a hundredth of it, in which the kernel counts, is a percent.
constexpr Seconds measuring{1.0};

/// How long the agent may take for its two samples, which are a second apart.
constexpr Seconds patience{4.0};

bool isComplete(const std::optional<MonitorReading>& reading) {
    return reading && reading->state.snapshot && reading->state.snapshot->hasAppCPU;
}

/// What the agent's monitor sees, which knows the last minutes too. Absent when none runs or it has nothing to tell.
std::optional<MonitorReading> readingOfAgent() {
    const auto places = locations(processEnvironment);
    const auto agent = places ? runningAgent(*places) : nullptr;
    if (!agent)
        return std::nullopt;
    std::optional<MonitorReading> latest;
    const auto looking = agent->observeMonitor([&](const MonitorReading& reading) { latest = reading; });
    const SystemClock clock;
    const auto end = clock.uptime() + patience;
    while (looking.isActive() && !isComplete(latest) && clock.uptime() < end)
        if (!agent->serve(end - clock.uptime()))
            break;
    return isComplete(latest) ? latest : std::nullopt;
}

MonitorReading readingOfOurOwn(const Calendar& calendar) {
    const SystemClock clock;
    HostMachine machine(clock, processEnvironment);
    LinuxSensors sensors({});
    SystemSampler sampler(machine.kernel, machine.processes, sensors, clock);
    sampler.sample(SampleDetail::detailed);
    std::this_thread::sleep_for(measuring);
    const auto snapshot = sampler.sample(SampleDetail::detailed);
    return {.state = {snapshot, {}, SystemInsight::make(snapshot, {}, calendar)},
            .chipName = machine.kernel.chipName(),
            .cores = machine.processes.activeProcessorCount(),
            .uptime = clock.uptime() - Uptime(0)};
}

MonitorPicture picture(MonitorReading reading) {
    MonitorPicture made{.chip = std::move(reading.chipName),
                        .cores = reading.cores,
                        .uptime = reading.uptime,
                        .snapshot = std::move(reading.state.snapshot).value(),
                        .insights = std::move(reading.state.insights),
                        .isLowPowerMode = LinuxSensors({}).isLowPowerModeEnabled()};
    for (auto& insight : made.insights)
        insight.text = hostWords(insight.text);
    return made;
}

} // namespace

int monitor(bool json) {
    const auto calendar = Calendar::current();
    auto reading = readingOfAgent();
    const auto shown = picture(reading ? std::move(*reading) : readingOfOurOwn(calendar));
    if (json)
        printJSON(toJSON(shown));
    else
        print(monitorText(shown, calendar, outputStyle()));
    return exitStatus::done;
}

} // namespace kestrio
