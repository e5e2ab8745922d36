// The tab "Categories": every application or website that was recorded, with its time and the category that it counts
// as. Pure.
#pragma once

#include "Kestrio/Classification/Categorizer.h"
#include "Kestrio/Pages/CategoryMenu.h"
#include "Kestrio/Pages/ItemFilter.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrio {

struct CategorySettings {
    enum class Kind { apps, websites };
    static constexpr std::array allKinds{Kind::apps, Kind::websites};

    static constexpr auto kindsName = "Kind"; // for those who do not see them
    static constexpr auto domainPrompt = "Website, such as example.org";
    static constexpr auto addTitle = "Add";
    static constexpr auto help = "What each app and website counts as. A change applies to everything that was ever "
                                 "recorded; a website decides before the app that showed it.";

    /// What was recorded of one application or website. The identifier is its bundle identifier, or its domain.
    struct Known {
        std::string id;
        std::string name;
        Seconds duration{};
        friend bool operator==(const Known&, const Known&) = default;
    };

    struct Row {
        std::string id;
        RowIcon icon;
        std::string title;
        std::string time; // empty for one that was never recorded
        CategoryMenu menu;
        friend bool operator==(const Row&, const Row&) = default;
    };
};

std::string_view label(CategorySettings::Kind kind);

/// Those that were recorded in their order, and after them those that the person alone has named; of both what the
/// filter keeps.
std::vector<CategorySettings::Row> categoryRows(CategorySettings::Kind kind,
                                                const std::vector<CategorySettings::Known>& known,
                                                const Categorizer::Snapshot& categories, const ItemFilter& filter);

/// What an empty list says.
std::string_view emptyText(CategorySettings::Kind kind, const ItemFilter& filter);

/// The domain that a person means, who may have typed or pasted a whole address; absent when nothing is left of it.
std::optional<std::string> typedDomain(std::string_view typed);

} // namespace kestrio
