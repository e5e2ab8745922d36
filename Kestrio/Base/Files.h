// Files and folders that nobody but their owner may read. Callable from any thread; each takes a few system calls.
// Each answers with the system's error, or none.
#pragma once

#include "Kestrio/Base/Descriptor.h"

#include <filesystem>
#include <system_error>

namespace kestrio {

/// Makes the folder, with those above it, for its owner alone. What is there already stays as it is.
std::error_code makeFolder(const std::filesystem::path& folder);

/// The same, and takes everybody else's access to the folder itself away, if it is ours to do so.
std::error_code makePrivateFolder(const std::filesystem::path& folder);

/// Makes an empty file where there is none, and takes everybody else's access away. The contents stay as they are.
std::error_code makePrivateFile(const std::filesystem::path& file);

/// Opens a file of any kind for reading; does not wait for the other end of a pipe. Holds nothing when that fails, and
/// `errno` says why.
Descriptor openForReading(const std::filesystem::path& file);

} // namespace kestrio
