#include "Kestrio/Platform/Linux/LaunchDate.h"

#include "Kestrio/Platform/Linux/ProcessIdentity.h"

#include <ctime>
#include <unistd.h>

namespace kestrio {

/// The kernel counts from the start of the machine, time in suspend included.
std::optional<Date> launchDate(pid_t process, const Clock& clock, const std::filesystem::path& processes) {
    const auto ticks = readStartTicks(processes, process);
    if (!ticks)
        return std::nullopt;
    timespec now{};
    clock_gettime(CLOCK_BOOTTIME, &now);
    const Seconds sinceBoot{static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9};
    const Seconds started{static_cast<double>(*ticks) / static_cast<double>(sysconf(_SC_CLK_TCK))};
    return clock.now() - (sinceBoot - started);
}

} // namespace kestrio
