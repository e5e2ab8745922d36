#include "Kestrio/Platform/Linux/TitleFamilies.h"

#include "Kestrio/Platform/Linux/CatalogueLines.h"
#include "Kestrio/Platform/Linux/EmbeddedCatalogue.h"

namespace kestrio {

std::vector<TitleFamilyMember> titleFamilyMembers() {
    return parseTitleFamilies(embedded::titleFamilies);
}

std::vector<TitleFamilyMember> parseTitleFamilies(std::string_view text) {
    std::vector<TitleFamilyMember> members;
    visitCatalogueLines(text, [&](std::string_view family, std::string_view bundleID) {
        members.push_back({bundleID, family});
    });
    return members;
}

} // namespace kestrio
