// A file that a person named for a command to write into.
#pragma once

#include <filesystem>
#include <functional>
#include <stop_token>
#include <string_view>
#include <system_error>

namespace kestrio {

/// Takes the pieces of the file, in order.
using FileWriter = std::function<void(std::string_view piece)>;

/// Puts the content into the file, for its owner alone; whole or not at all where that can be. A link keeps pointing to
/// it, and a device or a pipe is written to. Answers what went wrong.
std::error_code writeFile(const std::filesystem::path& path, const std::function<void(const FileWriter&)>& content,
                          const std::stop_token& stop);

} // namespace kestrio
