// Files and folders that nobody but their owner may read. Callable from any thread; each takes a few system calls.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace kestrio {

/// Makes the folder with its parents where they are missing, and takes everybody else's access to the folder itself
/// away. Absent when it is there and private, else what stood in the way, with the path.
std::optional<std::string> makePrivateFolder(const std::filesystem::path& folder);

/// Makes an empty file where there is none, and takes everybody else's access away. The contents of a file that is
/// there are not touched. Absent when all went well, else what stood in the way, with the path.
std::optional<std::string> makePrivateFile(const std::filesystem::path& file);

} // namespace kestrio
