#include "Kestrio/Platform/Linux/X11Windows.h"

#include "Kestrio/Base/Text.h"
#include "Kestrio/Platform/Linux/X11Properties.h"
#include "Kestrio/Platform/Linux/X11Text.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <strings.h>
#include <unistd.h>

namespace kestrio {
namespace {

/// A switch is without an active window for about 0.25 ms; nobody sees 50.
constexpr Seconds lastingNone{0.05};

constexpr std::uint32_t longestTitle = 16 * 1024;
constexpr std::uint32_t mostWindows = 4096;
constexpr int deepestWindow = 32;

using namespace x11;

bool has(const std::vector<X11Window>& windows, xcb_window_t id) {
    return std::any_of(windows.begin(), windows.end(), [id](const X11Window& window) { return window.id == id; });
}

void select(xcb_connection_t* xcb, xcb_window_t window, std::uint32_t events) {
    xcb_change_window_attributes(xcb, window, XCB_CW_EVENT_MASK, &events);
}

bool isThisHost(std::string_view machine) {
    char name[256] = {};
    if (gethostname(name, sizeof name - 1) != 0)
        return false;
    const std::string_view host(name);
    return machine.size() == host.size() && strncasecmp(machine.data(), host.data(), host.size()) == 0;
}

/// The requests for all that is to be known of one window, on their way.
class Details {
public:
    Details(X11Connection::Operation& operation, xcb_window_t window) : window_(window) {
        auto* xcb = operation.xcb();
        const auto& atoms = operation.server().atoms;
        class_ = ask(xcb, window, XCB_ATOM_WM_CLASS, 256);
        process_ = ask(xcb, window, atoms.netWmPid, 1);
        machine_ = ask(xcb, window, XCB_ATOM_WM_CLIENT_MACHINE, 64);
        type_ = ask(xcb, window, atoms.netWmWindowType, 32);
        state_ = ask(xcb, window, atoms.netWmState, 32);
        if (operation.server().hasClientProcesses)
            client_ = askForClientProcess(xcb, window);
    }

    /// Absent when the window is gone, or the server does not answer.
    std::optional<X11Window> take(X11Connection::Operation& operation) {
        const Property names = operation.reply<xcb_get_property_reply_t>(class_);
        const Property process = operation.reply<xcb_get_property_reply_t>(process_);
        const Property machine = operation.reply<xcb_get_property_reply_t>(machine_);
        const Property type = operation.reply<xcb_get_property_reply_t>(type_);
        const Property state = operation.reply<xcb_get_property_reply_t>(state_);
        const auto client = client_ ? operation.reply<xcb_res_query_client_ids_reply_t>(*client_) : nullptr;
        if (!operation || !names || !state)
            return std::nullopt;
        X11Window window;
        window.id = window_;
        window.process = processOf(process, machine, client.get());
        readClass(window, bytesOf(names));
        const auto& atoms = operation.server().atoms;
        window.isRegular =
            isNormalOrDialog(wordsOf(type), atoms) && !contains(wordsOf(state), atoms.netWmStateSkipTaskbar);
        return window;
    }

private:
    /// What the client says of itself counts when it runs on this host, unless the server knows better by the socket's
    /// credentials: a sandboxed client gives the number that it has inside its sandbox.
    static std::optional<pid_t> processOf(const Property& claimed, const Property& machine,
                                          const xcb_res_query_client_ids_reply_t* client) {
        if (const auto process = clientProcess(client))
            return process;
        const auto pid = firstWord(claimed);
        const bool isLocal = pid && static_cast<pid_t>(*pid) > 0 && isThisHost(bytesOf(machine));
        return isLocal ? std::optional(static_cast<pid_t>(*pid)) : std::nullopt;
    }

    /// Two texts, each closed by a zero byte.
    static void readClass(X11Window& window, std::string_view bytes) {
        const auto end = std::min(bytes.find('\0'), bytes.size());
        window.instanceName = text::fromUntrustedBytes(bytes.substr(0, end));
        const auto second = bytes.substr(std::min(end + 1, bytes.size()));
        window.className = text::fromUntrustedBytes(second.substr(0, second.find('\0')));
    }

