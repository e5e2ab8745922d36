// The sites as QML reads them, and the change of a category.
#pragma once

#include "Kestrio/Pages/WebsitesPage.h"
#include "Kestrio/Views/Window/MasterDetailModel.h"

namespace kestrio {

class WebsitesModel final : public kestrio::MasterDetailModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Pages are made by the dashboard.")

public:
    explicit WebsitesModel(const WindowParts& parts) : MasterDetailModel(parts) {}

    /// The person's choice for the selected site and all below it, by its raw text; an empty one takes it back.
    Q_INVOKABLE void setCategory(const QString& category);

protected:
    DashboardSection section() const override { return DashboardSection::websites; }
    List list(const ItemFilter& filter) const override;
    Placeholder nothingSelected() const override { return WebsitesPage::placeholder(); }
    std::optional<Detail> detailOf(const std::string& key, const ItemFilter& filter) const override;
};

} // namespace kestrio
