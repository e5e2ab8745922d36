#include "Kestrio/Platform/Linux/KernelText.h"

#include "Kestrio/Platform/Linux/Descriptor.h"

#include <algorithm>
#include <fcntl.h>

namespace kestrio {
namespace {

constexpr std::size_t longestText = 256 * 1024; // the longest that is read, of a machine with many cores, has 60 KiB

constexpr std::string_view blanks = " \t";

} // namespace

std::string_view nextWord(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    const auto word = text.substr(0, text.find_first_of(blanks));
    text.remove_prefix(word.size());
    return word;
}

std::optional<std::string_view> nextLine(std::string_view& text) {
    if (text.empty())
        return std::nullopt;
    const auto line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    return line;
}

std::optional<std::uint64_t> leadingNumber(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    std::uint64_t value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    return result.ec == std::errc() ? std::optional(value) : std::nullopt;
}

std::optional<std::string_view> KernelTextBuffer::read(const char* path) {
    const Descriptor file(open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file)
        return std::nullopt;
    std::size_t length = 0;
    while (true) {
        // A list comes in pieces of some records, and only nothing tells that it is at its end.
        const auto count = readAt(file.number(), length);
        if (!count)
            return std::nullopt;
        length += *count;
        if (*count == 0 || length >= longestText)
            return std::string_view(buffer_).substr(0, length);
        if (length == buffer_.size())
            buffer_.resize(buffer_.size() * 2);
    }
}

std::optional<std::string_view> KernelTextBuffer::readPiece(const char* path) {
    const Descriptor file(open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    return file ? readPiece(file.number()) : std::nullopt;
}

std::optional<std::string_view> KernelTextBuffer::readPiece(int descriptor) {
    const auto count = readAt(descriptor, 0);
    return count ? std::optional(std::string_view(buffer_).substr(0, *count)) : std::nullopt;
}

std::optional<std::size_t> KernelTextBuffer::readAt(int descriptor, std::size_t offset) {
    const auto count = pread(descriptor, buffer_.data() + offset, buffer_.size() - offset, static_cast<off_t>(offset));
    return count < 0 ? std::nullopt : std::optional(static_cast<std::size_t>(count));
}

std::optional<std::string> kernelValue(const std::filesystem::path& file) {
    KernelTextBuffer buffer;
    const auto text = buffer.read(file.c_str());
    if (!text)
        return std::nullopt;
    const auto end = text->find_last_not_of(" \t\r\n");
    return std::string(text->substr(0, end == std::string_view::npos ? 0 : end + 1));
}

} // namespace kestrio
