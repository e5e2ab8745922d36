// The programs that start applications and are none themselves: the system's and the session's managers, display
// managers, and the shells of desktops. What they have started stands on its own. Pure; any thread.
#pragma once

#include <string_view>

namespace kestrio {

/// `program` is the file name of an executable or of the script that it runs; where only the kernel's name for a
/// process is known, the first 15 bytes of it.
bool isSessionMachinery(std::string_view program);

} // namespace kestrio
