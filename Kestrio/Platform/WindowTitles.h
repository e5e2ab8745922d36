// Seam: what the window of an application says it shows.
//
// Called on the monitor's queue at each tick; answers within 0.4 s whatever the application does. A private or tool
// window has a title like any other: what may be kept of it is decided by the caller.
#pragma once

#include <optional>
#include <string>
#include <sys/types.h>

namespace kestrio {

class WindowTitles {
public:
    virtual ~WindowTitles() = default;

    /// The title of the process's focused window, else of its front one. Valid UTF-8, as the application wrote it.
    /// Absent when the process has no window with a non-empty title, or titles cannot be had.
    virtual std::optional<std::string> focusedWindowTitle(pid_t processIdentifier) = 0;

    /// Whether titles can be had at all on this desktop; what the person is told to mend when not.
    virtual bool isGranted() = 0;
};

} // namespace kestrio
