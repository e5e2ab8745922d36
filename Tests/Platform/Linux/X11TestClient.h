// A test's own connection to a display, which makes windows and plays whatever part is missing.
// Belongs to the test's thread.
#pragma once

#include "Kestrio/Platform/Linux/X11Connection.h"

#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace kestrio {

class X11TestClient {
public:
    explicit X11TestClient(const std::string& display) : xcb_(xcb_connect(display.c_str(), nullptr)) {
        root_ = xcb_setup_roots_iterator(xcb_get_setup(xcb_)).data->root;
    }
    ~X11TestClient() { xcb_disconnect(xcb_); }
    X11TestClient(const X11TestClient&) = delete;
    X11TestClient& operator=(const X11TestClient&) = delete;

    xcb_connection_t* xcb() const { return xcb_; }
    xcb_window_t root() const { return root_; }

    xcb_atom_t atom(std::string_view name) const {
        const X11Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
            xcb_, xcb_intern_atom(xcb_, 0, static_cast<std::uint16_t>(name.size()), name.data()), nullptr));
        return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    }
    void setText(xcb_window_t window, std::string_view name, std::string_view type, std::string_view text) const {
        xcb_change_property(xcb_, XCB_PROP_MODE_REPLACE, window, atom(name), atom(type), 8,
                            static_cast<std::uint32_t>(text.size()), text.data());
        flush();
    }
    void setWord(xcb_window_t window, std::string_view name, xcb_atom_t type, std::uint32_t word) const {
        xcb_change_property(xcb_, XCB_PROP_MODE_REPLACE, window, atom(name), type, 32, 1, &word);
        flush();
    }
    void setTypes(xcb_window_t window, const std::vector<std::string_view>& names) const {
        std::vector<xcb_atom_t> types;
        for (const auto name : names)
            types.push_back(atom(name));
        xcb_change_property(xcb_, XCB_PROP_MODE_REPLACE, window, atom("_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM, 32,
                            static_cast<std::uint32_t>(types.size()), types.data());
        flush();
    }
    void remove(xcb_window_t window, std::string_view name) const {
        xcb_delete_property(xcb_, window, atom(name));
        flush();
    }
    xcb_window_t create(const std::string& className) const { return create(className, xcb_generate_id(xcb_)); }
    /// With a number of this client's own, that of a window which is gone for one.
    xcb_window_t create(const std::string& className, xcb_window_t window) const {
        xcb_create_window(xcb_, XCB_COPY_FROM_PARENT, window, root_, 0, 0, 100, 100, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                          XCB_COPY_FROM_PARENT, 0, nullptr);
        setText(window, "WM_CLASS", "STRING", className + '\0' + className + '\0');
        return window;
    }
    void map(xcb_window_t window) const {
        xcb_map_window(xcb_, window);
        flush();
    }
    void activate(xcb_window_t window) const {
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = window;
        message.type = atom("_NET_ACTIVE_WINDOW");
        message.data.data32[0] = 2;
        xcb_send_event(xcb_, 0, root_, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                       reinterpret_cast<const char*>(&message));
        flush();
    }
    /// Puts this client in the window manager's place.
    void manage() const {
        const auto check = create("manager");
        setWord(check, "_NET_SUPPORTING_WM_CHECK", XCB_ATOM_WINDOW, check);
        setWord(root_, "_NET_SUPPORTING_WM_CHECK", XCB_ATOM_WINDOW, check);
    }
    void setActive(xcb_window_t window) const { setWord(root_, "_NET_ACTIVE_WINDOW", XCB_ATOM_WINDOW, window); }
    void setManaged(const std::vector<xcb_window_t>& windows) const {
        for (const char* name : {"_NET_CLIENT_LIST", "_NET_CLIENT_LIST_STACKING"})
            xcb_change_property(xcb_, XCB_PROP_MODE_REPLACE, root_, atom(name), XCB_ATOM_WINDOW, 32,
                                static_cast<std::uint32_t>(windows.size()), windows.data());
        flush();
    }
    /// Returns once the server has done all of this client's requests.
    void flush() const { std::free(xcb_get_input_focus_reply(xcb_, xcb_get_input_focus(xcb_), nullptr)); }

private:
    xcb_connection_t* xcb_;
    xcb_window_t root_ = 0;
};

} // namespace kestrio
