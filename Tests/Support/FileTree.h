// Captured trees of files, each kept as one text: a line "== PATH" begins a file, whose content follows up to the next
// such line, and "== PATH -> TARGET" is a link. Lines before the first are remarks.
#pragma once

#include <filesystem>

namespace kestrio {

/// Makes the files of the tree below the folder. Throws when the text cannot be read.
void unpackTree(const std::filesystem::path& text, const std::filesystem::path& folder);

} // namespace kestrio
