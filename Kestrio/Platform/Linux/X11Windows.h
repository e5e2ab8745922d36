// The windows of an X server as its window manager keeps them: which one is active, what they are called, and to
// which process they belong.
//
// Belongs to the queue of its connection. What was asked once holds until the server says that it changed; as long as
// nothing changed, nothing is asked. Without a window manager the window with the input focus counts as active, and
// as nobody tells when that moves, it is asked for each time.
#pragma once

#include "Kestrio/Base/Rectangle.h"
#include "Kestrio/Platform/Linux/X11Connection.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace kestrio {

struct X11Window {
    xcb_window_t id = 0;
    /// The process that shows the window. Absent when the server does not know it: a client on another machine.
    std::optional<pid_t> process;
    std::string instanceName; // WM_CLASS, both may be empty
    std::string className;
    /// A window that a taskbar lists: of the normal or the dialog type, and not skipped.
    bool isRegular = false;

    friend bool operator==(const X11Window&, const X11Window&) = default;
};

/// A window as it stands among the others.
struct X11PlacedWindow {
    X11Window window;
    std::string title; // as `X11Windows::title` reads it, but possibly empty
    Rectangle bounds;  // without the shadow that a client draws around itself, and without the manager's frame
    Rectangle extents; // with the shadow
    bool isActive = false;
};

class X11Windows {
public:
    /// The connection must outlive the windows.
    explicit X11Windows(X11Connection& connection);

    /// The active window. A switch passes through "none" for a moment: only a "none" that lasts is believed, and the
    /// window of before is the answer until then. Absent too when the server does not answer.
    std::optional<X11Window> active();

    /// The windows under management, the oldest first; none without a window manager. Null when there is no server, or
    /// it does not answer. Holds until the next question.
    const std::vector<X11Window>* managed();

    /// Grows with every change of what `managed` answers.
    std::uint64_t managedVersion() const { return managedVersion_; }

    /// The title of the process's active window, else of the front one of its windows with a title. Not empty, valid
    /// UTF-8; of a very long title the first 16 KiB.
    std::optional<std::string> title(pid_t process);

    /// Those of the managed windows that are `wanted`, the front one first and minimised ones among them; without a
    /// window manager the active one alone. Absent when there is no server, or it does not answer.
    std::optional<std::vector<X11PlacedWindow>> placed(const std::function<bool(const X11Window&)>& wanted);

    /// Whether there is a server to ask, answering or not.
    bool hasServer();

    /// Whether there is one that does not answer at the moment.
    bool isSilent() const { return connection_.isSilent(); }

    /// Asks the window manager to close the window, as its own close button does. False when there is none to ask.
    bool close(xcb_window_t window);

    /// `receiver` is called on the queue after what `active` or `managed` answers changed. While somebody observes, the
    /// server's notices are followed at once.
    Subscription observe(std::function<void()> receiver);

private:
    using Operation = X11Connection::Operation;

    void forget();
    void note(const xcb_generic_event_t& event);
    void noteProperty(const xcb_property_notify_event_t& event);
    void followSoon();
    void follow();
    void changed();

    void refreshManager(Operation& operation);
    void refreshActive(Operation& operation);
    void refreshManaged(Operation& operation);
    void activate(Operation& operation, std::optional<xcb_window_t> window);
    void settleOnNone();
    std::optional<xcb_window_t> activeByManager(Operation& operation);
    std::optional<xcb_window_t> activeByFocus(Operation& operation);
    std::optional<std::string> activeTitle(Operation& operation);
    std::vector<X11Window> frontToBack(Operation& operation);

    X11Connection& connection_;
    Signal<> changes_;

    bool managerStale_ = true;
    std::optional<xcb_window_t> manager_; // its check window; absent without a window manager
    bool activeStale_ = true;
    xcb_window_t current_ = 0;        // the one that is active now, 0 for none
    bool isUnmapped_ = false;         // the current one, since it is that
    bool isUndescribed_ = false;      // the current window told nothing of itself: most likely it is gone
    bool detailsStale_ = true;        // of the active window
    std::optional<X11Window> active_; // the one that is believed
    xcb_window_t focus_ = 0;          // without a window manager: what had the focus, and its top level
    xcb_window_t focusTop_ = 0;
    std::optional<std::string> title_; // of the current window; absent when it has to be asked for
    bool managedStale_ = true;
    std::vector<X11Window> managed_;
    std::uint64_t managedVersion_ = 0;

    Subscription settling_;
    Subscription following_;
    Subscription telling_;
    Subscription events_;
    Subscription connected_;
};

} // namespace kestrio
