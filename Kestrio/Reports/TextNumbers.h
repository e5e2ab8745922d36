// Numbers for texts, so that a report's making looks at each text once and compares numbers from then on. Texts that
// are canonically equivalent have the same number.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kestrio {

/// `absent` is the number of an absent text, which differs from an empty one.
enum class TextNumber : std::uint32_t { absent = 0 };

class TextNumbers {
public:
    TextNumbers();

    /// The text's bytes must stay where they are for as long as the numbers are used.
    TextNumber number(std::string_view text);

    /// The same for a text of which a copy is kept here.
    TextNumber numberKept(std::string_view text);

    /// The text as it was first seen; empty for an absent one.
    std::string_view text(TextNumber number) const { return texts_[static_cast<std::size_t>(number)]; }

    /// Every number is below this.
    std::size_t size() const { return texts_.size(); }

private:
    /// One sequence of bytes. Several of them share a number when they are equivalent.
    struct Slot {
        std::size_t hash = 0;
        std::string_view bytes;
        TextNumber number = TextNumber::absent; // in a free slot
    };

    TextNumber add(std::size_t hash, std::string_view text);
    Slot& slot(std::size_t hash, std::string_view text);
    void grow();
    TextNumber newNumber(std::string_view text);

    std::vector<Slot> slots_; // a power of two
    std::size_t spellings_ = 0;
    std::vector<std::string_view> texts_;                            // by number
    std::unordered_multimap<std::size_t, TextNumber> notPlainASCII_; // by the hash that equivalent texts share
    std::deque<std::string> kept_;
};

} // namespace kestrio
