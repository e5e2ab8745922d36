// Numbers for keys, in the order of their first sight: 0, 1, 2, … A hash table made for being asked once per session
// of a million, so that what belongs to a key can lie in a plain list.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kestrio {

class KeyNumbers {
public:
    /// Up to three numbers that name a thing together.
    struct Key {
        std::uint32_t a = 0;
        std::uint32_t b = 0;
        std::uint32_t c = 0;

        friend bool operator==(const Key&, const Key&) = default;
    };

    struct Found {
        std::uint32_t number;
        bool isNew;
    };

    Found number(const Key& key);

    std::size_t size() const { return size_; }

private:
    struct Slot {
        Key key;
        std::uint32_t numberPlusOne = 0; // 0 in a free slot
    };

    Slot& slot(const Key& key);
    void grow();

    std::vector<Slot> slots_ = std::vector<Slot>(64); // a power of two
    std::size_t size_ = 0;
};

} // namespace kestrio
