// Reading the small texts of `/proc` and `/sys`, and the numbers in them. Free functions; any thread, never blocking
// for the files that they are meant for.
#pragma once

#include <charconv>
#include <concepts>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace kestrio {

/// The text as a number, nothing before or behind it.
template <std::integral Number>
std::optional<Number> parsedNumber(std::string_view text, int base = 10) {
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(value) : std::nullopt;
}

inline std::optional<double> parsedDecimal(std::string_view text) {
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(value) : std::nullopt;
}

/// The next word of a text that is read from the left; empty at its end. Blanks and tabs stand between words.
std::string_view nextWord(std::string_view& text);

/// The next line without its line feed; absent at the end of the text.
std::optional<std::string_view> nextLine(std::string_view& text);

/// The number that the text begins with, behind blanks; what follows does not matter. Absent when there is none, and
/// for one above 64 bits.
std::optional<std::uint64_t> leadingNumber(std::string_view text);

/// A buffer that the texts of one reader go through, so that reading again allocates nothing.
class KernelTextBuffer {
public:
    /// The file's text up to 256 KiB, valid until the next reading. Absent when it cannot be read.
    std::optional<std::string_view> read(const char* path);

    /// The same of a text that the kernel hands over in one piece, as it does the counters of a process. Saves asking
    /// whether there is more.
    std::optional<std::string_view> readPiece(const char* path);
    /// From the beginning of an open file, which stays open.
    std::optional<std::string_view> readPiece(int descriptor);

private:
    std::optional<std::size_t> readAt(int descriptor, std::size_t offset);

    std::string buffer_ = std::string(8192, '\0');
};

/// The text of a file without white space at its end. Absent when it cannot be read.
std::optional<std::string> kernelValue(const std::filesystem::path& file);

} // namespace kestrio
