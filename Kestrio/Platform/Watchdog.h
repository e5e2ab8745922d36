// Seam: a process beside this one that outlives it, and then puts right what a journal names.
//
// Called on the optimizer's queue; starting takes some milliseconds. It ends with its owner: when this is dropped, or
// the program dies by any cause, the watchdog reads the journal at once, and ends. It finds none after an orderly end.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace kestrio {

class Watchdog {
public:
    virtual ~Watchdog() = default;

    /// Starts watching over the journal, which need not exist. Nothing when it watches already. Answers what went
    /// wrong, or nothing.
    virtual std::optional<std::string> start(const std::filesystem::path& journal) = 0;

    /// False as well when the watchdog itself has died.
    virtual bool isWatching() = 0;
};

} // namespace kestrio
