#include "Kestrio/Base/Text.h"
#include "Kestrio/Classification/TextTools.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

struct Cleaned {
    std::string_view title;
    std::string_view becomes;
};

void expectCleaned(std::initializer_list<Cleaned> rows) {
    for (const auto& row : rows)
        EXPECT_EQ(TitleCleaner::clean(row.title), row.becomes) << "\"" << row.title << "\"";
}

std::string times(int count, std::string_view piece) {
    std::string text;
    for (int at = 0; at < count; ++at)
        text += piece;
    return text;
}

TEST(TitleCleaner, invisibleMarksGoAndJoinersStay) {
    expectCleaned({
        {"\u200Ea\u200Bb\u200Fc\u202A\u202B\u202C\u202D\u202Ed\u2066\u2067\u2068\u2069e\uFEFF", "abcde"},
        {"\U0001F468\u200D\U0001F469\u200D\U0001F467 Family", "\U0001F468\u200D\U0001F469\u200D\U0001F467 Family"},
        {"می\u200Cخواهم", "می\u200Cخواهم"},
        {"क\u094D\u200Dष", "क\u094D\u200Dष"},
    });
}

TEST(TitleCleaner, whiteSpaceAroundTheTitleGoes) {
    expectCleaned({
        {"", ""},
        {"  \t\n", ""},
        {" a b ", "a b"},
        {"\u3000題名\u00A0\r\n", "題名"},
        {"a\u2028", "a"},
        {"a  b", "a  b"},
    });
}

TEST(TitleCleaner, everyKindOfDecorationGoesFromTheFront) {
    expectCleaned({
        {"*main.cpp", "main.cpp"},
        {"· notes", "notes"},
        {"•notes", "notes"},
        {"… loading", "loading"},
        {"∙ a", "a"},
        {"⋅ a", "a"},
        {"\u2800a", "a"},
        {"\u28FFa", "a"},
        {"⠋ npm install", "npm install"},
        {"\u2700a", "a"},
        {"\u27BFa", "a"},
        {"✳ Working", "Working"},
        {"\u2600a", "a"},
        {"\u26FFa", "a"},
        {"\u2300a", "a"},
        {"\u23FFa", "a"},
        {"⏸ Song", "Song"},
        {"\u25A0a", "a"},
        {"\u25FFa", "a"},
        {"● file.txt", "file.txt"},
        {"● * • · ✳ deep", "deep"},
        {"* \u3000 a", "a"},
        {"a *", "a *"},
        {"**bold**", "bold**"},
    });
}

TEST(TitleCleaner, whatLiesBesideTheBlocksOfDecorationStays) {
    expectCleaned({
        {"\u22FFa", "\u22FFa"},
        {"\u2400a", "\u2400a"},
        {"\u259Fa", "\u259Fa"},
        {"\u27C0a", "\u27C0a"},
        {"\u27FFa", "\u27FFa"},
        {"\u2900a", "\u2900a"},
        {"\u2025a", "\u2025a"},
        {"-a", "-a"},
        {"+a", "+a"},
        {"→ a", "→ a"},
        {"🔥 a", "🔥 a"},
    });
}

TEST(TitleCleaner, aTitleOfNothingButMarksBecomesEmpty) {
    expectCleaned({{"***", ""}, {"● ", ""}, {"⠋⠙⠹", ""}, {"\u200B•\uFEFF", ""}});
}

TEST(TitleCleaner, oneCounterInFrontGoes) {
    expectCleaned({
        {"(3) Inbox", "Inbox"},
        {"(99+) Chat", "Chat"},
        {"(1,234) News", "News"},
        {"(1.234) Nachrichten", "Nachrichten"},
        {"(1.234,5+)News", "News"},
        {"(0)", ""},
        {"(7)\u00A0\t Seven", "Seven"},
        {"(٣) رسائل", "رسائل"},
        {"(１２) 受信箱", "受信箱"},
        {"(1)(2) Twice", "(2) Twice"},
    });
}

TEST(TitleCleaner, whatOnlyResemblesACounterStays) {
    for (const std::string_view title : {"(3a) Inbox", "(a3) Inbox", "() Empty", "(,3) Comma first", "(3 Open",
                                         "(3++) Twice", "(+3) Plus first", "( 3) Blank", "(3 ) Blank", "[3] Brackets",
                                         "Inbox (3)", "3) Half", "(-3) Minus", "(", "(3", "(3+", "(½) Half"})
        EXPECT_EQ(TitleCleaner::clean(title), title);
}

TEST(TitleCleaner, aCounterGoesAfterTheDecorationSoThatDecorationBehindItStays) {
    expectCleaned({
        {"● (3) Inbox", "Inbox"},
        {"(3) ● Inbox", "● Inbox"},
        {"\u200B• (99+) Inbox", "Inbox"},
        {"\u200B•(9\u200E9+) Inbox", "Inbox"},
    });
}

