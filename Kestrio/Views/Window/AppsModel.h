// The applications as QML reads them, and the change of a category.
#pragma once

#include "Kestrio/Pages/AppsPage.h"
#include "Kestrio/Views/Window/MasterDetailModel.h"

namespace kestrio {

class AppsModel final : public kestrio::MasterDetailModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Pages are made by the dashboard.")

public:
    explicit AppsModel(const WindowParts& parts) : MasterDetailModel(parts) {}

    /// The person's choice for the selected application, by its raw text; an empty one takes it back.
    Q_INVOKABLE void setCategory(const QString& category);

protected:
    DashboardSection section() const override { return DashboardSection::apps; }
    List list(const ItemFilter& filter) const override;
    Placeholder nothingSelected() const override { return AppsPage::placeholder(); }
    std::optional<Detail> detailOf(const std::string& key, const ItemFilter& filter) const override;
};

} // namespace kestrio
