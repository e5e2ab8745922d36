#include "Kestrio/Base/Text.h"
#include "Kestrio/Base/VirtualQueue.h"
#include "Programs/CommandLine/ClassificationChanges.h"
#include "Programs/CommandLine/ClassificationLists.h"
#include "Programs/CommandLine/Explanation.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>

namespace kestrio {
namespace {

using enum ActivityCategory;

constexpr TableStyle plain{80, false};
constexpr double day = 86'400;

Categorizer::Snapshot someChoices() {
    return {{{"com.spotify.client", work}, {"org.example.app", social}}, {{"docs.example.org", learning}}, {}};
}

ActivitySession session(double start, double length, SessionKind kind = SessionKind::focus) {
    return activitySession(1, {"a", "A", "t", {}, {}, {}, kind}, Date(start), Date(start + length));
}

/// The widest line, in columns.
std::size_t widest(const std::string& text) {
    std::size_t columns = 0;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        columns = std::max(columns, text::columns(line));
    return columns;
}

TEST(CategoryList, showsWhatThePersonChose) {
    EXPECT_EQ("\n" + categoryTable(categoryRows(someChoices(), CategoryScope::chosen), plain), R"(
  Applications

  • com.spotify.client  Work & Docs    otherwise Entertainment
  • org.example.app     Social Media   otherwise Other

  Sites

  • docs.example.org    Learning & AI  otherwise Other

  • set by you
)");
}

TEST(CategoryList, mayShowTheBuiltInRowsToo) {
    const auto rows = categoryRows(someChoices(), CategoryScope::everything);
    EXPECT_EQ(rows.size(), 103u + 251u + 2u); // one application is in the table
    const auto text = categoryTable(rows, plain);
    EXPECT_NE(text.find("\n    github.com "), std::string::npos);
    EXPECT_NE(text.find("\n  • com.spotify.client "), std::string::npos);
}

TEST(CategoryList, keepsToTheWidth) {
    auto snapshot = someChoices();
    snapshot.domainOverrides.emplace(std::string(200, 'x') + ".org", work);
    for (const std::size_t width : {40u, 60u, 100u})
        EXPECT_LE(widest(categoryTable(categoryRows(snapshot, CategoryScope::chosen), {width, false})), width);
}

TEST(CategoryList, isDataForScripts) {
    EXPECT_EQ(toJSON(categoryRows({{{"org.example.app", social}}, {}, {}}, CategoryScope::chosen)).dump(),
              R"([{"kind":"app","name":"org.example.app","category":"social","otherwise":"other","isChosen":true}])");
    EXPECT_EQ(toJSON(std::vector<CategoryRow>()).dump(), "[]");
}

TEST(RuleList, numbersTheRulesInTheirOrder) {
    const std::vector<ProjectRule> rules{{{}, "kest", "Kestrio"}, {{}, "longer keyword", " "}};
    EXPECT_EQ("\n" + ruleTable(rules, plain), R"(
  1  kest           → Kestrio
  2  longer keyword → no project

  The first rule that matches decides.
)");
    EXPECT_EQ(toJSON(rules).dump(),
              R"([{"number":1,"id":"00000000-0000-0000-0000-000000000000","keyword":"kest","project":"Kestrio"},)"
              R"({"number":2,"id":"00000000-0000-0000-0000-000000000000","keyword":"longer keyword","project":" "}])");
}

TEST(RuleList, obeysNothingThatARuleHolds) {
    const auto text = ruleTable({{{}, "a\x1B[31m\nb", "c\td"}}, plain);
    EXPECT_EQ(text.find('\x1B'), std::string::npos);
    EXPECT_NE(text.find("a [31m b → c d\n"), std::string::npos);
}

TEST(RuleList, keepsToTheWidth) {
    const std::vector<ProjectRule> rules{{{}, std::string(300, 'k'), std::string(300, 'p')}};
    for (const std::size_t width : {40u, 60u, 100u})
        EXPECT_LE(widest(ruleTable(rules, {width, false})), width);
}

TEST(ClassificationChanges, countWhatGoesFromOneNameToAnother) {
    ClassificationChanges changes;
    changes.add("A", "A", session(0, 100));
    changes.add("A", "B", session(0, 100));
    changes.add("A", "B", session(0, 20, SessionKind::watching));
    changes.add("C", "B", session(0, 7200));
    changes.add("B", "A", session(0, 0));
    EXPECT_EQ(changes.all(), (std::vector<ClassificationChange>{{"C", "B", 1, Seconds(7200), Seconds(0)},
                                                                {"A", "B", 2, Seconds(100), Seconds(20)},
                                                                {"B", "A", 1, Seconds(0), Seconds(0)}}));
    EXPECT_TRUE(ClassificationChanges().all().empty());
}

TEST(ClassificationChanges, areToldInWords) {
    EXPECT_EQ(changesText({}, plain), "  No recorded session would change.\n");
    EXPECT_EQ("\n" + changesText({{"Other", "Work & Docs", 400, Seconds(216'000), Seconds(0)},
                                  {"Communication", "Work & Docs", 1, Seconds(60), Seconds(120)}},
                                 plain),
              R"(
  401 sessions would change: 60h 1m focused · 2m alongside

  Other         → Work & Docs  400 sessions  60h
  Communication → Work & Docs     1 session  1m focused · 2m alongside
)");
}

TEST(ClassificationChanges, everySessionIsVisitedOnce) {
    const TemporaryFolder folder;
    VirtualTime time{Date(0)};
    VirtualQueue queue{time, "Kestrio.database"};
    Database database(folder.path() / "activity.sqlite", queue);
    const double starts[] = {1000, 1000 + 29 * day, 1000 + 30 * day, 1000 + 89.5 * day, 1000 + 300 * day};
    for (const double start : starts)
        database.insert({"a", "A", "t", {}, {}, {}, SessionKind::focus}, Date(start), Date(start + 1.5 * day));
    std::vector<double> seen;
    forEachSession(database, Date(1000 + 301 * day), [&](const auto& each) { seen.push_back(each.start.seconds()); });
    EXPECT_EQ(seen, std::vector<double>(std::begin(starts), std::end(starts)));
    seen.clear();
    forEachSession(database, Date(1000 + 89 * day), [&](const auto& each) { seen.push_back(each.start.seconds()); });
    EXPECT_EQ(seen, std::vector<double>(std::begin(starts), std::begin(starts) + 3));
}

TEST(ClassificationChanges, anEmptyDatabaseHasNothingToVisit) {
    const TemporaryFolder folder;
    VirtualTime time{Date(0)};
    VirtualQueue queue{time, "Kestrio.database"};
    Database database(folder.path() / "activity.sqlite", queue);
    forEachSession(database, Date(1000), [](const auto&) { FAIL(); });
}

Explanation explained(ExplainedWindow window, const std::vector<ProjectRule>& rules = {}) {
    return explanation(std::move(window), someChoices(), ProjectDetector({"alice", "/home/alice", "walrus", {}}),
                       rules);
}

TEST(Explanation, tellsEveryQuestionUpToTheAnswer) {
    const auto found =
        explained({"com.microsoft.VSCode", "Visual Studio Code", "● main.cpp - kestrio - Visual Studio Code"},
                  {{{}, "x", "X"}, {{}, "kest", "Tindra"}});
    EXPECT_EQ("\n" + explanationText(found, plain), R"(
  Application  com.microsoft.VSCode (Visual Studio Code)
  Title        main.cpp - kestrio

  Category     Development
    your choice for the application → –
    the built-in table, for the application → Development

  Project      Tindra
    the title read with the file before the project → kestrio
    your rule 2, "kest" in the title → Tindra
)");
}

TEST(Explanation, tellsOfSites) {
    EXPECT_EQ(
        "\n" + explanationText(
                   explained({"org.mozilla.firefox", "Firefox", "A page", "https://sub.docs.example.org/page"}), plain),
        R"(
  Application  org.mozilla.firefox (Firefox)
  Title        A page
  Site         sub.docs.example.org

  Category     Learning & AI
    your choice for the site sub.docs.example.org → –
    the built-in table, for sub.docs.example.org → –
    your choice for the site docs.example.org → Learning & AI

  Project      none
    no project is read from its titles → –
    none of your rules matches → –
)");
}

TEST(Explanation, tellsWhereNothingAnswers) {
    EXPECT_EQ("\n" + explanationText(explained({"nobody.knows", "nobody.knows"}), plain), R"(
  Application  nobody.knows

  Category     Other
    your choice for the application → –
    the built-in table, for the application → –
    the built-in rules for makers → –
    what the application says of itself → –
    where nothing answers → Other

  Project      none
    there is no title → –
    none of your rules matches → –
)");
}

TEST(Explanation, tellsWhyANameIsRefused) {
    EXPECT_NE(explanationText(explained({"io.alacritty", "Alacritty", "~/tmp"}), plain)
                  .find("before the shell → tmp\n    \"tmp\" is no name for a project → –\n"),
              std::string::npos);
    EXPECT_NE(explanationText(explained({"io.alacritty", "Alacritty", "~/kestrio"}, {{{}, "kest", ""}}), plain)
                  .find("your rule 1, \"kest\" in the title → no project\n"),
              std::string::npos);
    EXPECT_NE(
        explanationText(explained({"a", "A", "t", "about:blank"}), plain).find("none: not the address of a web page"),
        std::string::npos);
}

TEST(Explanation, takesTheTitleAsTheRecorderDoes) {
    const struct {
        ExplainedWindow window;
        const char* title;
    } rows[] = {
        {{"org.mozilla.firefox", "Firefox", "(3) Inbox — Mozilla Firefox"}, "Inbox"},
        {{"org.mozilla.firefox", "Firefox", "(3) Inbox — Mozilla Firefox", "https://example.org"},
         "Inbox — Mozilla Firefox"}, // of a tab, which browsers do not sign
        {{"org.example.app", "Editor", "* Letter - Editor"}, "Letter"},
        {{"org.example.app", "Editor", ""}, ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(explained(row.window).window.title, row.title);
}

TEST(Explanation, isDataForScripts) {
    EXPECT_EQ(
        toJSON(explained({"com.adobe.Photoshop", "Photoshop", "a kest", "https://b.org/"}, {{{}, "KEST", "P"}})).dump(),
        R"({"bundleID":"com.adobe.Photoshop","appName":"Photoshop","title":"a kest","url":"https://b.org/",)"
        R"("domain":"b.org","category":"work","categorySteps":[)"
        R"({"source":"siteOverride","asked":"b.org","answer":null},)"
        R"({"source":"builtInSite","asked":"b.org","answer":null},)"
        R"({"source":"appOverride","asked":"com.adobe.Photoshop","answer":null},)"
        R"({"source":"builtInApp","asked":"com.adobe.Photoshop","answer":null},)"
        R"({"source":"builtInPrefix","asked":"com.adobe.","answer":"work"}],)"
        R"("project":"P","titleFamily":null,"titleRead":null,"detectedProject":null,)"
        R"("rule":{"number":1,"keyword":"KEST","project":"P","where":"title"}})");
    EXPECT_EQ(toJSON(explained({"a", "A"}))["rule"], nullptr);
}

TEST(Explanation, keepsToTheWidth) {
    const std::string lengthy(300, 'x');
    const auto found =
        explained({lengthy, lengthy, "a — " + lengthy, "https://" + lengthy + ".org/"}, {{{}, "xxx", lengthy}});
    for (const std::size_t width : {40u, 60u, 100u})
        EXPECT_LE(widest(explanationText(found, {width, false})), width);
}

} // namespace
} // namespace kestrio
