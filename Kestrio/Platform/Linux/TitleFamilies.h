// Which applications of this host name the project at hand in the titles of their windows, and how. Data, kept in
// `Catalogue/TitleFamilies.tsv` and built into the program.
#pragma once

#include <string_view>
#include <vector>

namespace kestrio {

struct TitleFamilyMember {
    std::string_view bundleID;
    std::string_view family; // the raw text of the family
    friend bool operator==(const TitleFamilyMember&, const TitleFamilyMember&) = default;
};

/// What is built in; the texts live as long as the program. Any thread.
std::vector<TitleFamilyMember> titleFamilyMembers();

/// The members that a list names: a line is a family and, separated by tabs, identifiers. "#" begins a comment, in a
/// line of its own. They point into the text.
std::vector<TitleFamilyMember> parseTitleFamilies(std::string_view text);

} // namespace kestrio
