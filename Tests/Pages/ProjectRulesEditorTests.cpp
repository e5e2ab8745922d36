#include "Kestrio/Pages/ProjectRulesEditor.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

constexpr tindra::UUID first{{1}};
constexpr tindra::UUID second{{2}};
constexpr tindra::UUID third{{3}};

TEST(ProjectRulesEditor, listsTheRulesInTheirOrder) {
    const auto editor = projectRulesEditor({{first, "harbour", "Harbour"}, {second, "lunch", ""}, {third, "x", "  "}});
    EXPECT_EQ(editor.rows, (std::vector<ProjectRulesEditor::Row>{
                               {"01000000-0000-0000-0000-000000000000", "harbour", "Harbour", false},
                               {"02000000-0000-0000-0000-000000000000", "lunch", "Ignored", true},
                               {"03000000-0000-0000-0000-000000000000", "x", "Ignored", true}}));
    EXPECT_TRUE(projectRulesEditor({}).rows.empty());
}

TEST(ProjectRulesEditor, asksForAKeyword) {
    const std::pair<const char*, bool> rows[] = {{"", false}, {"  ", false}, {"\t", false}, {"a", true}, {" a ", true}};
    for (const auto& [keyword, can] : rows)
        EXPECT_EQ(canAddRule(keyword), can) << '"' << keyword << '"';
}

TEST(ProjectRulesEditor, addsBehindTheOthersWithoutBlanks) {
    const std::vector<ProjectRule> rules{{first, "harbour", "Harbour"}};
    EXPECT_EQ(addingRule(rules, second, " quay ", " Harbour "),
              (std::vector<ProjectRule>{rules[0], {second, "quay", "Harbour"}}));
    EXPECT_EQ(addingRule(rules, second, "quay", ""), (std::vector<ProjectRule>{rules[0], {second, "quay", ""}}));
    EXPECT_EQ(addingRule(rules, second, "  ", "Harbour"), rules);
}

TEST(ProjectRulesEditor, removesTheOneThatIsMeant) {
    const std::vector<ProjectRule> rules{{first, "same", "A"}, {second, "same", "A"}};
    EXPECT_EQ(removingRule(rules, "02000000-0000-0000-0000-000000000000"), std::vector<ProjectRule>{rules[0]});
    EXPECT_EQ(removingRule(rules, "03000000-0000-0000-0000-000000000000"), rules);
    EXPECT_EQ(removingRule(rules, ""), rules);
}

} // namespace
} // namespace kestrio
