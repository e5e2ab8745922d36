// Descriptors of processes, which stay with their process when its number passes to another. Through the system calls:
// the C library of Debian 12 declares its own for C alone.
#pragma once

#include "Kestrio/Platform/Linux/Descriptor.h"

#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

namespace kestrio {

/// Empty, with `errno`, when there is no such process.
inline Descriptor openProcess(pid_t process) {
    return Descriptor(static_cast<int>(syscall(SYS_pidfd_open, process, 0)));
}

inline bool sendSignal(const Descriptor& process, int signal) {
    return syscall(SYS_pidfd_send_signal, process.number(), signal, nullptr, 0) == 0;
}

} // namespace kestrio
