// Pictures as the tray's protocol has them: width, height, and ARGB in network order. Handed to the bus library whole,
// since it would append them byte by byte, which takes a hundred times as long.
#pragma once

#include "Kestrio/Platform/Tray.h"

#include <sdbus-c++/sdbus-c++.h>
#include <string>
#include <vector>

namespace kestrio {

struct TrayPixmapsOnBus {
    const std::vector<TrayPixmap>* pixmaps; // null: none; outlives the sending
};

sdbus::Message& operator<<(sdbus::Message& message, const TrayPixmapsOnBus& pictures);

} // namespace kestrio

template <>
struct sdbus::signature_of<kestrio::TrayPixmapsOnBus> {
    static constexpr bool is_valid = true;
    static const std::string str() { return "a(iiay)"; }
};
