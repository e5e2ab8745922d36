#include "Kestrio/Views/Window/AppsModel.h"

#include "Kestrio/Views/Values/Details.h"

namespace kestrio {

MasterDetailModel::List AppsModel::list(const ItemFilter& /*filter*/) const {
    auto page = appsPage(report());
    if (const auto* empty = std::get_if<EmptyActivity>(&page))
        return {.empty = *empty};
    return {.rows = std::move(std::get<AppsPage>(page).rows)};
}

std::optional<MasterDetailModel::Detail> AppsModel::detailOf(const std::string& key, const ItemFilter& filter) const {
    const auto categories = parts().classification.categorizer().snapshot();
    const AppSelection selection{.bundleID = key,
                                 .sort = parts().host.isBrowser(key) ? AppSort::browser : AppSort::other,
                                 .categoryOrigin = categories.appOverrides.contains(key) ? CategoryOrigin::overridden
                                                                                         : CategoryOrigin::byDefault,
                                 .filter = filter};
    auto detail = appDetail(report(), selection, parts().viewpoint());
    if (!detail)
        return std::nullopt;
    return Detail{toVariant(*detail), std::move(detail->trend)};
}

void AppsModel::setCategory(const QString& category) {
    if (!selection().isEmpty())
        parts().classification.categorizer().setAppCategory(activityCategory(category.toStdString()), selectedKey());
}

} // namespace kestrio
