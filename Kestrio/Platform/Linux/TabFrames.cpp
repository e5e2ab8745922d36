#include "Kestrio/Platform/Linux/TabFrames.h"

#include <cstdint>
#include <cstring>

namespace kestrio {

std::string tabFrame(std::string_view text) {
    const auto length = static_cast<std::uint32_t>(text.size());
    std::string frame(sizeof length, '\0');
    std::memcpy(frame.data(), &length, sizeof length);
    return frame.append(text);
}

void TabFrameReader::add(std::string_view bytes) {
    if (!isBroken_)
        waiting_ += bytes;
}

std::optional<std::string> TabFrameReader::next() {
    std::uint32_t length = 0;
    if (isBroken_ || waiting_.size() < sizeof length)
        return std::nullopt;
    std::memcpy(&length, waiting_.data(), sizeof length);
    if (length == 0 || length > longestTabFrame) {
        isBroken_ = true;
        waiting_ = {};
        return std::nullopt;
    }
    if (waiting_.size() - sizeof length < length)
        return std::nullopt;
    auto text = waiting_.substr(sizeof length, length);
    waiting_.erase(0, sizeof length + length);
    if (waiting_.empty())
        waiting_ = {}; // a large message is rare; its memory need not stay
    return text;
}

} // namespace kestrio
