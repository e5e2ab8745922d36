// Files that are replaced whole or not at all, and locks that live in files. Any thread; blocks for a small file's
// write, or up to the stated wait.
#pragma once

#include "Kestrio/Base/Date.h"
#include "Kestrio/Platform/Linux/Descriptor.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <system_error>

namespace kestrio {

/// Puts `text` in the file's place: written beside it, flushed to the disk, renamed over it. The file is afterwards
/// either the old or the new one, whenever the machine or the program stops. The folder must exist.
std::error_code replaceFile(const std::filesystem::path& file, std::string_view text, mode_t mode);

/// Removes what a writer that was killed left beside the file. Only for the holder of a lock that every writer takes.
void removeLeftovers(const std::filesystem::path& file);

/// An exclusive lock on a file of its own (0600, made if needed, never removed), which ends with the descriptor or
/// with the process. Tries until `patience` is over. On failure the error; `timed_out` when somebody else holds it.
struct FileLock {
    Descriptor descriptor;
    std::error_code error;
};
FileLock lockFile(const std::filesystem::path& file, Seconds patience);

} // namespace kestrio