TEST(TitleCleaner, aLongTitleIsCutToCharactersNotToBytes) {
    const std::string family = "\U0001F468\u200D\U0001F469\u200D\U0001F467";
    expectCleaned({
        {times(400, "a"), times(400, "a")},
        {times(401, "a"), times(400, "a")},
        {times(401, "😀"), times(400, "😀")},
        {times(401, family), times(400, family)},
        {times(401, "e\u0301"), times(400, "e\u0301")},
        {"(3) * " + times(401, "字"), "* " + times(398, "字")},
    });
}

TEST(TitleCleaner, cleaningACleanTitleChangesItOnlyWhereMarksWereStacked) {
    for (const std::string_view title : {"main.cpp", "受信箱", "a (3)", "🔥 a", ""})
        EXPECT_EQ(TitleCleaner::clean(TitleCleaner::clean(title)), title);
    EXPECT_EQ(TitleCleaner::clean(TitleCleaner::clean("(1) (2) a")), "a");
}

struct Signed {
    std::string_view title;
    std::string_view appName;
    std::string_view becomes;
};

void expectUnsigned(std::initializer_list<Signed> rows) {
    for (const auto& row : rows)
        EXPECT_EQ(TitleCleaner::removingAppName(row.title, row.appName), row.becomes)
            << "\"" << row.title << "\" of " << row.appName;
}

TEST(TitleCleaner, aSignatureBehindAnyOfTheFourSeparatorsGoes) {
    expectUnsigned({
        {"Notes — Editor", "Editor", "Notes"},
        {"Notes – Editor", "Editor", "Notes"},
        {"Notes - Editor", "Editor", "Notes"},
        {"Notes | Editor", "Editor", "Notes"},
        {"Notes : Editor", "Editor", "Notes : Editor"},
        {"Notes-Editor", "Editor", "Notes-Editor"},
        {"Notes - editor", "Editor", "Notes - editor"},
        {"Notes - Editor 2", "Editor", "Notes - Editor 2"},
        {"Editor - Notes", "Editor", "Editor - Notes"},
    });
}

TEST(TitleCleaner, onlyTheLastSignatureGoesAndNothingElse) {
    expectUnsigned({
        {"Notes - Editor - Editor", "Editor", "Notes - Editor"},
        {"Notes | Editor — Editor", "Editor", "Notes | Editor"},
        {"Notes  - Editor", "Editor", "Notes "},
        {" - Notes - Editor", "Editor", " - Notes"},
    });
}

TEST(TitleCleaner, aTitleThatIsNothingButASignatureStays) {
    expectUnsigned({
        {"Editor", "Editor", "Editor"},
        {" - Editor", "Editor", " - Editor"},
        {" — Editor", "Editor", " — Editor"},
        {"", "Editor", ""},
        {"a - Editor", "Editor", "a"},
    });
}

TEST(TitleCleaner, applicationsThatSignUnderAnotherNameAreKnown) {
    expectUnsigned({
        {"main.cpp - Visual Studio Code", "Code", "main.cpp"},
        {"main.cpp - Code", "Code", "main.cpp"},
        {"main.cpp — Visual Studio Code - Insiders", "Code - Insiders", "main.cpp"},
        {"main.cpp - Code - Insiders", "Code - Insiders", "main.cpp"},
        {"zsh - iTerm", "iTerm2", "zsh"},
        {"zsh - iTerm2", "iTerm2", "zsh"},
        {"zsh - iTerm2", "iTerm", "zsh - iTerm2"},
        {"main.cpp - Visual Studio Code", "Visual Studio Code", "main.cpp"},
        {"main.cpp - Visual Studio Code", "Editor", "main.cpp - Visual Studio Code"},
    });
}

TEST(TitleCleaner, theNameIsTriedBeforeItsAliases) {
    expectUnsigned({
        {"a - Visual Studio Code - Code", "Code", "a - Visual Studio Code"},
        {"a - Code - Visual Studio Code", "Code", "a - Code"},
    });
}

TEST(TitleCleaner, anEmptyNameRemovesNothing) {
    expectUnsigned({{"Notes - ", "", "Notes - "}, {"Notes", "", "Notes"}});
}

TEST(TitleCleaner, aNameIsRecognisedHoweverItsAccentsAreEncoded) {
    expectUnsigned({
        {"Brief - Caf\u00E9", "Cafe\u0301", "Brief"},
        {"Brief - Cafe\u0301", "Caf\u00E9", "Brief"},
        {"ノート - カ\u3099", "ガ", "ノート"},
        {"Brief - Caf\u00E9", "Cafe", "Brief - Caf\u00E9"},
        {"Brief - Cafe\u0301", "Cafe", "Brief - Cafe\u0301"},
    });
}

TEST(TitleCleaner, aNameThatHoldsASeparatorIsFoundWhole) {
    expectUnsigned({
        {"song - A - B", "A - B", "song"},
        {"A - B", "A - B", "A - B"},
        {"song - B", "A - B", "song - B"},
    });
}

} // namespace
} // namespace kestrio
