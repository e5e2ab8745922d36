// Why this host must not have an application stopped now, in words: the rest of a sentence that begins with "Resumed:
// ".
//
// Belongs to the queue of its connection. A question takes a millisecond or two for an application of a dozen
// processes.
#pragma once

#include "Kestrio/Platform/ProcessTable.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace kestrio {

class X11Connection;

class StopRefusals {
public:
    /// The connection must outlive this.
    explicit StopRefusals(X11Connection& connection, std::filesystem::path processes = "/proc");

    /// For an application with these processes that is about to be stopped.
    std::optional<std::string> beforeStop(const std::vector<ProcessKey>& processes);

    /// For one that is stopped, by its main process: what can have come up meanwhile.
    std::optional<std::string> whileStopped(ProcessKey main) const;

private:
    X11Connection& connection_;
    const std::filesystem::path processes_;
};

} // namespace kestrio
