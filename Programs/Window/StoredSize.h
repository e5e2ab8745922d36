// The size that a window had when it was last closed, in a small file of its own among the caches: losing it costs
// nothing. Both take the time of a small file.
#pragma once

#include "Kestrio/Views/Window/WindowParts.h"

#include <filesystem>
#include <optional>

namespace kestrio {

/// Absent where there is none, or one that no window could have had.
std::optional<WindowSize> readStoredSize(const std::filesystem::path& file);

/// A failure has no effect.
void writeStoredSize(const std::filesystem::path& file, WindowSize size);

} // namespace kestrio
