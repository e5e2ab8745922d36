#include "Kestrio/Classification/ProjectDetection.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

using Project = std::optional<std::string>;
using List = std::vector<ProjectRule>;
using Where = ProjectResolution::Where;
constexpr auto none = std::nullopt;

ProjectRule rule(const std::string& keyword, const std::string& project) {
    return {{{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}}, keyword, project};
}

constexpr auto idText = "01020304-0506-0708-090A-0B0C0D0E0F10";

/// A settings store of one entry.
struct Settings {
    Project stored;
    bool refusing = false;

    StoredSetting<std::string> setting() {
        return {[this] { return stored; },
                [this](const std::string& value) {
                    if (!refusing)
                        stored = value;
                    return !refusing;
                }};
    }
};

TEST(ProjectRules, aKeywordIsLookedForInTitleAddressAndDetectedProject) {
    const struct {
        const char* keyword;
        const char* title;
        Project url;
        Project detected;
        std::optional<Where> where;
    } rows[] = {
        {"kest", "The kestrel", none, none, Where::title},
        {"KEST", "the kestrel", none, none, Where::title},
        {"strel", "the KESTREL", none, none, Where::title}, // part of a word
        {" \tkest ", "the kestrel", none, none, Where::title},
        {"kest", "a", "https://kestrel.org/", none, Where::url},
        {"kest", "a", "https://KESTREL.org/", none, Where::url},
        {"kest", "a", "https://b.org/", "Kestrel", Where::detected},
        {"kest", "kest", "kest", "kest", Where::title},
        {"kest", "a", "kest", "kest", Where::url},
        {"kest", "a", "b", "c", none},
        {"kest", "", none, none, none},
        {"cafe", "Das Café", none, none, Where::title},
        {"cafe", "Das Cafe\u0301", none, none, Where::title},
        {"café", "Das CAFE", none, none, Where::title},
        {"cafe", "a", "https://b.org/café", none, none},
        {"cafe", "a", none, "Café", none},
        {"café", "a", "https://b.org/CAFÉ", none, Where::url},
        {"café", "a", none, "Cafe\u0301", Where::detected},
        {"straße", "STRASSE", none, none, Where::title},
        {"", "a", "a", "a", none},
        {" \t ", "a b\tc", "a b", "a b", none},
        {"\u0301", "a", "b", "c", none}, // nothing but an accent
        {"a  b", "a b", none, none, none},
    };
    for (const auto& row : rows) {
        const auto found = ProjectRules::resolution({rule(row.keyword, "P")}, row.title, row.url, row.detected);
        EXPECT_EQ(found.match ? std::optional(found.match->where) : none, row.where) << row.keyword << " " << row.title;
        EXPECT_EQ(found.project, row.where ? Project("P") : row.detected) << row.keyword << " " << row.title;
    }
}

TEST(ProjectRules, withoutRulesTheDetectedProjectCounts) {
    EXPECT_EQ(ProjectRules::resolve({}, "a", none, "kestrio"), "kestrio");
    EXPECT_EQ(ProjectRules::resolve({}, "a", "b", none), none);
    EXPECT_EQ(ProjectRules::resolve({}, "", none, " odd "), " odd ");
}

TEST(ProjectRules, theFirstMatchingRuleDecides) {
    EXPECT_EQ(ProjectRules::resolve({rule("a", "First"), rule("ab", "Second")}, "abc", none, none), "First");
    EXPECT_EQ(ProjectRules::resolve({rule("x", "First"), rule("ab", "Second")}, "abc", none, none), "Second");
    EXPECT_EQ(ProjectRules::resolve({rule("a", ""), rule("ab", "Second")}, "abc", none, "kestrio"), none);
    EXPECT_EQ(ProjectRules::resolution({rule("x", "A"), rule(" ", "B"), rule("b", "C")}, "abc", none, none).match,
              (ProjectResolution::Match{2, Where::title}));
}

TEST(ProjectRules, anEarlierRulesAddressBeatsALaterOnesTitle) {
    EXPECT_EQ(ProjectRules::resolve({rule("org", "First"), rule("a", "Second")}, "a", "b.org", none), "First");
}

TEST(ProjectRules, aRuleWithAnEmptyProjectTakesTheProjectAway) {
    for (const char* empty : {"", " ", "\t "}) {
        EXPECT_EQ(ProjectRules::resolve({rule("a", empty)}, "a", none, "kestrio"), none);
        EXPECT_EQ(ProjectRules::resolve({rule("kest", empty)}, "a", none, "kestrio"), none);
        EXPECT_EQ(ProjectRules::resolve({rule("b", empty)}, "a", none, "kestrio"), "kestrio");
    }
}