    xcb_window_t window_;
    xcb_get_property_cookie_t class_{}, process_{}, machine_{}, type_{}, state_{};
    std::optional<xcb_res_query_client_ids_cookie_t> client_;
};

/// Absent when the server does not answer; a window that is gone is left out.
std::optional<std::vector<X11Window>> readWindows(X11Connection::Operation& operation,
                                                  std::span<const xcb_window_t> windows) {
    std::vector<Details> details;
    details.reserve(windows.size());
    for (const auto window : windows)
        details.emplace_back(operation, window);
    std::vector<X11Window> result;
    for (auto& detail : details)
        if (auto window = detail.take(operation))
            result.push_back(std::move(*window));
    return operation ? std::optional(std::move(result)) : std::nullopt;
}

/// At most `longestTitle` bytes were asked for: a character that was cut through at the end is dropped.
std::string_view withoutCutCharacter(std::string_view bytes) {
    if (bytes.size() < longestTitle)
        return bytes;
    auto end = bytes.size();
    while (end > 0 && bytes.size() - end < 4 && (static_cast<unsigned char>(bytes[end - 1]) & 0xC0) == 0x80)
        --end;
    if (end > 0 && static_cast<unsigned char>(bytes[end - 1]) >= 0xC0)
        --end;
    return bytes.substr(0, end);
}

struct TitleRequest {
    xcb_get_property_cookie_t modern;
    xcb_get_property_cookie_t old;

    TitleRequest(X11Connection::Operation& operation, xcb_window_t window)
        : modern(ask(operation.xcb(), window, operation.server().atoms.netWmName, longestTitle / 4)),
          old(ask(operation.xcb(), window, XCB_ATOM_WM_NAME, longestTitle / 4)) {}

    /// Empty when the window has none, or is gone.
    std::string take(X11Connection::Operation& operation) const {
        const Property first = operation.reply<xcb_get_property_reply_t>(modern);
        const Property second = operation.reply<xcb_get_property_reply_t>(old);
        if (!operation)
            return {};
        if (const auto bytes = bytesOf(first); !bytes.empty())
            return text::fromUntrustedBytes(withoutCutCharacter(bytes));
        const auto bytes = bytesOf(second);
        if (bytes.empty())
            return {};
        if (second->type == operation.server().atoms.compoundText)
            return fromCompoundText(bytes);
        if (second->type == XCB_ATOM_STRING)
            return fromLatin1(bytes);
        return text::fromUntrustedBytes(withoutCutCharacter(bytes));
    }
};

/// The requests for where a window is and what it is called, on their way.
struct PlaceRequest {
    TitleRequest title;
    xcb_get_geometry_cookie_t geometry;
    xcb_translate_coordinates_cookie_t origin;
    xcb_get_property_cookie_t shadow;

    PlaceRequest(X11Connection::Operation& operation, xcb_window_t window)
        : title(operation, window),
          geometry(xcb_get_geometry(operation.xcb(), window)),
          origin(xcb_translate_coordinates(operation.xcb(), window, operation.server().root, 0, 0)),
          shadow(ask(operation.xcb(), window, operation.server().atoms.gtkFrameExtents, 4)) {}

