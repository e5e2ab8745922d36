// The order in which people of a language look for texts, without regard to case.
//
// Made for one sorting and dropped: making one reads the rules of the locale. Belongs to one queue.
#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace kestrio {

class Collation {
public:
    /// `locale` as in "en_GB" or "en-GB"; with an empty or unknown one the order that suits most languages.
    explicit Collation(const std::string& locale);
    ~Collation();
    Collation(const Collation&) = delete;
    Collation& operator=(const Collation&) = delete;

    /// Whether `a` comes before `b`. Texts that differ in case alone come in neither order.
    bool isBefore(std::string_view a, std::string_view b) const;

private:
    struct Rules;
    std::unique_ptr<const Rules> rules_;
};

} // namespace kestrio
