// The menu that changes the category of an application or a site. Plain values.
#pragma once

#include "Kestrio/Pages/Rows.h"

namespace kestrio {

/// Whether the person chose the category themselves.
enum class CategoryOrigin { byDefault, overridden };

struct CategoryMenu {
    static constexpr auto symbol = "chevron.down";
    static constexpr auto help = "Change category";
    static constexpr auto currentSymbol = "checkmark";

    /// An entry sets its category; the one without a category takes the person's choice back.
    struct Entry {
        std::string title;
        std::optional<ActivityCategory> category;
        bool isCurrent = false;
        friend bool operator==(const Entry&, const Entry&) = default;
    };
    CategoryPill current;
    std::vector<Entry> entries;
    friend bool operator==(const CategoryMenu&, const CategoryMenu&) = default;
};

CategoryMenu categoryMenu(ActivityCategory current, CategoryOrigin origin);

} // namespace kestrio
