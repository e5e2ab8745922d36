// One hash of several values, for the records that can be keys. Equal values give equal hashes within one run of the
// program; nothing stores them.
#pragma once

#include <cstddef>
#include <functional>

namespace tindra {

template <class... Values>
std::size_t hashOf(const Values&... values) {
    std::size_t mixed = 0;
    // The fraction of the golden ratio spreads the bits of hashes that are the number itself.
    ((mixed ^= std::hash<Values>()(values) + 0x9E37'79B9'7F4A'7C15 + (mixed << 6) + (mixed >> 2)), ...);
    return mixed;
}

} // namespace tindra
