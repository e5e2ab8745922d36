#include "Kestrio/Views/Window/ProjectsModel.h"
#include "Tests/Views/Window/PageScreen.h"

namespace kestrio {
namespace {

constexpr auto keywordPrompt = "If title / URL contains…";
constexpr auto projectPrompt = "Project name (empty = ignore)";

struct ProjectsScreen : PageScreen<ProjectsModel> {
    explicit ProjectsScreen(std::vector<ActivitySession> history = exampleWorkday())
        : PageScreen("Projects", std::move(history)) {}

    std::vector<std::string> rules() {
        std::vector<std::string> all;
        for (const auto& rule : classification.projectRules().rules())
            all.push_back(rule.keyword + " → " + rule.project);
        return all;
    }
};

using Rules = std::vector<std::string>;

TEST(ProjectsView, tellsOfTheProject) {
    ProjectsScreen screen;
    EXPECT_TRUE(screen.shows("Select a project"));
    screen.click("harbour");
    for (const auto* const text : {"When", "Apps used", "What you worked on", "notes.md", "6m"})
        EXPECT_TRUE(screen.shows(text)) << text;
    screen.enter("Filter");
    screen.type("main");
    EXPECT_FALSE(screen.shows("notes.md"));
    screen.click("quay");
    EXPECT_EQ(screen.model.filter(), "");
    EXPECT_FALSE(screen.shows("main.cpp"));
}

TEST(ProjectsView, withoutProjectsOffersToMakeRules) {
    ProjectsScreen screen{noHistory};
    EXPECT_TRUE(screen.shows("No projects detected"));
    screen.click("Add Project Rules…");
    EXPECT_TRUE(screen.model.showingRules());
    EXPECT_TRUE(screen.shows("Project Rules"));
    EXPECT_TRUE(screen.shows("No rules yet."));
    screen.click("Done");
    EXPECT_FALSE(screen.model.showingRules());
    QTest::qWait(0);
    EXPECT_FALSE(screen.shows("No rules yet."));
}

TEST(ProjectsView, itsToolbarOpensTheRules) {
    ProjectsScreen screen;
    screen.click(screen.named("Group activity into projects by keyword", QAccessible::Button));
    EXPECT_TRUE(screen.shows("Project Rules"));
    screen.press(Qt::Key_Escape);
    EXPECT_FALSE(screen.model.showingRules());
}

TEST(ProjectsView, addsARuleAndTheReportFollows) {
    ProjectsScreen screen;
    screen.model.setShowingRules(true);
    screen.settle();
    auto* const add = screen.named("Add Rule", QAccessible::Button);
    ASSERT_NE(add, nullptr);
    EXPECT_FALSE(add->isEnabled());
    screen.enter(keywordPrompt);
    screen.type("  ");
    EXPECT_FALSE(add->isEnabled()) << "blanks are no keyword";
    screen.type("beta");
    EXPECT_TRUE(add->isEnabled());
    screen.enter(projectPrompt);
    screen.type("Lighthouse");
    screen.press(Qt::Key_Return);
    screen.settle();
    EXPECT_EQ(screen.rules(), Rules{"beta → Lighthouse"});
    EXPECT_EQ(screen.named(keywordPrompt, QAccessible::EditableText)->property("text").toString(), "");
    EXPECT_TRUE(screen.shows("Lighthouse"));
    screen.click("Done");
    EXPECT_EQ(screen.model.rows()->count(), 3) << "what was recorded before counts too";
}

TEST(ProjectsView, listsRulesByPriorityAndRemovesThem) {
    ProjectsScreen screen;
    screen.classification.projectRules().setRules({{{{1}}, "beta", "Lighthouse"}, {{{2}}, "lunch", ""}});
    screen.model.setShowingRules(true);
    screen.settle();
    EXPECT_TRUE(screen.shows("Ignored"));
    screen.click(screen.named("Delete", QAccessible::Button));
    screen.settle();
    EXPECT_EQ(screen.rules(), Rules{"beta → Lighthouse"}) << "the last one's button";
    EXPECT_FALSE(screen.shows("Ignored"));
    screen.click(screen.named("Delete", QAccessible::Button));
    EXPECT_TRUE(screen.shows("No rules yet."));
}

TEST(ProjectsView, followsRulesThatOthersChange) {
    ProjectsScreen screen;
    screen.model.setShowingRules(true);
    screen.settings.set(
        "projectRules",
        SettingBytes{R"([{"id":"01000000-0000-0000-0000-000000000000","keyword":"tide","project":"Sea"}])"});
    screen.settle();
    EXPECT_TRUE(screen.shows("tide"));
}

} // namespace
} // namespace kestrio
