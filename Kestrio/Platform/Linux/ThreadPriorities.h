// How the threads of a process stood before it was slowed, and the words that keep it: text that lies in a file while
// the process is slow, and may come back cut short, or from a later version. Pure functions; any thread.
//
// The words, separated by blanks: `since=TICKS`, `to=CORES`, then CORES/POLICY/IO for every thread, and
// TID@TICKS/CORES/POLICY/IO for each that stood otherwise. Ticks are since the start of the machine. Others are for
// later versions and passed over.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace kestrio {

struct ThreadPriority {
    std::vector<int> cores; // in order, at least one
    int policy = 0;         // SCHED_OTHER and the like, with its flags
    int ioPriority = 0;     // class and level, as `ioprio_get` has them; 0 is none of its own

    friend bool operator==(const ThreadPriority&, const ThreadPriority&) = default;
};

struct ThreadPriorities {
    struct Exception {
        pid_t thread = 0;
        std::uint64_t start = 0;
        ThreadPriority priority;

        friend bool operator==(const Exception&, const Exception&) = default;
    };

    std::optional<std::uint64_t> since;   // when it was read
    std::vector<int> slowCores;           // that the process was to be moved to; none when that is not known
    std::optional<ThreadPriority> common; // of the first thread, and of those that are not named
    std::vector<Exception> exceptions;

    /// Absent when nothing is known.
    std::optional<ThreadPriority> of(pid_t thread, std::uint64_t start) const;

    friend bool operator==(const ThreadPriorities&, const ThreadPriorities&) = default;
};

std::string words(const ThreadPriorities& priorities);

/// Words that are damaged are passed over.
ThreadPriorities parsedPriorities(std::string_view words);

/// "0-3,8", as `parseCoreList` reads it.
std::string coreList(const std::vector<int>& cores);

} // namespace kestrio
