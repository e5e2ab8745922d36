#include "TindraCore/UUID.h"

#include <cstddef>

namespace tindra {
namespace {

constexpr std::size_t textLength = 36;

constexpr bool isDashAt(std::size_t position) {
    return position == 8 || position == 13 || position == 18 || position == 23;
}

constexpr std::optional<std::uint8_t> hexDigit(char character) {
    if (character >= '0' && character <= '9')
        return static_cast<std::uint8_t>(character - '0');
    if (character >= 'A' && character <= 'F')
        return static_cast<std::uint8_t>(character - 'A' + 10);
    if (character >= 'a' && character <= 'f')
        return static_cast<std::uint8_t>(character - 'a' + 10);
    return std::nullopt;
}

} // namespace

std::string text(const UUID& uuid) {
    static constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    text.reserve(textLength);
    for (const auto byte : uuid.bytes) {
        if (isDashAt(text.size()))
            text += '-';
        text += digits[byte >> 4];
        text += digits[byte & 0x0F];
    }
    return text;
}

std::optional<UUID> uuid(std::string_view text) {
    if (text.size() != textLength)
        return std::nullopt;
    UUID uuid;
    std::size_t position = 0;
    for (auto& byte : uuid.bytes) {
        if (isDashAt(position) && text[position++] != '-')
            return std::nullopt;
        const auto high = hexDigit(text[position++]);
        const auto low = hexDigit(text[position++]);
        if (!high || !low)
            return std::nullopt;
        byte = static_cast<std::uint8_t>(*high << 4 | *low);
    }
    return uuid;
}

} // namespace tindra
