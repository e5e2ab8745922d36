// How the browser extension, its native host and the agent cut their messages out of a stream: four bytes of length in
// the machine's own order, then so many bytes of text. This is the browsers' own form, kept all the way.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace kestrio {

/// The extension keeps well below this; browsers would allow far more. What announces more is refused unread.
inline constexpr std::size_t longestTabFrame = 1024 * 1024;

/// The text with its length before it. The text is not longer than a frame may be.
std::string tabFrame(std::string_view text);

/// Puts the pieces that arrive together again. A value; belongs to whoever reads the stream.
class TabFrameReader {
public:
    void add(std::string_view bytes);

    /// The next message; absent while it is not there whole, and for ever once the stream is broken.
    std::optional<std::string> next();

    /// A length of zero or beyond the longest was announced: where the next message begins is unknown.
    bool isBroken() const { return isBroken_; }

private:
    std::string waiting_;
    bool isBroken_ = false;
};

} // namespace kestrio
