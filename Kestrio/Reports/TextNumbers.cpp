#include "Kestrio/Reports/TextNumbers.h"

#include "Kestrio/Base/Text.h"

#include <algorithm>
#include <functional>

namespace kestrio {
namespace {

bool isASCII(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

} // namespace

TextNumbers::TextNumbers() : slots_(256), texts_(1) {}

TextNumber TextNumbers::number(std::string_view text) {
    const auto hash = std::hash<std::string_view>()(text);
    const auto known = slot(hash, text).number;
    return known != TextNumber::absent ? known : add(hash, text);
}

TextNumber TextNumbers::numberKept(std::string_view text) {
    const auto hash = std::hash<std::string_view>()(text);
    const auto known = slot(hash, text).number;
    return known != TextNumber::absent ? known : add(hash, kept_.emplace_back(text));
}

TextNumber TextNumbers::add(std::size_t hash, std::string_view text) {
    if (2 * (spellings_ + 1) > slots_.size())
        grow();
    ++spellings_;
    auto& made = slot(hash, text);
    made = {hash, text, newNumber(text)};
    return made.number;
}

TextNumber TextNumbers::newNumber(std::string_view text) {
    const auto next = static_cast<TextNumber>(texts_.size());
    if (!isASCII(text)) { // a plain text is equivalent to itself alone
        const auto hash = text::hash(text);
        const auto [first, last] = notPlainASCII_.equal_range(hash);
        for (auto at = first; at != last; ++at)
            if (text::equivalent(this->text(at->second), text))
                return at->second;
        notPlainASCII_.emplace(hash, next);
    }
    texts_.push_back(text);
    return next;
}

TextNumbers::Slot& TextNumbers::slot(std::size_t hash, std::string_view text) {
    const auto mask = slots_.size() - 1;
    auto at = hash & mask;
    while (slots_[at].number != TextNumber::absent && (slots_[at].hash != hash || slots_[at].bytes != text))
        at = (at + 1) & mask;
    return slots_[at];
}

void TextNumbers::grow() {
    auto old = std::vector<Slot>(2 * slots_.size());
    old.swap(slots_);
    for (const auto& one : old)
        if (one.number != TextNumber::absent)
            slot(one.hash, one.bytes) = one;
}

} // namespace kestrio
