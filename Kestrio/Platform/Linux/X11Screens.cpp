#include "Kestrio/Platform/Linux/X11Screens.h"

#include "Kestrio/Platform/Linux/X11Properties.h"

#include <limits>
#include <xcb/randr.h>

namespace kestrio {
namespace {

using namespace x11;
using Operation = X11Connection::Operation;

constexpr std::uint32_t mostWindows = 4096;
constexpr std::uint32_t allDesktops = 0xFFFFFFFF;
constexpr double opaque = std::numeric_limits<std::uint32_t>::max();

/// The requests for where a window is and how it looks, on their way.
class Appearance {
public:
    Appearance(Operation& operation, xcb_window_t window) {
        auto* xcb = operation.xcb();
        const auto& atoms = operation.server().atoms;
        attributes_ = xcb_get_window_attributes(xcb, window);
        geometry_ = xcb_get_geometry(xcb, window);
        position_ = xcb_translate_coordinates(xcb, window, operation.server().root, 0, 0);
        type_ = ask(xcb, window, atoms.netWmWindowType, 32);
        state_ = ask(xcb, window, atoms.netWmState, 32);
        desktop_ = ask(xcb, window, atoms.netWmDesktop, 1);
        opacity_ = ask(xcb, window, atoms.netWmWindowOpacity, 1);
        shadow_ = ask(xcb, window, atoms.gtkFrameExtents, 4);
    }

    /// Absent when it cannot be seen, belongs to the desktop itself, is gone, or the server does not answer.
    std::optional<StackedWindow> take(Operation& operation, std::optional<std::uint32_t> currentDesktop) {
        const auto attributes = operation.reply<xcb_get_window_attributes_reply_t>(attributes_);
        const auto geometry = operation.reply<xcb_get_geometry_reply_t>(geometry_);
        const auto position = operation.reply<xcb_translate_coordinates_reply_t>(position_);
        const Property type = operation.reply<xcb_get_property_reply_t>(type_);
        const Property state = operation.reply<xcb_get_property_reply_t>(state_);
        const Property desktop = operation.reply<xcb_get_property_reply_t>(desktop_);
        const Property opacity = operation.reply<xcb_get_property_reply_t>(opacity_);
        const Property shadow = operation.reply<xcb_get_property_reply_t>(shadow_);
        if (!operation || !attributes || !geometry || !position)
            return std::nullopt;
        const auto& atoms = operation.server().atoms;
        const auto types = wordsOf(type);
        if (attributes->map_state != XCB_MAP_STATE_VIEWABLE || contains(wordsOf(state), atoms.netWmStateHidden) ||
            !isOnDesktop(firstWord(desktop), currentDesktop) || contains(types, atoms.netWmWindowTypeDock) ||
            contains(types, atoms.netWmWindowTypeDesktop))
            return std::nullopt;
        StackedWindow window;
        window.bounds = withoutShadow({static_cast<double>(position->dst_x), static_cast<double>(position->dst_y),
                                       static_cast<double>(geometry->width), static_cast<double>(geometry->height)},
                                      wordsOf(shadow));
        window.alpha = firstWord(opacity).value_or(allDesktops) / opaque;
        window.layer = isNormalOrDialog(types, atoms) ? 0 : 1;
        return window;
    }

private:
    static bool isOnDesktop(std::optional<std::uint32_t> desktop, std::optional<std::uint32_t> current) {
        return !desktop || !current || *desktop == allDesktops || desktop == current;
    }

    /// Windows that draw their own frames have the shadow around them inside: left, right, top, bottom.
    static Rectangle withoutShadow(Rectangle bounds, std::span<const std::uint32_t> extents) {
        if (extents.size() < 4)
            return bounds;
        bounds.x += extents[0];
        bounds.y += extents[2];
        bounds.width -= static_cast<double>(extents[0]) + extents[1];
        bounds.height -= static_cast<double>(extents[2]) + extents[3];
        return bounds;
    }

    xcb_get_window_attributes_cookie_t attributes_{};
    xcb_get_geometry_cookie_t geometry_{};
    xcb_translate_coordinates_cookie_t position_{};
    xcb_get_property_cookie_t type_{}, state_{}, desktop_{}, opacity_{}, shadow_{};
};

std::vector<Rectangle> wholeScreen(Operation& operation) {
    const auto screen =
        operation.reply<xcb_get_geometry_reply_t>(xcb_get_geometry(operation.xcb(), operation.server().root));
    if (!screen)
        return {};
    return {{0, 0, static_cast<double>(screen->width), static_cast<double>(screen->height)}};
}

std::vector<Rectangle> readDisplays(Operation& operation) {
    if (!operation.server().hasMonitors)
        return wholeScreen(operation);
    const auto monitors = operation.reply<xcb_randr_get_monitors_reply_t>(
        xcb_randr_get_monitors(operation.xcb(), operation.server().root, 1));
    if (!monitors)
        return {};
    std::vector<Rectangle> displays;
    for (auto each = xcb_randr_get_monitors_monitors_iterator(monitors.get()); each.rem > 0;
         xcb_randr_monitor_info_next(&each)) {
        const auto& monitor = *each.data;
        if (monitor.width == 0 || monitor.height == 0)
            continue;
        displays.insert(monitor.primary ? displays.begin() : displays.end(),
                        {static_cast<double>(monitor.x), static_cast<double>(monitor.y),
                         static_cast<double>(monitor.width), static_cast<double>(monitor.height)});
    }
    return displays;
}

std::optional<pid_t> processOf(xcb_window_t window, const std::vector<X11Window>& managed) {
    const auto found =
        std::find_if(managed.begin(), managed.end(), [window](const X11Window& each) { return each.id == window; });
    return found == managed.end() ? std::nullopt : found->process;
}

std::vector<StackedWindow> readWindows(Operation& operation, const std::vector<X11Window>& managed) {
    auto* xcb = operation.xcb();
    const auto root = operation.server().root;
    const auto stackingCookie = ask(xcb, root, operation.server().atoms.netClientListStacking, mostWindows);
    const auto desktopCookie = ask(xcb, root, operation.server().atoms.netCurrentDesktop, 1);
    const Property stacking = operation.reply<xcb_get_property_reply_t>(stackingCookie);
    const Property desktop = operation.reply<xcb_get_property_reply_t>(desktopCookie);
    if (!operation)
        return {};
    const auto bottomToTop = wordsOf(stacking);
    std::vector<Appearance> appearances;
    appearances.reserve(bottomToTop.size());
    for (auto window = bottomToTop.rbegin(); window != bottomToTop.rend(); ++window)
        appearances.emplace_back(operation, *window);
    std::vector<StackedWindow> windows;
    auto id = bottomToTop.rbegin();
    for (auto& appearance : appearances) {
        if (auto window = appearance.take(operation, firstWord(desktop))) {
            window->process = processOf(*id, managed);
            windows.push_back(*window);
        }
        ++id;
    }
    return windows;
}

} // namespace

ScreenLayout X11Screens::layout() {
    Operation operation(connection_);
    if (!operation)
        return {};
    // What an application says of its process is known from the list of windows. Without a window manager that is
    // empty, and the order of stacking may be left over from one that died.
    const auto* managed = windows_.managed();
    if (!managed || !operation)
        return {};
    ScreenLayout layout;
    layout.displays = readDisplays(operation);
    if (operation && !managed->empty())
        layout.windows = readWindows(operation, *managed);
    return operation ? layout : ScreenLayout();
}

} // namespace kestrio
