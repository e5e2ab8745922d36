#include "Kestrio/Views/Window/Settings/CategorySettingsModel.h"

#include "Kestrio/Views/Window/ActivityArchive.h"

namespace kestrio {
namespace {

using Kind = CategorySettings::Kind;

std::vector<CategorySettings::Known> known(const std::vector<NamedTotal>& totals) {
    std::vector<CategorySettings::Known> all;
    all.reserve(totals.size());
    for (const auto& total : totals)
        all.push_back({total.id, total.name, total.duration});
    return all;
}

} // namespace

CategorySettingsModel::CategorySettingsModel(const WindowParts& parts) : SettingsTabModel(parts) {
    tokens_.push_back(parts.classification.categorizer().observe([this] { look(); }));
    tokens_.push_back(parts.agent.observeData([this] { load(); }));
    load();
    look();
}

QVariantList CategorySettingsModel::kinds() const {
    QVariantList all;
    for (const auto kind : CategorySettings::allKinds)
        all.append(Fields().words("title", label(kind)).add("isCurrent", kind == kind_));
    return all;
}

void CategorySettingsModel::setFilter(const QString& filter) {
    if (filter == filter_)
        return;
    filter_ = filter;
    look();
}

QString CategorySettingsModel::emptyText() const {
    return shown(kestrio::emptyText(kind_, ItemFilter(filter_.toStdString())));
}

QVariant CategorySettingsModel::newCategory() const {
    return toVariant(categoryMenu(newCategory_, CategoryOrigin::byDefault));
}

QVariantMap CategorySettingsModel::words() {
    return Fields()
        .words("help", std::string_view(CategorySettings::help))
        .words("kindsName", std::string_view(CategorySettings::kindsName))
        .words("domainPrompt", std::string_view(CategorySettings::domainPrompt))
        .words("addTitle", std::string_view(CategorySettings::addTitle));
}

void CategorySettingsModel::chooseKind(int place) {
    if (place < 0 || place >= std::ssize(CategorySettings::allKinds))
        return;
    kind_ = CategorySettings::allKinds[static_cast<std::size_t>(place)];
    look();
}

void CategorySettingsModel::setCategory(const QString& id, const QVariant& category) {
    const auto chosen = activityCategory(category.toString().toStdString());
    auto& categorizer = parts().classification.categorizer();
    if (kind_ == Kind::apps)
        categorizer.setAppCategory(chosen, id.toStdString());
    else
        categorizer.setDomainCategory(chosen, id.toStdString());
}

void CategorySettingsModel::chooseNewCategory(const QVariant& category) {
    newCategory_ = activityCategory(category.toString().toStdString()).value_or(newCategory_);
    Q_EMIT changed();
}

bool CategorySettingsModel::canAdd(const QString& domain) {
    return typedDomain(domain.toStdString()).has_value();
}

void CategorySettingsModel::add(const QString& domain) {
    if (const auto typed = typedDomain(domain.toStdString()))
        parts().classification.categorizer().setDomainCategory(newCategory_, *typed);
}

void CategorySettingsModel::load() {
    if (!parts().archive)
        return;
    appsAsked_ = parts().archive->ask([](ActivityArchive& archive) { return archive.appTotals(); },
                                      [this](const auto& totals) {
                                          apps_ = known(totals);
                                          look();
                                      });
    websitesAsked_ = parts().archive->ask([](ActivityArchive& archive) { return archive.domainTotals(); },
                                          [this](const auto& totals) {
                                              websites_ = known(totals);
                                              look();
                                          });
}

void CategorySettingsModel::look() {
    const auto categories = parts().classification.categorizer().snapshot();
    rows_.set(
        categoryRows(kind_, kind_ == Kind::apps ? apps_ : websites_, categories, ItemFilter(filter_.toStdString())));
    Q_EMIT changed();
}

} // namespace kestrio
