#include "Kestrio/Views/Window/ProjectsModel.h"

#include "Kestrio/Views/Values/Details.h"

namespace kestrio {

MasterDetailModel::List ProjectsModel::list(const ItemFilter& /*filter*/) const {
    auto page = projectsPage(report());
    if (const auto* empty = std::get_if<EmptyActivity>(&page))
        return {.empty = *empty};
    return {.rows = std::move(std::get<ProjectsPage>(page).rows)};
}

std::optional<MasterDetailModel::Detail> ProjectsModel::detailOf(const std::string& key,
                                                                 const ItemFilter& filter) const {
    auto detail = projectDetail(report(), key, filter, parts().viewpoint());
    if (!detail)
        return std::nullopt;
    return Detail{toVariant(*detail), std::move(detail->trend)};
}

void ProjectsModel::setShowingRules(bool isShowing) {
    if (std::exchange(showingRules_, isShowing) != isShowing)
        Q_EMIT showingRulesChanged();
}

QVariantMap ProjectsModel::words() {
    return Fields()
        .words("addRulesTitle", std::string_view(ProjectsPage::addRulesTitle))
        .text("rulesSymbol", std::string_view(ProjectsPage::rulesSymbol))
        .words("rulesHelp", std::string_view(ProjectsPage::rulesHelp))
        .words("sheetTitle", std::string_view(ProjectsPage::sheetTitle))
        .words("sheetDone", std::string_view(ProjectsPage::sheetDone));
}

} // namespace kestrio
