// Which applications run and which one is in front, by the windows of an X server. Belongs to the queue of its windows.
#pragma once

#include "Kestrio/Platform/Linux/ApplicationIdentity.h"
#include "Kestrio/Platform/Linux/X11Windows.h"
#include "Kestrio/Platform/Workspace.h"

#include <list>

namespace kestrio {

class X11Workspace final : public Workspace {
public:
    /// The queue is that of the windows. All must outlive the workspace.
    X11Workspace(Queue& queue, X11Windows& windows, ApplicationIdentity& identity);

    std::optional<RunningApplication> frontmostApplication() override;
    std::vector<RunningApplication> runningApplications() override;

    /// An application that keeps no window within 50 ms of losing the front counts as a change of the front too.
    Subscription observe(std::function<void(WorkspaceNotice)> receiver) override;

    std::optional<std::string> applicationName(const std::string& bundleIdentifier) override;
    std::optional<std::string> applicationIcon(const std::string& bundleIdentifier) override;
    bool open(const std::string& fileOrAddress) override;

    /// Closes each window through the window manager. A process that is still there 5 s after its last window went gets
    /// SIGTERM; one that still shows a window has refused, as with a question about unsaved work, and is left alone.
    bool terminate(const RunningApplication& application) override;

private:
    struct Ending {
        pid_t process;
        std::uint64_t start; // ticks
        Subscription timer;
    };

    RunningApplication applicationOf(const X11Window& window);
    std::vector<RunningApplication> running();
    void tellChanges();
    bool endSoon(pid_t process);
    void end(pid_t process, std::uint64_t start);

    Queue& queue_;
    X11Windows& windows_;
    ApplicationIdentity& identity_;
    Signal<WorkspaceNotice> notices_;
    Subscription changes_;

    std::optional<X11Window> frontWindow_; // and what was found for it
    RunningApplication front_;
    std::optional<std::uint64_t> runningVersion_;
    std::vector<RunningApplication> running_;

    std::optional<RunningApplication> toldFront_;
    std::vector<RunningApplication> toldRunning_;
    Subscription tellingAgain_;
    std::list<Ending> endings_;
};

} // namespace kestrio
