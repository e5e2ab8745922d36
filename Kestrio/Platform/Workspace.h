// Seam: which applications run, and which one the person is on.
//
// Used on one queue, the one that the implementation was made for. Reads answer from what notices already told
// wherever the host gives notices, and ask the window system only when something changed; each is bounded by 0.4 s.
// Every answer may be empty: there may be no window system, no window manager, or nothing in front.
#pragma once

#include "Kestrio/Base/Subscription.h"

#include <functional>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace kestrio {

/// An application with at least one window, as the person knows it.
struct RunningApplication {
    /// The same on every host for an application that the host's catalogue knows, else the host's own identifier.
    std::optional<std::string> bundleIdentifier;
    /// The name that the person reads, in their language.
    std::optional<std::string> localizedName;
    /// The process that owns the windows; absent when the window system will not tell.
    std::optional<pid_t> processIdentifier;

    friend bool operator==(const RunningApplication&, const RunningApplication&) = default;
};

enum class WorkspaceNotice { activated, launched, terminated };

class Workspace {
public:
    virtual ~Workspace() = default;

    /// The application in front. Absent while there is none; a switch's passing moment of "none" is not reported.
    virtual std::optional<RunningApplication> frontmostApplication() = 0;

    /// All applications with a regular window, each process once, in no particular order.
    virtual std::vector<RunningApplication> runningApplications() = 0;

    /// `receiver` is called on the owning queue after an application came to the front, started or ended.
    virtual Subscription observe(std::function<void(WorkspaceNotice)> receiver) = 0;

    /// The name of an installed application, whether it runs or not. Absent when the host does not know it.
    virtual std::optional<std::string> applicationName(const std::string& bundleIdentifier) = 0;

    /// The icon of an installed application as the host names it: a name in the icon theme or a path.
    virtual std::optional<std::string> applicationIcon(const std::string& bundleIdentifier) = 0;

    /// Opens a file or an address with the application that the person chose for it. False when that cannot be started.
    virtual bool open(const std::string& fileOrAddress) = 0;

    /// Asks an application to close as its own close command would; it may refuse. False when there was nobody to ask.
    virtual bool terminate(const RunningApplication& application) = 0;
};

} // namespace kestrio
