// Showing a file among the others of its folder, in the person's own file manager.
#pragma once

#include <filesystem>
#include <string>

namespace kestrio {

/// Asks the file manager of the session bus of this address, which is started if need be. False when there is none that
/// knows how to, or it does not answer within two seconds. Blocks; any thread.
bool showInFileManager(const std::string& busAddress, const std::filesystem::path& file);

/// "file:///home/ada/a%20b"
std::string fileAddress(const std::filesystem::path& file);

} // namespace kestrio
