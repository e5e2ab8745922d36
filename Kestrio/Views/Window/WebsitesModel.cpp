#include "Kestrio/Views/Window/WebsitesModel.h"

#include "Kestrio/Views/Values/Details.h"

namespace kestrio {

MasterDetailModel::List WebsitesModel::list(const ItemFilter& filter) const {
    auto page = websitesPage(report(), filter);
    if (const auto* empty = std::get_if<EmptyActivity>(&page))
        return {.empty = *empty};
    auto& sites = std::get<WebsitesPage>(page);
    return {.rows = std::move(sites.rows), .message = std::move(sites.message)};
}

std::optional<MasterDetailModel::Detail> WebsitesModel::detailOf(const std::string& key,
                                                                 const ItemFilter& filter) const {
    const auto categories = parts().classification.categorizer().snapshot();
    const bool isOverridden = categories.domainOverrides.contains(Categorizer::normalizedDomain(key));
    const DomainSelection selection{.domain = key,
                                    .categoryOrigin =
                                        isOverridden ? CategoryOrigin::overridden : CategoryOrigin::byDefault,
                                    .filter = filter};
    auto detail = domainDetail(report(), selection, parts().viewpoint());
    if (!detail)
        return std::nullopt;
    return Detail{toVariant(*detail), std::move(detail->trend)};
}

void WebsitesModel::setCategory(const QString& category) {
    if (!selection().isEmpty())
        parts().classification.categorizer().setDomainCategory(activityCategory(category.toStdString()), selectedKey());
}

} // namespace kestrio
