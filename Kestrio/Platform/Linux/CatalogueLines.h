// The lists of `Catalogue/*.tsv` that put names under heads. Pure; any thread.
#pragma once

#include <algorithm>
#include <string_view>
#include <vector>

namespace kestrio {

/// Cuts the text at the first separator and hands back what stood before it.
inline std::string_view takeUpTo(char separator, std::string_view& text) {
    const auto piece = text.substr(0, text.find(separator));
    text.remove_prefix(std::min(piece.size() + 1, text.size()));
    return piece;
}

/// Calls `visit(head, name)` for each name of a list: a line is a head and, separated by tabs, names. "#" begins a
/// comment, in a line of its own.
template <class Visit>
void visitCatalogueLines(std::string_view text, Visit visit) {
    while (!text.empty()) {
        auto line = takeUpTo('\n', text);
        if (line.starts_with('#'))
            continue;
        const auto head = takeUpTo('\t', line);
        while (!line.empty())
            visit(head, takeUpTo('\t', line));
    }
}

} // namespace kestrio
