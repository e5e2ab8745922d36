#include "Kestrio/Pages/CategoryMenu.h"

namespace kestrio {

CategoryMenu categoryMenu(ActivityCategory current, CategoryOrigin origin) {
    CategoryMenu menu{.current = categoryPill(current), .entries = {}};
    for (const auto category : allActivityCategories)
        menu.entries.push_back({std::string(label(category)), category, category == current});
    if (origin == CategoryOrigin::overridden)
        menu.entries.push_back({"Reset to Default", std::nullopt, false});
    return menu;
}

} // namespace kestrio
