// Reading what an X server answers about windows and the clients that they belong to. For the connection's queue.
#pragma once

#include "Kestrio/Platform/Linux/X11Connection.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <sys/types.h>
#include <xcb/res.h>

namespace kestrio::x11 {

/// Null when the window is gone, or the server does not answer.
using Property = X11Reply<xcb_get_property_reply_t>;

/// Asks for at most so many words of four bytes, of whatever type the property is.
inline xcb_get_property_cookie_t ask(xcb_connection_t* xcb, xcb_window_t window, xcb_atom_t name, std::uint32_t words) {
    return xcb_get_property(xcb, 0, window, name, XCB_GET_PROPERTY_TYPE_ANY, 0, words);
}

/// A property of another format than bytes reads as empty.
inline std::string_view bytesOf(const Property& property) {
    if (!property || property->format != 8)
        return {};
    return {static_cast<const char*>(xcb_get_property_value(property.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(property.get()))};
}

/// The values of a property of 32-bit items: windows, atoms, numbers.
inline std::span<const std::uint32_t> wordsOf(const Property& property) {
    if (!property || property->format != 32)
        return {};
    return {static_cast<const std::uint32_t*>(xcb_get_property_value(property.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(property.get())) / 4};
}

inline std::optional<std::uint32_t> firstWord(const Property& property) {
    const auto words = wordsOf(property);
    return words.empty() ? std::nullopt : std::optional(words.front());
}

inline bool contains(std::span<const std::uint32_t> words, std::uint32_t word) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

/// Whether a window of these types is a normal one or a dialog, as one without a type is. The first type counts, those
/// behind it are for managers that do not know it; KDE's mark of a window without a frame is none.
inline bool isNormalOrDialog(std::span<const std::uint32_t> types, const X11Atoms& atoms) {
    const auto first =
        std::ranges::find_if(types, [&](std::uint32_t type) { return type != atoms.kdeNetWmWindowTypeOverride; });
    return first == types.end() || *first == atoms.netWmWindowTypeNormal || *first == atoms.netWmWindowTypeDialog;
}

/// Asks for the process at the other end of the socket of the client that made `resource`.
inline xcb_res_query_client_ids_cookie_t askForClientProcess(xcb_connection_t* xcb, std::uint32_t resource) {
    const xcb_res_client_id_spec_t spec{resource, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    return xcb_res_query_client_ids(xcb, 1, &spec);
}

/// Absent when the server does not know it: a client on another machine.
inline std::optional<pid_t> clientProcess(const xcb_res_query_client_ids_reply_t* client) {
    if (!client)
        return std::nullopt;
    for (auto ids = xcb_res_query_client_ids_ids_iterator(client); ids.rem > 0; xcb_res_client_id_value_next(&ids)) {
        if (!(ids.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID) ||
            xcb_res_client_id_value_value_length(ids.data) <= 0)
            continue;
        if (const auto process = static_cast<pid_t>(*xcb_res_client_id_value_value(ids.data)); process > 0)
            return process;
    }
    return std::nullopt;
}

} // namespace kestrio::x11
