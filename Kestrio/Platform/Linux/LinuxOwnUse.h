// What the kernel counts of this program, from `/proc/self`. Any thread; some 20 µs and 8 more for each thread of the
// program, without blocking.
#pragma once

#include "Kestrio/Platform/OwnUse.h"

#include <filesystem>
#include <optional>

namespace kestrio {

/// The folder is `/proc/self`, or like it. Absent when the CPU time cannot be read; other counters that cannot are 0.
std::optional<OwnUse> readOwnUse(const std::filesystem::path& process = "/proc/self");

} // namespace kestrio
