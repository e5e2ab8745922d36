#include "Kestrio/Shell/Formatters.h"

#include <cmath>
#include <fmt/format.h>

namespace kestrio::Fmt {

std::string duration(Seconds length) {
    const auto seconds = static_cast<long long>(std::round(length.count()));
    if (seconds < 60)
        return fmt::format("{}s", seconds);
    const auto minutes = seconds / 60;
    if (minutes < 60)
        return fmt::format("{}m", minutes);
    if (minutes % 60 == 0)
        return fmt::format("{}h", minutes / 60);
    return fmt::format("{}h {}m", minutes / 60, minutes % 60);
}

} // namespace kestrio::Fmt
