#include "Kestrio/Reports/KeyNumbers.h"

namespace kestrio {
namespace {

/// The finisher of a 64-bit mixing hash: every bit of the keys moves every bit of the result.
std::uint64_t hash(const KeyNumbers::Key& key) {
    std::uint64_t value = key.a + (std::uint64_t{key.b} << 32);
    value ^= key.c * std::uint64_t{0x9E3779B97F4A7C15};
    value = (value ^ (value >> 33)) * 0xFF51AFD7ED558CCD;
    value = (value ^ (value >> 33)) * 0xC4CEB9FE1A85EC53;
    return value ^ (value >> 33);
}

} // namespace

KeyNumbers::Found KeyNumbers::number(const Key& key) {
    auto* found = &slot(key);
    if (found->numberPlusOne != 0)
        return {found->numberPlusOne - 1, false};
    if (2 * (size_ + 1) > slots_.size()) {
        grow();
        found = &slot(key);
    }
    found->key = key;
    found->numberPlusOne = static_cast<std::uint32_t>(++size_);
    return {found->numberPlusOne - 1, true};
}

KeyNumbers::Slot& KeyNumbers::slot(const Key& key) {
    const auto mask = slots_.size() - 1;
    auto at = static_cast<std::size_t>(hash(key)) & mask;
    while (slots_[at].numberPlusOne != 0 && slots_[at].key != key)
        at = (at + 1) & mask;
    return slots_[at];
}

void KeyNumbers::grow() {
    auto old = std::vector<Slot>(2 * slots_.size());
    old.swap(slots_);
    for (const auto& one : old)
        if (one.numberPlusOne != 0)
            slot(one.key) = one;
}

} // namespace kestrio
