#include "Kestrio/Platform/Linux/X11Connection.h"

#include <array>
#include <cmath>
#include <condition_variable>
#include <mutex>
#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>
#include <xcb/dpms.h>
#include <xcb/randr.h>
#include <xcb/res.h>
#include <xcb/screensaver.h>
#include <xcb/xcbext.h>

namespace kestrio {
namespace {

constexpr Seconds patience{0.4};
constexpr Seconds betweenAttempts{5.0};

struct AtomName {
    xcb_atom_t X11Atoms::*atom;
    std::string_view name;
};
constexpr std::array atomNames{
    AtomName{&X11Atoms::gtkFrameExtents, "_GTK_FRAME_EXTENTS"},
    AtomName{&X11Atoms::netActiveWindow, "_NET_ACTIVE_WINDOW"},
    AtomName{&X11Atoms::netClientList, "_NET_CLIENT_LIST"},
    AtomName{&X11Atoms::netClientListStacking, "_NET_CLIENT_LIST_STACKING"},
    AtomName{&X11Atoms::netCloseWindow, "_NET_CLOSE_WINDOW"},
    AtomName{&X11Atoms::netSupportingWmCheck, "_NET_SUPPORTING_WM_CHECK"},
    AtomName{&X11Atoms::netWmName, "_NET_WM_NAME"},
    AtomName{&X11Atoms::netWmPid, "_NET_WM_PID"},
    AtomName{&X11Atoms::netWmState, "_NET_WM_STATE"},
    AtomName{&X11Atoms::netWmStateSkipTaskbar, "_NET_WM_STATE_SKIP_TASKBAR"},
    AtomName{&X11Atoms::netWmWindowType, "_NET_WM_WINDOW_TYPE"},
    AtomName{&X11Atoms::netWmWindowTypeDialog, "_NET_WM_WINDOW_TYPE_DIALOG"},
    AtomName{&X11Atoms::netWmWindowTypeNormal, "_NET_WM_WINDOW_TYPE_NORMAL"},
    AtomName{&X11Atoms::utf8String, "UTF8_STRING"},
    AtomName{&X11Atoms::compoundText, "COMPOUND_TEXT"},
    AtomName{&X11Atoms::wmState, "WM_STATE"},
    AtomName{&X11Atoms::netCurrentDesktop, "_NET_CURRENT_DESKTOP"},
    AtomName{&X11Atoms::netWmDesktop, "_NET_WM_DESKTOP"},
    AtomName{&X11Atoms::netWmStateHidden, "_NET_WM_STATE_HIDDEN"},
    AtomName{&X11Atoms::netWmWindowOpacity, "_NET_WM_WINDOW_OPACITY"},
    AtomName{&X11Atoms::netWmWindowTypeDesktop, "_NET_WM_WINDOW_TYPE_DESKTOP"},
    AtomName{&X11Atoms::netWmWindowTypeDock, "_NET_WM_WINDOW_TYPE_DOCK"},
    AtomName{&X11Atoms::kdeNetWmWindowTypeOverride, "_KDE_NET_WM_WINDOW_TYPE_OVERRIDE"},
    AtomName{&X11Atoms::saverSuspend, "SaverSuspend"}, // the name of a type of resource
};

bool internAtoms(X11Server& server) {
    std::array<xcb_intern_atom_cookie_t, atomNames.size()> cookies{};
    for (std::size_t i = 0; i < atomNames.size(); ++i)
        cookies[i] = xcb_intern_atom(server.xcb, 0, static_cast<std::uint16_t>(atomNames[i].name.size()),
                                     atomNames[i].name.data());
    bool complete = true;
    for (std::size_t i = 0; i < atomNames.size(); ++i) {
        const X11Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(server.xcb, cookies[i], nullptr));
        complete &= reply != nullptr;
        server.atoms.*atomNames[i].atom = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    }
    return complete;
}

bool offers(xcb_connection_t* xcb, xcb_extension_t& extension) {
    const auto* data = xcb_get_extension_data(xcb, &extension);
    return data && data->present;
}

/// Asking for an extension waits inside xcb without a limit, also at its first use. Hence all of it is asked here.
void askForExtensions(X11Server& server) {
    for (auto* extension : {&xcb_screensaver_id, &xcb_res_id, &xcb_dpms_id, &xcb_randr_id})
        xcb_prefetch_extension_data(server.xcb, extension);
    server.hasScreenSaver = offers(server.xcb, xcb_screensaver_id);
    if (offers(server.xcb, xcb_res_id)) {
        const X11Reply<xcb_res_query_version_reply_t> version(
            xcb_res_query_version_reply(server.xcb, xcb_res_query_version(server.xcb, 1, 2), nullptr));
        server.hasClientProcesses =
            version && (version->server_major > 1 || (version->server_major == 1 && version->server_minor >= 2));
    }
    if (offers(server.xcb, xcb_dpms_id)) {
        const X11Reply<xcb_dpms_capable_reply_t> capable(
            xcb_dpms_capable_reply(server.xcb, xcb_dpms_capable(server.xcb), nullptr));
        server.hasDisplayPower = capable && capable->capable;
    }
    if (offers(server.xcb, xcb_randr_id)) {
        const X11Reply<xcb_randr_query_version_reply_t> version(
            xcb_randr_query_version_reply(server.xcb, xcb_randr_query_version(server.xcb, 1, 5), nullptr));
        server.hasMonitors =
            version && (version->major_version > 1 || (version->major_version == 1 && version->minor_version >= 5));
    }
}

/// Blocks for as long as the server wants. Null when there is no server.
std::unique_ptr<X11Server> connect(const std::string& display) {
    auto server = std::make_unique<X11Server>();
    int screenNumber = 0;
    server->xcb = xcb_connect(display.c_str(), &screenNumber);
    if (xcb_connection_has_error(server->xcb))
        return nullptr;
    auto screen = xcb_setup_roots_iterator(xcb_get_setup(server->xcb));
    for (; screenNumber > 0 && screen.rem > 1; --screenNumber)
        xcb_screen_next(&screen);
    if (screen.rem == 0)
        return nullptr;
    server->root = screen.data->root;
    if (!internAtoms(*server))
        return nullptr;
    askForExtensions(*server);
    return server;
}

} // namespace

