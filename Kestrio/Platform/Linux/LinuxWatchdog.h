// The watchdog of this host: a shell that waits at the end of a pipe whose other end only this process holds. Whatever
// ends this process closes that, and wakes the shell at once; nothing polls. The shell itself continues what the
// journal says was stopped, for which it needs nothing but itself and `/proc`, and hands what was slowed to a program
// of ours: the host's tools would take a process for each thread and each of three properties, and know no comparing.
//
// Belongs to the optimizer's queue. The shell is in a session of its own, and deaf to what ends programs in an orderly
// way: a signal to all of us must not take it along before its work is done.
#pragma once

#include "Kestrio/Platform/Linux/Descriptor.h"
#include "Kestrio/Platform/Watchdog.h"

#include <filesystem>
#include <sys/types.h>

namespace kestrio {

class LinuxWatchdog final : public Watchdog {
public:
    struct Setup {
        /// The program `kestrio-rescue`. Without it slowed processes wait for the next start of ours.
        std::filesystem::path rescue;
        std::filesystem::path shell = "/bin/sh";
    };

    explicit LinuxWatchdog(Setup setup);
    /// Waits for the shell to end, a second at most.
    ~LinuxWatchdog() override;
    LinuxWatchdog(const LinuxWatchdog&) = delete;
    LinuxWatchdog& operator=(const LinuxWatchdog&) = delete;

    std::optional<std::string> start(const std::filesystem::path& journal) override;
    bool isWatching() override;

    /// For tests that murder it.
    pid_t process() const { return process_; }

private:
    void release();

    const Setup setup_;
    Descriptor lifeline_; // closed by our death
    pid_t process_ = 0;   // 0 when there is none
};

} // namespace kestrio
