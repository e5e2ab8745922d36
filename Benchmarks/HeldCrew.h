// Real sleeping processes, as many and with as many threads as a browser has, and the real hold on them. They end with
// this. For one thread.
#pragma once

#include "Kestrio/Optimizer/JournaledHolding.h"
#include "Kestrio/Optimizer/ProcessControl.h"
#include "Kestrio/Optimizer/SafetyNet.h"
#include "Kestrio/Platform/Linux/LinuxProcessSignals.h"
#include "Kestrio/Platform/Linux/LinuxProcessTable.h"
#include "Kestrio/Platform/Linux/LinuxWatchdog.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace kestrio {

inline constexpr std::size_t browserProcesses = 12;
inline constexpr int browserThreads = 8;

class Crew {
public:
    explicit Crew(std::size_t processes = browserProcesses, int threads = browserThreads) {
        for (std::size_t i = 0; i < processes; ++i) {
            const pid_t child = fork();
            if (child == 0) {
                prctl(PR_SET_PDEATHSIG, SIGKILL);
                for (int thread = 1; thread < threads; ++thread)
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
struct HeldCrew {
    HeldCrew() {
        for (const auto member : crew.members())
            keys.push_back({member, table.counters(member).value().start});
    }
    ~HeldCrew() {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }
    HeldCrew(const HeldCrew&) = delete;
    HeldCrew& operator=(const HeldCrew&) = delete;

    static std::filesystem::path makeFolder() {
        std::string name =
            (std::filesystem::path(std::getenv("HOME") ? std::getenv("HOME") : "/tmp") / ".kestrio-XXXXXX").string();
        return mkdtemp(name.data()) ? std::filesystem::path(name) : std::filesystem::path("/tmp");
    }

    Crew crew;
    const std::filesystem::path folder = makeFolder();
    LinuxProcessTable table{{}, nullptr};
    LinuxProcessSignals signals{{}};
    LinuxWatchdog watchdog{{.rescue = "/nonexistent"}};
    SafetyNet net{{folder, {getpid(), table.counters(getpid()).value().start}}, signals, watchdog};
    ProcessControl control{table, signals, net};
    std::vector<ProcessKey> keys;
};

} // namespace kestrio
