#include "Kestrio/Platform/Linux/TrayPixmapsOnBus.h"

#include <cstdint>
#include <systemd/sd-bus.h>

namespace kestrio {
namespace {

/// The C library's message inside one of the C++ library, which shows it to classes of its own kind alone.
class Inside : public sdbus::Message {
public:
    static sd_bus_message* of(sdbus::Message& message) {
        return static_cast<sd_bus_message*>(message.*(&Inside::msg_));
    }
};

std::vector<std::uint8_t> networkOrder(const std::vector<std::uint32_t>& pixels) {
    std::vector<std::uint8_t> bytes;
    bytes.reserve(4 * pixels.size());
    for (const auto pixel : pixels)
        for (const int shift : {24, 16, 8, 0})
            bytes.push_back(static_cast<std::uint8_t>(pixel >> shift));
    return bytes;
}

void append(sdbus::Message& message, const TrayPixmap& pixmap) {
    message.openStruct("iiay");
    message << std::int32_t{pixmap.side} << std::int32_t{pixmap.side};
    const auto bytes = networkOrder(pixmap.pixels);
    const int result = sd_bus_message_append_array(Inside::of(message), 'y', bytes.data(), bytes.size());
    if (result < 0)
        throw sdbus::createError(-result, "couldn't append a picture");
    message.closeStruct();
}

} // namespace

sdbus::Message& operator<<(sdbus::Message& message, const TrayPixmapsOnBus& pictures) {
    message.openContainer("(iiay)");
    if (pictures.pixmaps)
        for (const auto& pixmap : *pictures.pixmaps)
            append(message, pixmap);
    message.closeContainer();
    return message;
}

} // namespace kestrio
