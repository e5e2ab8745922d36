#include "Kestrio/Platform/Linux/X11InputIdle.h"

#include <xcb/screensaver.h>

namespace kestrio {

std::optional<Seconds> X11InputIdle::sinceLastInput() {
    X11Connection::Operation operation(connection_);
    if (!operation || !operation.server().hasScreenSaver)
        return std::nullopt;
    const auto info = operation.reply<xcb_screensaver_query_info_reply_t>(
        xcb_screensaver_query_info(operation.xcb(), operation.server().root));
    if (!info)
        return std::nullopt;
    return std::chrono::milliseconds(info->ms_since_user_input);
}

} // namespace kestrio
