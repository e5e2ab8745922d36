// A small application for the tests of the X11 readers: one window of the class and title that it is given, until
// its window is closed.
//
// X11TestWindow CLASS TITLE [stays]: with "stays" its process outlives the window; with "refuses" it does not close.

#include <array>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <unistd.h>
#include <xcb/xcb.h>

namespace {

xcb_atom_t atom(xcb_connection_t* xcb, std::string_view name) {
    auto* reply = xcb_intern_atom_reply(
        xcb, xcb_intern_atom(xcb, 0, static_cast<std::uint16_t>(name.size()), name.data()), nullptr);
    const auto result = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    std::free(reply);
    return result;
}

void setText(xcb_connection_t* xcb, xcb_window_t window, xcb_atom_t name, xcb_atom_t type, std::string_view text) {
    xcb_change_property(xcb, XCB_PROP_MODE_REPLACE, window, name, type, 8, static_cast<std::uint32_t>(text.size()),
                        text.data());
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 3)
        return 2;
    const std::string_view manner = argc > 3 ? argv[3] : "";
    auto* xcb = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(xcb))
        return 1;
    const auto* screen = xcb_setup_roots_iterator(xcb_get_setup(xcb)).data;
    const auto window = xcb_generate_id(xcb);
    xcb_create_window(xcb, XCB_COPY_FROM_PARENT, window, screen->root, 0, 0, 200, 100, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      screen->root_visual, 0, nullptr);
    const std::string name(argv[1]);
    const auto names = name + '\0' + name + '\0';
    setText(xcb, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, names);
    setText(xcb, window, atom(xcb, "_NET_WM_NAME"), atom(xcb, "UTF8_STRING"), argv[2]);
    const auto protocols = atom(xcb, "WM_PROTOCOLS");
    const auto deleteWindow = atom(xcb, "WM_DELETE_WINDOW");
    xcb_change_property(xcb, XCB_PROP_MODE_REPLACE, window, protocols, XCB_ATOM_ATOM, 32, 1, &deleteWindow);
    xcb_map_window(xcb, window);
    xcb_flush(xcb);
    while (auto* event = xcb_wait_for_event(xcb)) {
        const bool isMessage = (event->response_type & 0x7F) == XCB_CLIENT_MESSAGE;
        std::free(event);
        if (!isMessage || manner == "refuses")
            continue;
        if (manner != "stays")
            return 0;
        xcb_destroy_window(xcb, window);
        xcb_flush(xcb);
    }
    return 1;
}
