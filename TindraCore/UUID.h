// The identity of something that a person made and may rename. A plain value; whoever makes a new one brings the bytes.
#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tindra {

struct UUID {
    std::array<std::uint8_t, 16> bytes{};

    friend constexpr auto operator<=>(const UUID&, const UUID&) = default;
};

/// The canonical form in upper case, such as "E621E1F8-C36C-495A-93FC-0C247A3E6E5F".
std::string text(const UUID& uuid);

/// Absent for anything but the canonical form; the letters may be of either case.
std::optional<UUID> uuid(std::string_view text);

} // namespace tindra
