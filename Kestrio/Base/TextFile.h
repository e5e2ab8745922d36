// Files of text: read piece by piece, and written so that they are there whole or not at all. Neither ever holds more
// than a piece in memory. Callable from any thread; each call blocks for as long as the file needs.
#pragma once

#include "Kestrio/Base/Descriptor.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <stop_token>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <system_error>

namespace kestrio {

/// Hands the file's text, from where it stands to its end, to `receive` in pieces of at most a megabyte, each of whole
/// characters. Answers none when the end was reached, `illegal_byte_sequence` at the first byte that is not UTF-8,
/// `operation_canceled` soon after the stop was requested, or what the system says.
std::error_code readText(const Descriptor& file, const std::function<void(std::string_view piece)>& receive,
                         const std::stop_token& stop = {});

/// In bytes; 0 for what has no size, such as a pipe.
std::uintmax_t fileSize(const Descriptor& file);

/// A file in the making, beside the one whose place it takes. What is there stays until `commit`; without that the new
/// one never existed. The folder must exist.
class ReplacementFile {
public:
    ReplacementFile(std::filesystem::path file, mode_t mode);
    ~ReplacementFile();
    ReplacementFile(const ReplacementFile&) = delete;
    ReplacementFile& operator=(const ReplacementFile&) = delete;

    /// After a failure nothing more is written.
    void write(std::string_view text);

    /// Flushes to the disk and renames. Answers the first failure of all that was done, or none: the file is then in
    /// its place, whenever the machine or the program stops.
    std::error_code commit();

    /// What the names of files in the making begin with; whoever was killed leaves one behind.
    static std::string temporaryPrefix(const std::filesystem::path& file);

private:
    void flush();

    const std::filesystem::path file_;
    std::string temporary_; // empty when there is none
    Descriptor descriptor_;
    std::string buffer_;
    std::error_code error_;
};

/// Writes all of the text to a descriptor that blocks.
std::error_code writeAll(const Descriptor& file, std::string_view text);

} // namespace kestrio
