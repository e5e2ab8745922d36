// Columns and colours of what the command line writes for people.
#pragma once

#include "Kestrio/Base/Text.h"

#include <array>
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

private:
    /// Seven shades that read on light and on dark grounds, from the 256 colours of terminals.
    static constexpr std::array shades{33, 37, 98, 172, 167, 65, 139};

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

/// "1 session", "2 sessions".
inline std::string counted(std::size_t count, const std::string& noun) {
    return fmt::format("{} {}{}", count, noun, count == 1 ? "" : "s");
}

} // namespace kestrio
