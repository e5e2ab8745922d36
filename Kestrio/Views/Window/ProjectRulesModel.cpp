#include "Kestrio/Views/Window/ProjectRulesModel.h"

#include "Kestrio/Shell/FreshUUID.h"
#include "Kestrio/Views/Values/Details.h"

namespace kestrio {

ProjectRulesModel::ProjectRulesModel(ProjectRules& rules)
    : rules_(rules), changes_(rules.observe([this] { Q_EMIT changed(); })) {}

QVariantMap ProjectRulesModel::editor() const {
    return toVariant(projectRulesEditor(rules_.rules()));
}

bool ProjectRulesModel::canAdd(const QString& keyword) {
    return canAddRule(keyword.toStdString());
}

void ProjectRulesModel::add(const QString& keyword, const QString& project) {
    if (canAdd(keyword))
        rules_.setRules(addingRule(rules_.rules(), freshUUID(), keyword.toStdString(), project.toStdString()));
}

void ProjectRulesModel::remove(const QString& id) {
    rules_.setRules(removingRule(rules_.rules(), id.toStdString()));
}

} // namespace kestrio
