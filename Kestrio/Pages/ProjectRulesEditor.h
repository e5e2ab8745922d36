// The editor of the person's project rules: what it says, and what its two fields and its list do to the rules. Plain
// values.
#pragma once

#include "Kestrio/Classification/ProjectDetection.h"

#include <string>
#include <string_view>
#include <vector>

namespace kestrio {

struct ProjectRulesEditor {
    static constexpr auto help =
        "Projects are detected automatically from code editors and terminals. Add a rule to put any activity whose "
        "window title, URL or detected project contains a keyword into a project — or leave the project empty to "
        "ignore a false detection. Rules apply to past data too; the first matching rule wins.";
    static constexpr auto keywordPrompt = "If title / URL contains…";
    static constexpr auto projectPrompt = "Project name (empty = ignore)";
    static constexpr auto addTitle = "Add Rule";
    static constexpr auto deleteTitle = "Delete";
    static constexpr auto deleteSymbol = "trash";
    static constexpr auto emptyText = "No rules yet.";

    struct Row {
        std::string id; // of the rule
        std::string keyword;
        std::string project; // "Ignored" for a rule without one
        bool isIgnored = false;
        friend bool operator==(const Row&, const Row&) = default;
    };
    std::vector<Row> rows; // in the order of their priority
    friend bool operator==(const ProjectRulesEditor&, const ProjectRulesEditor&) = default;
};

ProjectRulesEditor projectRulesEditor(const std::vector<ProjectRule>& rules);

/// Whether the first field holds a keyword; blanks alone are none.
bool canAddRule(std::string_view keyword);

/// The rules with one more at the end, its texts without blanks around them. Unchanged when the keyword is none.
std::vector<ProjectRule> addingRule(std::vector<ProjectRule> rules, tindra::UUID id, std::string_view keyword,
                                    std::string_view project);

/// The rules without the one of this id; unchanged when there is none.
std::vector<ProjectRule> removingRule(std::vector<ProjectRule> rules, std::string_view id);

} // namespace kestrio
