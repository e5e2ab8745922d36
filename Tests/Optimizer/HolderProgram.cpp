// Holds processes as the optimizer does, for tests that murder it:
//     HolderProgram JOURNALS NOTES RESCUE STEP PROCESS...
// It slows and freezes the processes, then resumes and restores them, and stands still for ever before the given step:
// "start", "slow 2" (before the second is slowed), "stop 3", "held", "resume 1", "restore 1" or "end". With "loop" it
// never stands still, with "leave" it ends by itself while holding everything. In NOTES it writes the number of its
// watchdog and, when it stands still, a file "there".
#include "Kestrio/Optimizer/ProcessControl.h"
#include "Kestrio/Optimizer/SafetyNet.h"
#include "Kestrio/Platform/Linux/LinuxProcessSignals.h"
#include "Kestrio/Platform/Linux/LinuxProcessTable.h"
#include "Kestrio/Platform/Linux/LinuxWatchdog.h"
#include "Tests/Support/SteppedSignals.h"

#include <cstdlib>
#include <fmt/format.h>
#include <fstream>
#include <unistd.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

int hold(const std::vector<std::string>& arguments) {
    const fs::path notes = arguments[1];
    Steps steps(arguments[3], notes);
    LinuxProcessTable table({}, nullptr);
    LinuxProcessSignals real({});
    SteppedSignals signals(real, steps);
    LinuxWatchdog watchdog({.rescue = arguments[2]});
    SafetyNet net({arguments[0], {getpid(), table.counters(getpid()).value().start}}, signals, watchdog);
    ProcessControl control(table, signals, net);
    std::vector<ProcessKey> keys;
    for (std::size_t i = 4; i < arguments.size(); ++i) {
        const pid_t pid = std::atoi(arguments[i].c_str());
        keys.push_back({pid, table.counters(pid).value().start});
    }
    net.startWatcher();
    std::ofstream(notes / "number") << watchdog.process();
    fs::rename(notes / "number", notes / "watchdog"); // never half written
    steps.reach("start");
    do {
        const auto slowed = control.slow(keys);
        net.record({}, slowed);
        const auto frozen = control.freeze(keys);
        net.record(frozen, slowed);
        steps.reach("held");
        if (steps.isWanted("leave"))
            return EXIT_SUCCESS;
        control.resume(frozen);
        control.restore(slowed);
        net.record({}, {});
    } while (steps.isWanted("loop"));
    steps.reach("end");
    return EXIT_SUCCESS;
}

} // namespace
} // namespace kestrio

int main(int argc, char** argv) {
    if (argc < 6)
        return EXIT_FAILURE;
    return kestrio::hold({argv + 1, argv + argc});
}
