#include "Kestrio/Pages/Settings/CategorySettings.h"

#include "Kestrio/Base/Formatters.h"
#include "Kestrio/Base/Text.h"
#include "Kestrio/Classification/TextTools.h"

#include <algorithm>
#include <set>

namespace kestrio {
namespace {

using Kind = CategorySettings::Kind;
using Known = CategorySettings::Known;

const Categorizer::Overrides& overrides(Kind kind, const Categorizer::Snapshot& categories) {
    return kind == Kind::apps ? categories.appOverrides : categories.domainOverrides;
}

ActivityCategory category(Kind kind, const std::string& id, const Categorizer::Snapshot& categories) {
    return kind == Kind::apps ? categories.appCategory(id) : categories.category({}, id);
}

CategorySettings::Row row(Kind kind, const Known& known, const Categorizer::Snapshot& categories) {
    const bool isChosen = overrides(kind, categories).contains(known.id);
    return {.id = known.id,
            .icon = kind == Kind::apps ? RowIcon(AppIcon{known.id}) : rowIcon(siteIcon(known.id)),
            .title = known.name,
            .time = known.duration > Seconds(0) ? Fmt::duration(known.duration) : "",
            .menu = categoryMenu(category(kind, known.id, categories),
                                 isChosen ? CategoryOrigin::overridden : CategoryOrigin::byDefault)};
}

} // namespace

std::string_view label(Kind kind) {
    switch (kind) {
    case Kind::apps: return "Apps";
    case Kind::websites: return "Websites";
    }
    return {};
}

std::vector<CategorySettings::Row> categoryRows(Kind kind, const std::vector<Known>& known,
                                                const Categorizer::Snapshot& categories, const ItemFilter& filter) {
    std::set<std::string> named;
    for (const auto& [id, chosen] : overrides(kind, categories))
        named.insert(id);
    auto all = known;
    for (const auto& one : known)
        named.erase(one.id);
    for (const auto& id : named)
        all.push_back({id, id, {}});
    std::vector<CategorySettings::Row> rows;
    for (const auto& one : all)
        if (filter.finds(one.name) || filter.finds(one.id))
            rows.push_back(row(kind, one, categories));
    return rows;
}

std::string_view emptyText(Kind kind, const ItemFilter& filter) {
    if (!filter.isEmpty())
        return noMatches;
    return kind == Kind::apps ? "No apps recorded yet." : "No websites recorded yet.";
}

std::optional<std::string> typedDomain(std::string_view typed) {
    const auto trimmed = text::trimmed(typed);
    if (const auto domain = URLTools::domain(std::string(trimmed)))
        return domain;
    auto domain = Categorizer::normalizedDomain(trimmed.substr(0, trimmed.find('/')));
    return domain.empty() ? std::nullopt : std::optional(std::move(domain));
}

} // namespace kestrio
