// Asking the process with the windows to show one, where such a process runs. Every call ends within `callDeadline`:
// that process answers at once, even while its windows are busy.
//
// Single-threaded, on the thread that the connection belongs to.
#pragma once

#include "Kestrio/Base/Date.h"
#include "Kestrio/Link/WindowRequest.h"

#include <functional>
#include <optional>
#include <string>

namespace sdbus {
class IConnection;
} // namespace sdbus

namespace kestrio {

class WindowClient {
public:
    static constexpr Seconds callDeadline{0.4};

    /// Runs something that calls on a connection; false when that failed.
    using Perform = std::function<bool(const std::function<void(sdbus::IConnection&)>&)>;

    /// Over a connection that somebody else serves, and that outlives this.
    explicit WindowClient(Perform perform) : perform_(std::move(perform)) {}

    /// Over a connection of its own. Absent when there is no bus at the address.
    static std::optional<WindowClient> connect(const std::string& busAddress);

    /// Whether some process has the windows' name.
    bool isRunning();

    /// False when no process with windows took the request. With the desktop's leave to take the front, if there is
    /// one.
    bool show(const WindowRequest& request, const std::string& activationToken = {});

    /// Has every window closed. Where there is none nothing happens.
    void quit();

    /// The rule for the notice of the bus that a process with windows has appeared.
    static std::string appearingRule();

private:
    Perform perform_;
};

} // namespace kestrio
