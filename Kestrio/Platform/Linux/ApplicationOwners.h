// Which application is behind a sound or a kept-awake display: the one whose window belongs to the process or to one
// that it works for, else what the responsible process tells of itself.
//
// Belongs to the queue of the workspace and the identity. Asks the window system only what changed, and otherwise reads
// a few small files (0.1 ms).
#pragma once

#include "Kestrio/Platform/ApplicationTrace.h"
#include "Kestrio/Platform/Linux/ApplicationIdentity.h"
#include "Kestrio/Platform/Workspace.h"

namespace kestrio {

class ApplicationOwners {
public:
    /// Both must outlive the owners.
    ApplicationOwners(Workspace& workspace, ApplicationIdentity& identity)
        : workspace_(workspace), identity_(identity) {}

    /// The application's bundle identifier. Absent when there is no evidence at all.
    std::optional<std::string> bundleIdentifier(const ApplicationTrace& trace);

private:
    std::optional<std::string> ofProcess(pid_t process, const std::vector<RunningApplication>& running);
    std::optional<std::string> ofName(std::string_view name, const std::vector<RunningApplication>& running);

    Workspace& workspace_;
    ApplicationIdentity& identity_;
};

} // namespace kestrio
