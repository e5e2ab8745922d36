#include "Kestrio/Platform/Linux/TitleFamilies.h"

#include "Kestrio/Platform/Linux/EmbeddedCatalogue.h"

#include <algorithm>

namespace kestrio {
namespace {

/// Cuts the text at the first separator and hands back what stood before it.
std::string_view takeUpTo(char separator, std::string_view& text) {
    const auto piece = text.substr(0, text.find(separator));
    text.remove_prefix(std::min(piece.size() + 1, text.size()));
    return piece;
}

} // namespace

std::vector<TitleFamilyMember> titleFamilyMembers() {
    return parseTitleFamilies(embedded::titleFamilies);
}

std::vector<TitleFamilyMember> parseTitleFamilies(std::string_view text) {
    std::vector<TitleFamilyMember> members;
    while (!text.empty()) {
        auto line = takeUpTo('\n', text);
        if (line.starts_with('#'))
            continue;
        const auto family = takeUpTo('\t', line);
        while (!line.empty())
            members.push_back({takeUpTo('\t', line), family});
    }
    return members;
}

} // namespace kestrio
