#include "Kestrio/Platform/Testing/ScriptedBrowserReader.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

TEST(ScriptedBrowserReader, aBrowserThatDoesNotRunAnswersAnEmptyText) {
    ScriptedBrowserReader reader;
    EXPECT_EQ(reader.frontTab("org.example.browser"), BrowserAnswer(""));
    EXPECT_EQ(reader.windows("org.example.browser"), BrowserAnswer(""));
}

TEST(ScriptedBrowserReader, answersWhatTheTestPutThereAndRemembersTheQuestions) {
    ScriptedBrowserReader reader;
    reader.frontTabs["a"] = "page";
    reader.allWindows["b"] = BrowserRefusal();
    EXPECT_EQ(reader.frontTab("a"), BrowserAnswer("page"));
    EXPECT_EQ(reader.windows("b"), BrowserAnswer(BrowserRefusal()));
    EXPECT_EQ(reader.asked, (std::vector<std::string>{"front a", "windows b"}));
}

} // namespace
} // namespace kestrio
