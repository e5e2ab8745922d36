// One connection to an X server, shared by all that reads from it: workspace, titles, idle time, display power.
//
// Belongs to the queue that it was made for; everything but the constructor is called there, and it is destroyed there
// or after the queue's last work. A server may be absent, stop answering, die and come back: whoever asks gets nothing
// in the meantime, waits at most 0.4 s once, and needs to do nothing about it.
#pragma once

#include "Kestrio/Base/Clock.h"
#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Base/Signal.h"

#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <xcb/xcb.h>

namespace kestrio {

struct X11Atoms {
    xcb_atom_t gtkFrameExtents, netActiveWindow, netClientList, netClientListStacking, netCloseWindow,
        netSupportingWmCheck;
    xcb_atom_t netWmName, netWmPid, netWmState, netWmStateSkipTaskbar, netWmWindowType, netWmWindowTypeDialog;
    xcb_atom_t netWmWindowTypeNormal, utf8String, compoundText, wmState;
    xcb_atom_t netCurrentDesktop, netWmDesktop, netWmStateHidden, netWmWindowOpacity;
    xcb_atom_t netWmWindowTypeDesktop, netWmWindowTypeDock, kdeNetWmWindowTypeOverride, saverSuspend;
};

/// A server that answered: what was asked of it once and for all.
struct X11Server {
    xcb_connection_t* xcb = nullptr;
    xcb_window_t root = 0;
    X11Atoms atoms{};
    bool hasScreenSaver = false;     // MIT-SCREEN-SAVER
    bool hasDisplayPower = false;    // DPMS, with a display that can do it
    bool hasClientProcesses = false; // X-Resource 1.2
    bool hasMonitors = false;        // RandR 1.5

    X11Server() = default;
    X11Server(const X11Server&) = delete;
    X11Server& operator=(const X11Server&) = delete;
    ~X11Server();
};

struct FreeReply {
    void operator()(void* reply) const { std::free(reply); }
};
template <class Reply>
using X11Reply = std::unique_ptr<Reply, FreeReply>;

class X11Connection {
public:
    /// Something is asked of the server: everything between the making and the end of this shares one deadline of
    /// 0.4 s. False where there is nobody to ask; nothing but `reply` may be called then. Operations nest. Each cookie
    /// that was sent is handed to `reply`, also where the answer has lost its interest.
    class Operation {
    public:
        explicit Operation(X11Connection& connection);
        ~Operation();
        Operation(const Operation&) = delete;
        Operation& operator=(const Operation&) = delete;

        explicit operator bool() const { return connection_.answers(); }
        xcb_connection_t* xcb() const { return connection_.server_->xcb; }
        const X11Server& server() const { return *connection_.server_; }

        /// The answer to a request. Absent when the server refused it (a window that is gone), or when it does not
        /// answer at all; the operation then reads false.
        template <class Reply, class Cookie>
        X11Reply<Reply> reply(Cookie cookie) {
            return X11Reply<Reply>(static_cast<Reply*>(connection_.await(cookie.sequence)));
        }

    private:
        X11Connection& connection_;
    };

    /// The display's name as in $DISPLAY; with an empty one there never is a server. Connects at the first operation.
    /// Queue and clock must outlive the connection.
    X11Connection(LoopQueue& queue, const Clock& clock, std::string display);
    ~X11Connection();
    X11Connection(const X11Connection&) = delete;
    X11Connection& operator=(const X11Connection&) = delete;

    LoopQueue& queue() { return queue_; }

    /// The server, answering or not; null while there is none. Connects to nothing.
    const X11Server* server() const { return server_.get(); }

    /// Whether there is a server that does not answer at the moment.
    bool isSilent() const { return server_ && !answers(); }

    /// `receiver` sees each event of the server, as soon as it is read, possibly in the middle of somebody's operation:
    /// it may note what it saw and put work on the queue, and asks nothing of the server itself.
    Subscription observeEvents(std::function<void(const xcb_generic_event_t&)> receiver);

    /// `receiver` is called after each new connection, when nothing that was asked or noted before holds any longer,
    /// with true; and with false after the loss of one. The rules for `observeEvents` hold here too.
    Subscription observeConnection(std::function<void(const bool&)> receiver);

private:
    struct Attempt;

    bool answers() const { return server_ && !stalled_ && !failed_; }
    void begin();
    void end();
    void* await(unsigned sequence);

    void connectIfDue();
    void adopt(std::unique_ptr<X11Server> server);
    void readArrived();
    void tell(xcb_generic_event_t* (*next)(xcb_connection_t*));
    void lose();
    bool isReadable(Seconds patience) const;

    LoopQueue& queue_;
    const Clock& clock_;
    const std::string display_;
    std::unique_ptr<X11Server> server_;
    std::shared_ptr<Attempt> attempt_; // present while a thread of its own is connecting
    std::optional<Uptime> lastAttempt_;
    Subscription watch_;
    int depth_ = 0;        // of operations
    Uptime deadline_;      // of the outermost operation
    bool stalled_ = false; // an operation ran out of time, and nothing was heard of the server since
    bool failed_ = false;  // the connection broke in the middle of an operation
    Signal<xcb_generic_event_t> events_;
    Signal<bool> connected_;
};

} // namespace kestrio
