// Numbers as the shortest text that reads back as the same number, whatever the locale. For `toString`.
#pragma once

#include <array>
#include <charconv>
#include <string>

namespace tindra {

template <class Number>
std::string numberText(Number number) {
    std::array<char, 64> characters; // more than the longest double or 64-bit integer needs
    const auto written = std::to_chars(characters.data(), characters.data() + characters.size(), number);
    return {characters.data(), written.ptr};
}

} // namespace tindra
