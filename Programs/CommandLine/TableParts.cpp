#include "Programs/CommandLine/TableParts.h"

#include "Kestrio/Base/Text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>

namespace kestrio {
namespace {

/// From the 256 colours of terminals.
constexpr std::array shades{33, 37, 98, 172, 167, 65, 139};

/// The colours of categories, out of the same 256.
int terminalColour(SystemColor color) {
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

} // namespace

std::string Painter::shade(std::size_t index, const std::string& text) const {
    return painted(fmt::format("38;5;{}", shades[index % shades.size()]), text);
}

std::string Painter::colour(SystemColor color, const std::string& text) const {
    return painted(fmt::format("38;5;{}", terminalColour(color)), text);
}

std::string Painter::painted(const std::string& code, const std::string& text) const {
    return hasColour_ && !text.empty() ? fmt::format("\x1B[{}m{}\x1B[0m", code, text) : text;
}

std::string padded(const std::string& text, std::size_t columns) {
    const auto used = text::columns(text);
    return used < columns ? text + std::string(columns - used, ' ') : text;
}

std::string paddedLeft(const std::string& text, std::size_t columns) {
    const auto used = text::columns(text);
    return used < columns ? std::string(columns - used, ' ') + text : text;
}

std::string counted(std::size_t count, const std::string& noun) {
    return fmt::format("{} {}{}", count, noun, count == 1 ? "" : "s");
}

std::string bar(double share, std::size_t columns) {
    static constexpr std::array<const char*, 8> eighths{"", "▏", "▎", "▍", "▌", "▋", "▊", "▉"};
    const auto whole = static_cast<long>(columns * eighths.size());
    const auto units = std::clamp(std::lround(share * static_cast<double>(whole)), share > 0 ? 1L : 0L, whole);
    std::string text;
    for (long full = 0; full < units / 8; ++full)
        text += "█";
    return padded(text + eighths[static_cast<std::size_t>(units % 8)], columns);
}

} // namespace kestrio
