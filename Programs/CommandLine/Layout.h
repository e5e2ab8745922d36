// Columns and colours of what the command line writes for people.
#pragma once

#include "Kestrio/Base/Text.h"
#include "Kestrio/Model/Models.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>
#include <string>

namespace kestrio {

/// Colours texts for a terminal, or leaves them as they are.
class Painter {
public:
    explicit Painter(bool hasColour) : hasColour_(hasColour) {}

    std::string dim(const std::string& text) const { return painted("2", text); }
    std::string bold(const std::string& text) const { return painted("1", text); }
    /// One of a few shades that can be told apart; they repeat.
    std::string shade(std::size_t index, const std::string& text) const {
        return painted(fmt::format("38;5;{}", shades[index % shades.size()]), text);
    }
    std::string colour(SystemColor color, const std::string& text) const {
        return painted(fmt::format("38;5;{}", terminalColour(color)), text);
    }

private:
    /// Seven shades that read on light and on dark grounds, from the 256 colours of terminals.
    static constexpr std::array shades{33, 37, 98, 172, 167, 65, 139};

    /// The colours of categories, out of the same 256.
    static int terminalColour(SystemColor color) {
        switch (color) {
        case SystemColor::blue: return 33;
        case SystemColor::teal: return 37;
        case SystemColor::purple: return 98;
        case SystemColor::orange: return 172;
        case SystemColor::red: return 167;
        case SystemColor::brown: return 137;
        case SystemColor::gray: return 245;
        }
        return 245;
    }

    std::string painted(const std::string& code, const std::string& text) const {
        return hasColour_ && !text.empty() ? fmt::format("\x1B[{}m{}\x1B[0m", code, text) : text;
    }

    bool hasColour_;
};

/// The text with blanks behind it, or before it, up to the number of columns.
inline std::string padded(const std::string& text, std::size_t columns) {
    const auto used = text::columns(text);
    return used < columns ? text + std::string(columns - used, ' ') : text;
}
inline std::string paddedLeft(const std::string& text, std::size_t columns) {
    const auto used = text::columns(text);
    return used < columns ? std::string(columns - used, ' ') + text : text;
}

/// A bar of at most so many columns, in eighths of a column. What lasted at all shows at least one eighth.
inline std::string bar(double share, std::size_t columns) {
    static constexpr std::array<const char*, 8> eighths{"", "▏", "▎", "▍", "▌", "▋", "▊", "▉"};
    const auto most = static_cast<double>(columns * 8);
    const auto units = static_cast<std::size_t>(std::max(1L, std::lround(std::clamp(share, 0.0, 1.0) * most)));
    std::string text;
    for (std::size_t full = 0; full < units / 8; ++full)
        text += "█";
    return padded(text + eighths[units % 8], columns);
}

/// "1 session", "2 sessions".
inline std::string counted(std::size_t count, const std::string& noun) {
    return fmt::format("{} {}{}", count, noun, count == 1 ? "" : "s");
}

} // namespace kestrio
