// How the enumerations that are stored as text find the case of a raw value.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace tindra {

/// The case whose raw value is exactly the text.
template <class Case, std::size_t count>
std::optional<Case> caseWithRawValue(std::string_view text, const std::array<Case, count>& all) {
    const auto found = std::find_if(all.begin(), all.end(), [&](Case one) { return rawValue(one) == text; });
    return found == all.end() ? std::nullopt : std::optional(*found);
}

} // namespace tindra
