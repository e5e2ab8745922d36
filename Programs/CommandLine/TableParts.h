// What texts and tables for a terminal are put together from: columns, bars, colours, counts. Pure functions.
#pragma once

#include "Kestrio/Model/Models.h"

#include <cstddef>
#include <string>

namespace kestrio {

class Painter {
public:
    explicit Painter(bool hasColour) : hasColour_(hasColour) {}

    std::string dim(const std::string& text) const { return painted("2", text); }
    std::string bold(const std::string& text) const { return painted("1", text); }
    std::string good(const std::string& text) const { return painted("32", text); }
    std::string doubtful(const std::string& text) const { return painted("33", text); }
    std::string bad(const std::string& text) const { return painted("31", text); }
    /// One of seven shades that read on light and on dark grounds.
    std::string shade(std::size_t index, const std::string& text) const;
    std::string colour(SystemColor color, const std::string& text) const;

private:
    std::string painted(const std::string& code, const std::string& text) const;

    bool hasColour_;
};

/// The text with blanks behind, or before it, up to so many columns. A longer one stays as it is.
std::string padded(const std::string& text, std::size_t columns);
std::string paddedLeft(const std::string& text, std::size_t columns);

/// "1 session", "2 sessions".
std::string counted(std::size_t count, const std::string& noun);

/// A bar of so many columns, drawn in eighths of one. Any share above 0 shows at least one eighth.
std::string bar(double share, std::size_t columns);

} // namespace kestrio
