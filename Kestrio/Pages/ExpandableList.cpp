#include "Kestrio/Pages/ExpandableList.h"

#include <fmt/format.h>

namespace kestrio {

std::optional<std::string> ExpandableList::moreTitle(std::size_t count) const {
    const auto remaining = count - shown(count);
    if (remaining == 0)
        return std::nullopt;
    return fmt::format("Show {} more", std::min(remaining, portion));
}

} // namespace kestrio
