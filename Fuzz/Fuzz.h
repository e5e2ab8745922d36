// What a fuzz target consists of: one function, run on any bytes. It aborts when something does not hold.
//
// With the preset `fuzz` libFuzzer makes up the bytes; elsewhere a plain driver runs each target once on its seeds.
#pragma once

#include <cstdlib>
#include <string_view>

namespace kestrio {

/// Each target defines it.
void fuzz(std::string_view input);

inline void require(bool condition) {
    if (!condition)
        std::abort();
}

} // namespace kestrio
