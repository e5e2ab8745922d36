#include "Kestrio/Shell/FreshUUID.h"

#include <random>

namespace kestrio {

tindra::UUID freshUUID() {
    std::random_device source;
    tindra::UUID uuid;
    for (auto& byte : uuid.bytes)
        byte = static_cast<std::uint8_t>(source());
    // What marks an identity as random among the other kinds.
    uuid.bytes[6] = static_cast<std::uint8_t>((uuid.bytes[6] & 0x0F) | 0x40);
    uuid.bytes[8] = static_cast<std::uint8_t>((uuid.bytes[8] & 0x3F) | 0x80);
    return uuid;
}

} // namespace kestrio
