// The two icons in the desktop's bar, drawn: the time with the light of the recording, and the figure of the machine.
// Pure functions; any thread.
//
// Nobody tells what colour a bar has, so each icon brings its own ground, a dark tile, and is legible on all of them.
#pragma once

#include "Kestrio/Monitor/SystemMenuLabel.h"
#include "Kestrio/Pages/StateWords.h"
#include "Kestrio/Platform/Tray.h"

#include <array>
#include <vector>

namespace kestrio {

/// The sizes in which bars want icons, in pixels; the small ones are drawn for their pixels, not scaled.
inline constexpr std::array traySizes{16, 22, 24, 32, 48, 64};

/// In one size; the label's figure is no more than two digits and "%", or "100%".
TrayPixmap trayPixmap(const MenuBarLabel& label, int side);
TrayPixmap trayPixmap(const SystemMenuLabel& label, int side);

/// In all sizes.
template <class Label>
std::vector<TrayPixmap> trayIcon(const Label& label) {
    std::vector<TrayPixmap> icon;
    for (const int side : traySizes)
        icon.push_back(trayPixmap(label, side));
    return icon;
}

} // namespace kestrio
