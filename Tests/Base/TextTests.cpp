#include "Kestrio/Base/Text.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace kestrio {
namespace {

using namespace std::string_literals;
using text::Ignoring;

TEST(TextEquivalence, followsCanonicalEquivalence) {
    struct Row {
        std::string a, b;
        bool same;
    };
    const Row rows[] = {
        {"", "", true},
        {"report", "report", true},
        {"report", "Report", false},
        {"caf\u00E9", "cafe\u0301", true},
        {"caf\u00E9", "cafe", false},
        {"\u212A", "K", true},             // the Kelvin sign
        {"\uAC00", "\u1100\u1161", true},  // a Hangul syllable and its parts
        {"\u1E69", "s\u0307\u0323", true}, // two marks in another order
        {"\uFB01", "fi", false},           // compatibility is not equivalence
        {"a\u200D", "a", false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(text::equivalent(row.a, row.b), row.same) << row.a << " | " << row.b;
        if (row.same) {
            EXPECT_EQ(text::hash(row.a), text::hash(row.b)) << row.a;
        }
    }
}

TEST(TextEquivalence, anAbsentTextEqualsOnlyAnAbsentOne) {
    using Optional = std::optional<std::string>;
    EXPECT_TRUE(text::equivalent(Optional(), Optional()));
    EXPECT_FALSE(text::equivalent(Optional(), Optional("")));
    EXPECT_TRUE(text::equivalent(Optional("\u00E9"), Optional("e\u0301")));
}

RC_GTEST_PROP(TextEquivalence, neverFailsOnArbitraryBytesAndHashesAgree, (const std::string& a, const std::string& b)) {
    RC_ASSERT(text::equivalent(a, a));
    if (text::equivalent(a, b))
        RC_ASSERT(text::hash(a) == text::hash(b));
    text::folded(a, Ignoring::caseAndDiacritics);
    RC_ASSERT(text::prefix(a, text::characterCount(a)) == a);
}

TEST(TextPrefix, cutsBetweenCharactersAsPeopleSeeThem) {
    struct Row {
        std::string text;
        std::size_t count;
        std::string prefix;
    };
    const Row rows[] = {
        {"abc", 0, ""},
        {"abc", 2, "ab"},
        {"abc", 3, "abc"},
        {"abc", 9, "abc"},
        {"e\u0301a", 1, "e\u0301"},
        {"ae\u0301", 1, "a"},
        {"abe\u0301", 3, "abe\u0301"},
        {"\r\nab", 1, "\r\n"},
        {"\U0001F1E9\U0001F1EA\U0001F1EB\U0001F1F7", 1, "\U0001F1E9\U0001F1EA"}, // two flags
        {"\U0001F469\u200D\U0001F4BBx", 1, "\U0001F469\u200D\U0001F4BB"},        // joined emoji
        {"日本語", 2, "日本"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(text::prefix(row.text, row.count), row.prefix) << row.text << " " << row.count;
}

TEST(TextPrefix, anAsciiCutBeforeACombiningMarkKeepsTheMark) {
    const std::string stem(2047, 'a');
    EXPECT_EQ(text::prefix(stem + "e\u0301" + "zz", 2048), stem + "e\u0301");
    EXPECT_EQ(text::prefix(stem + "bc", 2048), stem + "b");
}

TEST(TextContains, ignoresCaseAndAccentsAsAsked) {
    struct Row {
        std::string text, needle;
        bool caseOnly, both;
    };
    const Row rows[] = {
        {"Kestrio README", "readme", true, true},
        {"Kestrio README", "", false, false},
        {"", "a", false, false},
        {"Café", "CAFÉ", true, true},
        {"Café", "cafe\u0301", true, true},
        {"Café", "cafe", false, true},
        {"cafe", "Café", false, true},
        {"Straße", "STRASSE", true, true},
        {"İstanbul", "istanbul", false, true},
        {"ΣΊΣΥΦΟΣ", "σίσυφος", true, true},
        {"русский", "РУССКИЙ", true, true},
        {"Cafe", "\u0301", false, false}, // nothing but an accent
        {"Café", "\u0301", true, false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(text::contains(row.text, row.needle, Ignoring::caseOnly), row.caseOnly) << row.text << row.needle;
        EXPECT_EQ(text::contains(row.text, row.needle, Ignoring::caseAndDiacritics), row.both)
            << row.text << row.needle;
        EXPECT_EQ(text::FoldedText(row.text, Ignoring::caseAndDiacritics).contains(row.needle), row.both) << row.text;
    }
}

TEST(WithoutInvisibleMarks, removesTheMarksAndKeepsTheJoiners) {
    for (const std::string mark : {"\u200B", "\u200E", "\u200F", "\u202A", "\u202B", "\u202C", "\u202D", "\u202E",
                                   "\u2066", "\u2067", "\u2068", "\u2069", "\uFEFF"})
        EXPECT_EQ(text::withoutInvisibleMarks("Micro" + mark + "soft" + mark), "Microsoft") << mark;
    for (const std::string kept : {"\u200A", "\u200C", "\u200D", "\u2010", "\u2029", "\u202F", "\u2065", "\u206A"})
        EXPECT_EQ(text::withoutInvisibleMarks("a" + kept), "a" + kept);
    EXPECT_EQ(text::withoutInvisibleMarks("\U0001F469\u200D\U0001F4BB"), "\U0001F469\u200D\U0001F4BB");
    EXPECT_EQ(text::withoutInvisibleMarks(""), "");
}

TEST(FromUntrustedBytes, replacesWhatIsNotText) {
    EXPECT_EQ(text::fromUntrustedBytes("plain é"), "plain é");
    EXPECT_EQ(text::fromUntrustedBytes("a\xFFz"), "a\uFFFDz");
    EXPECT_EQ(text::fromUntrustedBytes("a\0z"s), "a\uFFFDz");
    EXPECT_EQ(text::fromUntrustedBytes("\xC3"), "\uFFFD");
    EXPECT_EQ(text::fromUntrustedBytes("\xED\xA0\x80"), "\uFFFD\uFFFD\uFFFD"); // a lone surrogate
}

TEST(Trimmed, cutsUnicodeWhiteSpaceAtBothEndsOnly) {
    EXPECT_EQ(text::trimmed(" \t\u00A0a b\u3000\n"), "a b");
    EXPECT_EQ(text::trimmed("   "), "");
    EXPECT_EQ(text::trimmed(""), "");
    EXPECT_EQ(text::trimmed("x"), "x");
}

} // namespace
} // namespace kestrio
