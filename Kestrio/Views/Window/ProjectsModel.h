// The projects as QML reads them, and the rules that make them.
#pragma once

#include "Kestrio/Pages/ProjectsPage.h"
#include "Kestrio/Views/Window/MasterDetailModel.h"
#include "Kestrio/Views/Window/ProjectRulesModel.h"

namespace kestrio {

class ProjectsModel final : public kestrio::MasterDetailModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Pages are made by the dashboard.")
    Q_PROPERTY(kestrio::ProjectRulesModel* rules READ rules CONSTANT)
    /// Whether the sheet with the rules is open.
    Q_PROPERTY(bool showingRules READ showingRules WRITE setShowingRules NOTIFY showingRulesChanged)
    /// `addRulesTitle`, `rulesSymbol`, `rulesHelp`, `sheetTitle`, `sheetDone`.
    Q_PROPERTY(QVariant words READ words CONSTANT)

public:
    explicit ProjectsModel(const WindowParts& parts)
        : MasterDetailModel(parts), rules_(parts.classification.projectRules()) {}

    ProjectRulesModel* rules() { return &rules_; }
    bool showingRules() const { return showingRules_; }
    void setShowingRules(bool isShowing);
    static QVariantMap words();

Q_SIGNALS:
    void showingRulesChanged();

protected:
    DashboardSection section() const override { return DashboardSection::projects; }
    List list(const ItemFilter& filter) const override;
    Placeholder nothingSelected() const override { return ProjectsPage::placeholder(); }
    std::optional<Detail> detailOf(const std::string& key, const ItemFilter& filter) const override;

private:
    ProjectRulesModel rules_;
    bool showingRules_ = false;
};

} // namespace kestrio