X11Server::~X11Server() {
    xcb_disconnect(xcb);
}

/// Connecting has no deadline in xcb, and a stopped server accepts connections without ever saying a word. So a
/// thread of its own connects, and is left behind where that takes too long.
struct X11Connection::Attempt {
    std::mutex mutex; // guards all below
    std::condition_variable finished;
    bool isFinished = false;
    std::unique_ptr<X11Server> server;

    /// Null when there is no thread to be had.
    static std::shared_ptr<Attempt> start(const std::string& display) {
        auto attempt = std::make_shared<Attempt>();
        try {
            std::thread([attempt, display] { run(attempt, display); }).detach();
        } catch (const std::system_error&) {
            return nullptr;
        }
        return attempt;
    }

    static void run(const std::shared_ptr<Attempt>& attempt, const std::string& display) {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, nullptr);
        auto server = connect(display);
        const std::lock_guard guard(attempt->mutex);
        attempt->server = std::move(server);
        attempt->isFinished = true;
        attempt->finished.notify_one();
    }
};

X11Connection::Operation::Operation(X11Connection& connection) : connection_(connection) {
    connection_.begin();
}

X11Connection::Operation::~Operation() {
    connection_.end();
}

X11Connection::X11Connection(LoopQueue& queue, const Clock& clock, std::string display)
    : queue_(queue), clock_(clock), display_(std::move(display)) {}

X11Connection::~X11Connection() = default;

Subscription X11Connection::observeEvents(std::function<void(const xcb_generic_event_t&)> receiver) {
    return events_.subscribe(std::move(receiver));
}

Subscription X11Connection::observeConnection(std::function<void(const bool&)> receiver) {
    return connected_.subscribe(std::move(receiver));
}

void X11Connection::begin() {
    if (depth_++ > 0)
        return;
    deadline_ = clock_.uptime() + patience;
    if (!server_)
        connectIfDue();
    else if (!stalled_ || isReadable(Seconds(0)))
        readArrived();
}

void X11Connection::end() {
    if (--depth_ > 0 || !server_)
        return;
    if (!stalled_)
        xcb_flush(server_->xcb);
    // Events that came along with the replies are in memory now; the descriptor would never tell of them.
    tell(xcb_poll_for_queued_event);
}

void* X11Connection::await(unsigned sequence) {
    if (!server_)
        return nullptr;
    if (answers())
        xcb_flush(server_->xcb);
    while (answers()) {
        void* reply = nullptr;
        xcb_generic_error_t* error = nullptr;
        if (xcb_poll_for_reply(server_->xcb, sequence, &reply, &error)) {
            std::free(error);
            failed_ = xcb_connection_has_error(server_->xcb) != 0;
            return reply;
        }
        const auto left = deadline_ - clock_.uptime();
        if (left > Seconds(0))
            isReadable(left); // a signal may cut it short
        else
            stalled_ = true;
    }
    xcb_discard_reply(server_->xcb, sequence);
    return nullptr;
}

void X11Connection::connectIfDue() {
    if (display_.empty())
        return;
    const bool isNew = !attempt_;
    if (isNew) {
        const auto now = clock_.uptime();
        if (lastAttempt_ && now - *lastAttempt_ < betweenAttempts)
            return;
        lastAttempt_ = now;
        attempt_ = Attempt::start(display_);
        if (!attempt_)
            return;
    }
    std::unique_lock guard(attempt_->mutex);
    // Whoever starts an attempt waits for it; an attempt that outlasted this is only looked at.
    if (isNew)
        attempt_->finished.wait_for(guard, patience, [this] { return attempt_->isFinished; });
    if (!attempt_->isFinished)
        return;
    auto server = std::move(attempt_->server);
    guard.unlock();
    attempt_.reset();
    if (server)
        adopt(std::move(server));
}

void X11Connection::adopt(std::unique_ptr<X11Server> server) {
    server_ = std::move(server);
    stalled_ = failed_ = false;
    watch_ = queue_.watch(xcb_get_file_descriptor(server_->xcb), [this] { readArrived(); });
    connected_.emit(true);
}

void X11Connection::readArrived() {
    stalled_ = false;
    tell(xcb_poll_for_event);
}

void X11Connection::tell(xcb_generic_event_t* (*next)(xcb_connection_t*)) {
    while (const X11Reply<xcb_generic_event_t> event{next(server_->xcb)})
        if (event->response_type != 0) // 0 is an error: a window that was gone before we had a look
            events_.emit(*event);
    if (xcb_connection_has_error(server_->xcb))
        lose();
}

void X11Connection::lose() {
    watch_.cancel();
    server_.reset();
    stalled_ = failed_ = false;
    connected_.emit(false);
}

bool X11Connection::isReadable(Seconds patienceLeft) const {
    pollfd descriptor{xcb_get_file_descriptor(server_->xcb), POLLIN, 0};
    return poll(&descriptor, 1, static_cast<int>(std::ceil(patienceLeft.count() * 1000))) > 0;
}

} // namespace kestrio
