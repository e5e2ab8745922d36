#include "Kestrio/Pages/ProjectRulesEditor.h"

#include "Kestrio/Base/Text.h"

namespace kestrio {

ProjectRulesEditor projectRulesEditor(const std::vector<ProjectRule>& rules) {
    ProjectRulesEditor editor;
    for (const auto& rule : rules) {
        const auto project = text::trimmedOfBlanks(rule.project);
        const bool isIgnored = project.empty();
        editor.rows.push_back({.id = tindra::text(rule.id),
                               .keyword = rule.keyword,
                               .project = isIgnored ? "Ignored" : std::string(project),
                               .isIgnored = isIgnored});
    }
    return editor;
}

bool canAddRule(std::string_view keyword) {
    return !text::trimmedOfBlanks(keyword).empty();
}

std::vector<ProjectRule> addingRule(std::vector<ProjectRule> rules, tindra::UUID id, std::string_view keyword,
                                    std::string_view project) {
    if (canAddRule(keyword))
        rules.push_back({id, std::string(text::trimmedOfBlanks(keyword)), std::string(text::trimmedOfBlanks(project))});
    return rules;
}

std::vector<ProjectRule> removingRule(std::vector<ProjectRule> rules, std::string_view id) {
    std::erase_if(rules, [&](const ProjectRule& rule) { return tindra::text(rule.id) == id; });
    return rules;
}

} // namespace kestrio
