#include "Kestrio/Activity/BrowserTexts.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace kestrio {
namespace {

const std::string fs = "\x1F";
const std::string ws = "\x1E";
const std::string ts = "\x1D";

std::string joined(const std::vector<std::string>& fields) {
    std::string text;
    for (const auto& field : fields)
        text += (&field == &fields.front() ? "" : fs) + field;
    return text;
}

TEST(BrowserTexts, aFrontTabHasTwoOrThreeFields) {
    struct Row {
        std::string text;
        std::optional<BrowserTab> tab;
    };
    const Row rows[] = {
        {joined({"https://a.example/", "A", "normal"}), BrowserTab{"https://a.example/", "A", false}},
        {joined({"https://a.example/", "A", "incognito"}), BrowserTab{"https://a.example/", "A", true}},
        {joined({"https://a.example/", "A", "Incognito"}), BrowserTab{"https://a.example/", "A", false}},
        {joined({"https://a.example/", "A", "guest"}), BrowserTab{"https://a.example/", "A", false}},
        {joined({"https://a.example/", "A"}), BrowserTab{"https://a.example/", "A", false}},
        {joined({"https://a.example/", ""}), BrowserTab{"https://a.example/", "", false}},
        {joined({"https://a.example/", "A", "incognito", "more"}), BrowserTab{"https://a.example/", "A", true}},
        {joined({"", "New Tab", "normal"}), std::nullopt},
        {"https://a.example/", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& row : rows)
        EXPECT_EQ(BrowserTexts::frontTab(row.text), row.tab) << row.text;
}

TEST(BrowserTexts, aWindowHasNineFields) {
    const auto text = joined({"10", " 20.5 ", "110", "220.5", "normal", "https://a.example/", "A",
                              "https://a.example/" + ts + "https://b.example/", "A" + ts + "B"});
    const BrowserWindow window{{10, 20.5, 100, 200},
                               false,
                               {"https://a.example/", "A", false},
                               {{"https://a.example/", "A", false}, {"https://b.example/", "B", false}}};
    EXPECT_EQ(BrowserTexts::windows(text), std::vector{window});
    EXPECT_EQ(BrowserTexts::windows(text + ws + text), (std::vector{window, window}));
    EXPECT_EQ(BrowserTexts::windows(text + fs + "a tenth"), std::vector{window});
}

TEST(BrowserTexts, whatIsPrivateIsPrivateThroughout) {
    const auto text = joined({"0", "0", "1", "1", "incognito", "u", "t", "u" + ts + "v", "t" + ts + "w"});
    const auto windows = BrowserTexts::windows(text);
    ASSERT_EQ(windows.size(), 1u);
    EXPECT_TRUE(windows[0].isPrivate);
    EXPECT_TRUE(windows[0].activeTab.isPrivate);
    for (const auto& tab : windows[0].tabs)
        EXPECT_TRUE(tab.isPrivate);
}

TEST(BrowserTexts, aPieceOfFewerThanNineFieldsIsPassedOverAlone) {
    const auto whole = joined({"0", "0", "1", "1", "normal", "u", "t", "u", "t"});
    const auto broken = joined({"0", "0", "1", "1", "normal", "u", "t", "u"});
    EXPECT_EQ(BrowserTexts::windows(broken + ws + whole + ws + "").size(), 1u);
    EXPECT_TRUE(BrowserTexts::windows("").empty());
}

TEST(BrowserTexts, anEdgeThatIsNoNumberReadsAsNought) {
    for (const std::string field : {"", "x", "1x", "1 2", "1,5", "0x10", "nan", "inf", "1e999", "--1", "+-1"}) {
        const auto windows = BrowserTexts::windows(joined({field, "0", "7", "1", "normal", "u", "t", "u", "t"}));
        ASSERT_EQ(windows.size(), 1u);
        EXPECT_EQ(windows[0].bounds.x, 0) << field;
        EXPECT_EQ(windows[0].bounds.width, 7) << field;
    }
    const auto windows = BrowserTexts::windows(joined({"-5", "+3", "1e2", "4", "normal", "u", "t", "u", "t"}));
    EXPECT_EQ(windows[0].bounds, (Rectangle{-5, 3, 105, 1}));
}

TEST(BrowserTexts, theLongerListOfTabsLosesItsSurplus) {
    const auto more = joined({"0", "0", "1", "1", "normal", "u", "t", "u" + ts + "v" + ts + "w", "t" + ts + "x"});
    EXPECT_EQ(BrowserTexts::windows(more)[0].tabs.size(), 2u);
    const auto fewer = joined({"0", "0", "1", "1", "normal", "u", "t", "u", "t" + ts + "x" + ts + "y"});
    EXPECT_EQ(BrowserTexts::windows(fewer)[0].tabs.size(), 1u);
}

RC_GTEST_PROP(BrowserTexts, anyTextIsReadWithoutHarm, (const std::string& text)) {
    std::string marked = text;
    for (auto& c : marked)
        if (c >= 'a' && c <= 'z')
            c = c < 'i' ? '\x1D' : c < 'q' ? '\x1E' : '\x1F';
    for (const auto& window : BrowserTexts::windows(marked))
        RC_ASSERT(window.tabs.size() >= 1u);
    const auto tab = BrowserTexts::frontTab(marked);
    RC_ASSERT(!tab || !tab->url.empty());
}

} // namespace
} // namespace kestrio
