// The tab "Projects" as QML reads it. Belongs to the main queue.
#pragma once

#include "Kestrio/Views/Window/ProjectRulesModel.h"
#include "Kestrio/Views/Window/Settings/SettingsTabModel.h"

namespace kestrio {

class ProjectSettingsModel final : public kestrio::SettingsTabModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Tabs are made by the settings.")
    Q_PROPERTY(kestrio::ProjectRulesModel* rules READ rules CONSTANT)

public:
    explicit ProjectSettingsModel(const WindowParts& parts)
        : SettingsTabModel(parts), rules_(parts.classification.projectRules()) {}

    ProjectRulesModel* rules() { return &rules_; }

private:
    ProjectRulesModel rules_;
};

} // namespace kestrio