    /// Absent when the window is gone.
    std::optional<X11PlacedWindow> take(X11Connection::Operation& operation, const X11Window& window) const {
        auto name = title.take(operation);
        const auto size = operation.reply<xcb_get_geometry_reply_t>(geometry);
        const auto place = operation.reply<xcb_translate_coordinates_reply_t>(origin);
        const Property margins = operation.reply<xcb_get_property_reply_t>(shadow);
        if (!operation || !size || !place)
            return std::nullopt;
        const Rectangle extents{static_cast<double>(place->dst_x), static_cast<double>(place->dst_y),
                                static_cast<double>(size->width), static_cast<double>(size->height)};
        auto bounds = extents;
        if (const auto sides = wordsOf(margins); sides.size() == 4) { // left, right, top, bottom
            bounds.x += sides[0];
            bounds.y += sides[2];
            bounds.width = std::max(0.0, bounds.width - sides[0] - sides[1]);
            bounds.height = std::max(0.0, bounds.height - sides[2] - sides[3]);
        }
        return X11PlacedWindow{window, std::move(name), bounds, extents, false};
    }
};

} // namespace

X11Windows::X11Windows(X11Connection& connection) : connection_(connection) {
    events_ = connection_.observeEvents([this](const xcb_generic_event_t& event) { note(event); });
    connected_ = connection_.observeConnection([this](bool isConnected) {
        forget();
        if (isConnected)
            followSoon();
        else
            changed();
    });
}

void X11Windows::forget() {
    managerStale_ = activeStale_ = detailsStale_ = managedStale_ = true;
    manager_.reset();
    current_ = focus_ = focusTop_ = 0;
    isUnmapped_ = false;
    active_.reset();
    title_.reset();
    managed_.clear();
    ++managedVersion_;
    settling_.cancel();
    following_.cancel();
}

Subscription X11Windows::observe(std::function<void()> receiver) {
    followSoon();
    return changes_.subscribe(std::move(receiver));
}

void X11Windows::note(const xcb_generic_event_t& event) {
    const auto type = event.response_type & 0x7F;
    if (type == XCB_PROPERTY_NOTIFY) {
        noteProperty(reinterpret_cast<const xcb_property_notify_event_t&>(event));
    } else if (type == XCB_UNMAP_NOTIFY || type == XCB_MAP_NOTIFY) {
        // Both have the window in the same place.
        if (reinterpret_cast<const xcb_unmap_notify_event_t&>(event).window != current_)
            return;
        isUnmapped_ = type == XCB_UNMAP_NOTIFY;
        detailsStale_ = true;
        followSoon();
    } else if (type == XCB_DESTROY_NOTIFY) {
        const auto window = reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window;
        if (window == manager_)
            managerStale_ = true;
        else if (window == current_)
            activeStale_ = detailsStale_ = true; // not every window manager takes back what it said of the last one
        else
            return;
        followSoon();
    }
}

void X11Windows::noteProperty(const xcb_property_notify_event_t& event) {
    const auto* server = connection_.server();
    if (!server)
        return;
    const auto& atoms = server->atoms;
    if (event.atom == atoms.netSupportingWmCheck) {
        managerStale_ = true;
        followSoon();
        return;
    }
    if (event.window == server->root) {
        if (event.atom == atoms.netActiveWindow)
            activeStale_ = true;
        else if (event.atom == atoms.netClientList) {
            managedStale_ = true;
            detailsStale_ |= isUnmapped_;
        } else
            return;
        followSoon();
        return;
    }
    if (event.window != current_)
        return;
    if (event.atom == atoms.netWmName || event.atom == XCB_ATOM_WM_NAME) {
        title_.reset(); // read when somebody asks
    } else if (event.atom == XCB_ATOM_WM_CLASS || event.atom == atoms.netWmPid || event.atom == atoms.netWmWindowType ||
               event.atom == atoms.netWmState) {
        detailsStale_ = managedStale_ = true;
        followSoon();
    }
}

void X11Windows::followSoon() {
    if (!following_.isActive())
        following_ = connection_.queue().after(Seconds(0), [this] {
            following_.cancel();
            follow();
        });
}

/// Reading at once keeps the observers up to date; with none, the next question does.
void X11Windows::follow() {
    if (!changes_.hasReceivers())
        return;
    active();
    managed();
}

void X11Windows::changed() {
    if (changes_.hasReceivers() && !telling_.isActive())
        telling_ = connection_.queue().after(Seconds(0), [this] {
            telling_.cancel();
            changes_.emit();
        });
}

std::optional<X11Window> X11Windows::active() {
    Operation operation(connection_);
    if (operation)
        refreshActive(operation);
    return operation ? active_ : std::nullopt;
}

const std::vector<X11Window>* X11Windows::managed() {
    Operation operation(connection_);
    if (operation)
        refreshManaged(operation);
    return operation ? &managed_ : nullptr;
}

bool X11Windows::hasServer() {
    const Operation connecting(connection_);
    return connection_.server() != nullptr;
}

/// A window manager proves itself by a window that names itself; a mere property on the root window may be left over
/// from one that died.
void X11Windows::refreshManager(Operation& operation) {
    if (!managerStale_)
        return;
    auto* xcb = operation.xcb();
    const auto& server = operation.server();
    select(xcb, server.root, XCB_EVENT_MASK_PROPERTY_CHANGE);
    const Property named =
        operation.reply<xcb_get_property_reply_t>(ask(xcb, server.root, server.atoms.netSupportingWmCheck, 1));
    std::optional<xcb_window_t> manager = firstWord(named);
    if (operation && manager) {
        // One that is just starting names its window on the root window first.
        select(xcb, *manager, XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE);
        const Property itself =
            operation.reply<xcb_get_property_reply_t>(ask(xcb, *manager, server.atoms.netSupportingWmCheck, 1));
        if (firstWord(itself) != manager)
            manager.reset();
    }
    if (!operation)
        return;
    managerStale_ = false;
    if (manager == manager_)
        return;
    manager_ = manager;
    activeStale_ = managedStale_ = true;
}

std::optional<xcb_window_t> X11Windows::activeByManager(Operation& operation) {
    const Property property = operation.reply<xcb_get_property_reply_t>(
        ask(operation.xcb(), operation.server().root, operation.server().atoms.netActiveWindow, 1));
    const auto window = firstWord(property).value_or(0);
    return window != 0 ? std::optional(window) : std::nullopt;
}

/// From the window with the focus upwards: the first that a window manager of the old kind marked as a client, else
/// the one below the root.
std::optional<xcb_window_t> X11Windows::activeByFocus(Operation& operation) {
    auto* xcb = operation.xcb();
    const auto root = operation.server().root;
    const auto focus = operation.reply<xcb_get_input_focus_reply_t>(xcb_get_input_focus(xcb));
    if (!focus || focus->focus == XCB_INPUT_FOCUS_NONE || focus->focus == root)
        return std::nullopt;
    auto window = focus->focus;
    if (window == XCB_INPUT_FOCUS_POINTER_ROOT) { // it is with whatever is below the pointer
        const auto pointer = operation.reply<xcb_query_pointer_reply_t>(xcb_query_pointer(xcb, root));
        return pointer && pointer->child != 0 ? std::optional(pointer->child) : std::nullopt;
    }
    if (window == focus_)
        return focusTop_;
    const auto focused = window;
    for (int depth = 0; depth < deepestWindow; ++depth) {
        const auto stateCookie = ask(xcb, window, operation.server().atoms.wmState, 0);
        const auto treeCookie = xcb_query_tree(xcb, window);
        const Property state = operation.reply<xcb_get_property_reply_t>(stateCookie);
        const auto tree = operation.reply<xcb_query_tree_reply_t>(treeCookie);
        if (!state || !tree)
            return std::nullopt;
        if (state->type != XCB_ATOM_NONE || tree->parent == root || tree->parent == XCB_NONE)
            break;
        window = tree->parent;
    }
    focus_ = focused;
    focusTop_ = window;
    return window;
}

void X11Windows::refreshActive(Operation& operation) {
    refreshManager(operation);
    if (operation && (activeStale_ || !manager_)) {
        const auto window = manager_ ? activeByManager(operation) : activeByFocus(operation);
        if (operation) {
            activeStale_ = false;
            if (window.value_or(0) != current_ || !window || isUndescribed_)
                activate(operation, window);
        }
    }
    if (operation && current_ != 0 && detailsStale_)
        activate(operation, current_);
}

void X11Windows::activate(Operation& operation, std::optional<xcb_window_t> window) {
    auto* xcb = operation.xcb();
    const auto before = std::exchange(current_, window.value_or(0));
    // A new window may bear the number of one that was gone when it was asked.
    if (before != current_ || isUndescribed_) {
        title_.reset();
        isUnmapped_ = false;
        if (before != 0)
            select(xcb, before, XCB_EVENT_MASK_NO_EVENT);
        if (current_ != 0)
            select(xcb, current_, XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    }
    detailsStale_ = true;
    std::optional<X11Window> read;
    if (window)
        read = Details(operation, *window).take(operation);
    isUndescribed_ = window && !read;
    if (operation && read && isUnmapped_ && manager_) {
        refreshManaged(operation);
        if (!has(managed_, current_)) // withdrawn into a tray, say; one that is only minimised stays listed
            read.reset();
    }
    if (!operation)
        return;
    detailsStale_ = false;
    if (!read) { // none, or one that has just gone: the notice of what comes next is on its way
        settleOnNone();
        return;
    }
    settling_.cancel();
    if (active_ == read)
        return;
    active_ = std::move(read);
    changed();
}

void X11Windows::settleOnNone() {
    if (!active_ || settling_.isActive())
        return;
    settling_ = connection_.queue().after(lastingNone, [this] {
        settling_.cancel();
        active_.reset();
        changed();
    });
}

void X11Windows::refreshManaged(Operation& operation) {
    refreshManager(operation);
    if (!operation || !managedStale_)
        return;
    std::optional<std::vector<X11Window>> windows;
    if (manager_) {
        const Property list = operation.reply<xcb_get_property_reply_t>(
            ask(operation.xcb(), operation.server().root, operation.server().atoms.netClientList, mostWindows));
        if (operation)
            windows = readWindows(operation, wordsOf(list));
    } else {
        windows.emplace();
    }
    if (!windows)
        return;
    managedStale_ = false;
    if (*windows == managed_)
        return;
    managed_ = std::move(*windows);
    ++managedVersion_;
    changed();
}

std::optional<std::string> X11Windows::activeTitle(Operation& operation) {
    if (!title_) {
        auto title = TitleRequest(operation, current_).take(operation);
        if (!operation)
            return std::nullopt;
        title_ = std::move(title);
    }
    return title_->empty() ? std::nullopt : title_;
}

std::optional<std::string> X11Windows::title(pid_t process) {
    Operation operation(connection_);
    if (operation)
        refreshActive(operation);
    if (!operation)
        return std::nullopt;
    if (current_ != 0 && active_ && active_->id == current_ && active_->process == process)
        if (auto title = activeTitle(operation))
            return title;
    if (!operation || !manager_)
        return std::nullopt;
    refreshManaged(operation);
    if (!operation)
        return std::nullopt;
    const Property stacking = operation.reply<xcb_get_property_reply_t>(
        ask(operation.xcb(), operation.server().root, operation.server().atoms.netClientListStacking, mostWindows));
    if (!operation)
        return std::nullopt;
    const auto bottomToTop = wordsOf(stacking);
    std::vector<TitleRequest> requests;
    for (auto id = bottomToTop.rbegin(); id != bottomToTop.rend(); ++id)
        for (const auto& window : managed_)
            if (window.id == *id && window.process == process)
                requests.emplace_back(operation, *id);
    std::string title;
    for (const auto& request : requests)
        if (auto found = request.take(operation); title.empty())
            title = std::move(found);
    return title.empty() ? std::nullopt : std::optional(std::move(title));
}

std::vector<X11Window> X11Windows::frontToBack(Operation& operation) {
    refreshActive(operation);
    if (!operation || !manager_)
        return operation && active_ ? std::vector{*active_} : std::vector<X11Window>();
    refreshManaged(operation);
    if (!operation)
        return {};
    const Property stacking = operation.reply<xcb_get_property_reply_t>(
        ask(operation.xcb(), operation.server().root, operation.server().atoms.netClientListStacking, mostWindows));
    const auto bottomToTop = wordsOf(stacking);
    std::vector<X11Window> windows;
    for (auto id = bottomToTop.rbegin(); id != bottomToTop.rend(); ++id)
        for (const auto& window : managed_)
            if (window.id == *id)
                windows.push_back(window);
    return windows;
}

std::optional<std::vector<X11PlacedWindow>> X11Windows::placed(const std::function<bool(const X11Window&)>& wanted) {
    Operation operation(connection_);
    if (!operation)
        return std::nullopt;
    auto windows = frontToBack(operation);
    if (!operation)
        return std::nullopt;
    std::erase_if(windows, [&](const X11Window& window) { return !wanted(window); });
    std::vector<PlaceRequest> requests;
    for (const auto& window : windows)
        requests.emplace_back(operation, window.id);
    std::vector<X11PlacedWindow> result;
    for (std::size_t i = 0; i < windows.size(); ++i)
        if (auto window = requests[i].take(operation, windows[i])) {
            window->isActive = windows[i].id == current_;
            result.push_back(std::move(*window));
        }
    return operation ? std::optional(std::move(result)) : std::nullopt;
}

bool X11Windows::close(xcb_window_t window) {
    Operation operation(connection_);
    if (operation)
        refreshManager(operation);
    if (!operation || !manager_)
        return false;
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = operation.server().atoms.netCloseWindow;
    message.data.data32[0] = XCB_CURRENT_TIME;
    message.data.data32[1] = 2; // asked by the person, through a pager or the like
    xcb_send_event(operation.xcb(), 0, operation.server().root,
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&message));
    return true;
}

} // namespace kestrio
