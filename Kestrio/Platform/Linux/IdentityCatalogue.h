// Which bundle identifier an application of this host has on every host, and which of this host's applications are
// lock screens, passing prompts, or essential. Data, kept in `Catalogue/*.tsv` and built into the program.
//
// Immutable; callable from any thread. A question is a search in a sorted list and allocates nothing.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrio {

enum class IdentityRole {
    lockScreen, // lock screens and screen savers: the machine is not in use
    prompt,     // asks for a password or a permission and takes the front for a moment
    essential,  // must never be frozen or slowed down
};

/// The text of a list: a line is an identifier and, separated by tabs, further names under which the application is
/// found. Names are desktop ids, window classes or programs. "#" begins a comment, in a line of its own.
struct CatalogueText {
    std::optional<IdentityRole> role; // absent: applications
    std::string_view text;
};

class IdentityCatalogue {
public:
    /// The texts must outlive the catalogue.
    explicit IdentityCatalogue(const std::vector<CatalogueText>& texts);

    /// The lists that are built in.
    static const IdentityCatalogue& builtIn();

    /// The bundle identifier of the application with this desktop id, window class or program; letter case does not
    /// matter. Absent for an application that the catalogue does not know.
    std::optional<std::string_view> identifier(std::string_view name) const;

    /// The same, with the rule for families of applications (`jetbrains-NAME`). A desktop id that nothing knows is its
    /// own identifier.
    std::string identifierOfDesktopID(std::string_view desktopID) const;

    /// All names that lead to the identifier, itself among them if it is one.
    std::vector<std::string_view> namesOf(std::string_view identifier) const;

    /// The identifiers of the role's members.
    const std::vector<std::string_view>& members(IdentityRole role) const {
        return members_[static_cast<std::size_t>(role)];
    }

    /// Mistakes in the lists, in words for their author: a name that leads to two identifiers, a malformed line.
    const std::vector<std::string>& mistakes() const { return mistakes_; }

private:
    struct Row {
        std::string_view name;
        std::string_view identifier;
    };

    void add(const CatalogueText& text);
    void addLine(std::string_view line, std::optional<IdentityRole> role);

    std::vector<Row> rows_;                                // sorted by name without case
    std::array<std::vector<std::string_view>, 3> members_; // by role
    std::vector<std::string> mistakes_;
};

/// The raw text of the activity category that the `Categories` of a desktop file suggest, "other" when none does.
std::string_view categoryOfDesktopCategories(std::string_view categories);

} // namespace kestrio