TEST(ProjectRules, theProjectIsTrimmed) {
    EXPECT_EQ(ProjectRules::resolve({rule("a", "\t My Project ")}, "a", none, none), "My Project");
}

TEST(ProjectRules, areStoredAsAListOfThreeTextsEach) {
    Settings settings;
    ProjectRules rules(settings.setting());
    EXPECT_TRUE(rules.setRules({rule("a", "b"), rule("ü\"", "")}));
    EXPECT_EQ(settings.stored, std::string("[{\"id\":\"") + idText + "\",\"keyword\":\"a\",\"project\":\"b\"}," +
                                   "{\"id\":\"" + idText + "\",\"keyword\":\"ü\\\"\",\"project\":\"\"}]");
    EXPECT_EQ(ProjectRules(settings.setting()).rules(), rules.rules());
    EXPECT_TRUE(rules.setRules({}));
    EXPECT_EQ(settings.stored, "[]");
}

TEST(ProjectRules, whatCannotBeReadIsNoRules) {
    const std::string id = idText;
    const struct {
        std::string json;
        std::optional<List> rules;
    } rows[] = {
        {"[]", List{}},
        {R"([{"id":")" + id + R"(","keyword":"a","project":"b"}])", List{rule("a", "b")}},
        {R"([{"more":1,"project":"b","keyword":"a","id":")" + id + R"("}])", List{rule("a", "b")}},
        {R"([{"id":"01020304-0506-0708-090a-0b0c0d0e0f10","keyword":"a","project":"b"}])", List{rule("a", "b")}},
        {R"([{"id":")" + id + R"(","keyword":"a"}])", none},
        {R"([{"id":")" + id + R"(","project":"a"}])", none},
        {R"([{"keyword":"a","project":"b"}])", none},
        {R"([{"id":"1","keyword":"a","project":"b"}])", none},
        {R"([{"id":")" + id + R"(","keyword":1,"project":"b"}])", none},
        {R"([{"id":")" + id + R"(","keyword":"a","project":null}])", none},
        {R"([{"id":")" + id + R"(","keyword":"a","project":"b"},1])", none},
        {"{}", none},
        {"null", none},
        {"\"a\"", none},
        {"[", none},
        {"", none},
        {"\xff", none},
        {"[[]]", none},
        {std::string(100'000, '['), none},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(decodedProjectRules(row.json), row.rules) << row.json.substr(0, 100);
        Settings settings{row.json};
        ProjectRules rules(settings.setting());
        EXPECT_EQ(rules.rules(), row.rules.value_or(List())) << row.json.substr(0, 100);
        EXPECT_EQ(settings.stored, row.json);
        rules.setRules({rule("c", "d")});
        EXPECT_EQ(decodedProjectRules(*settings.stored), (List{rule("c", "d")}));
    }
    EXPECT_TRUE(ProjectRules({}).rules().empty());
}

TEST(ProjectRules, whatCannotBeStoredHoldsInThisProcess) {
    Settings settings{"[]"};
    ProjectRules rules(settings.setting());
    int heard = 0;
    const auto token = rules.observe([&] { ++heard; });
    EXPECT_FALSE(rules.setRules({rule("\xff", "b")}));
    EXPECT_EQ(rules.rules(), (List{rule("\xff", "b")}));
    EXPECT_EQ(settings.stored, "[]");
    settings.refusing = true;
    EXPECT_FALSE(rules.setRules({rule("a", "b")}));
    EXPECT_EQ(rules.rules(), (List{rule("a", "b")}));
    EXPECT_EQ(settings.stored, "[]");
    EXPECT_EQ(heard, 2);
}

TEST(ProjectRules, tellOfEveryChangeAfterItIsMade) {
    Settings settings;
    ProjectRules rules(settings.setting());
    std::vector<List> heard;
    const auto token = rules.observe([&] {
        EXPECT_EQ(decodedProjectRules(*settings.stored), rules.rules());
        heard.push_back(rules.rules());
    });
    rules.setRules({rule("a", "b")});
    rules.setRules({});
    EXPECT_EQ(heard, (std::vector<List>{{rule("a", "b")}, {}}));
}

TEST(ProjectRules, areReadAgainWhenSomebodyElseStoredThem) {
    Settings settings;
    ProjectRules rules(settings.setting());
    int heard = 0;
    const auto token = rules.observe([&] { ++heard; });
    settings.stored = encoded(List{rule("a", "b")});
    rules.reload();
    rules.reload();
    EXPECT_EQ(heard, 1);
    EXPECT_EQ(rules.rules(), (List{rule("a", "b")}));
}

} // namespace
} // namespace kestrio
