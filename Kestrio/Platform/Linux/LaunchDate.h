// When a process started, on the wall clock. Any thread; reads one file.
#pragma once

#include "Kestrio/Base/Clock.h"

#include <filesystem>
#include <optional>
#include <sys/types.h>

namespace kestrio {

/// To a hundredth of a second. Absent for a process that has ended.
std::optional<Date> launchDate(pid_t process, const Clock& clock, const std::filesystem::path& processes = "/proc");

} // namespace kestrio
