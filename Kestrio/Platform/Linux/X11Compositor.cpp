#include "Kestrio/Platform/Linux/X11Compositor.h"

#include "Kestrio/Platform/Linux/X11Connection.h"

#include <fmt/format.h>

namespace kestrio {
namespace {

struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};

} // namespace

bool blendsWindows(const std::string& display) {
    int screen = 0;
    const std::unique_ptr<xcb_connection_t, Disconnect> connection(xcb_connect(display.c_str(), &screen));
    if (xcb_connection_has_error(connection.get()))
        return true;
    const auto name = fmt::format("_NET_WM_CM_S{}", screen); // as EWMH has it
    const auto selection = X11Reply<xcb_intern_atom_reply_t>(xcb_intern_atom_reply(
        connection.get(), xcb_intern_atom(connection.get(), 1, static_cast<std::uint16_t>(name.size()), name.data()),
        nullptr));
    if (!selection || selection->atom == XCB_ATOM_NONE)
        return false;
    const auto owner = X11Reply<xcb_get_selection_owner_reply_t>(xcb_get_selection_owner_reply(
        connection.get(), xcb_get_selection_owner(connection.get(), selection->atom), nullptr));
    return owner && owner->owner != XCB_WINDOW_NONE;
}

} // namespace kestrio
