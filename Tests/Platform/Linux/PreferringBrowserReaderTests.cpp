#include "Kestrio/Platform/Linux/PreferringBrowserReader.h"
#include "Kestrio/Platform/Testing/ScriptedBrowserReader.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

TEST(PreferringBrowserReader, theFirstThatSaysSomethingIsHeard) {
    const struct {
        const char* what;
        BrowserAnswer first;
        bool isAuthoritative;
        BrowserAnswer second;
        BrowserAnswer answer;
        std::size_t questionsToSecond;
    } rows[] = {
        {"both", "one", false, "two", "one", 0},
        {"the second alone", "", false, "two", "two", 1},
        {"neither", "", false, "", "", 1},
        {"the first has the last word", "", true, "two", "", 0},
        {"the first refuses", BrowserRefusal{}, false, "two", "two", 1},
        {"the first refuses and the second is silent", BrowserRefusal{}, false, "", BrowserRefusal{}, 1},
        {"the first refuses with the last word", BrowserRefusal{}, true, "two", BrowserRefusal{}, 0},
        {"the second refuses", "", false, BrowserRefusal{}, BrowserRefusal{}, 1},
    };
    for (const auto& row : rows) {
        ScriptedBrowserReader first;
        ScriptedBrowserReader second;
        first.frontTabs["id"] = first.allWindows["id"] = row.first;
        second.frontTabs["id"] = second.allWindows["id"] = row.second;
        PreferringBrowserReader reader({{first, [&](const std::string&) { return row.isAuthoritative; }}, {second}});
        EXPECT_EQ(reader.frontTab("id"), row.answer) << row.what;
        EXPECT_EQ(second.asked.size(), row.questionsToSecond) << row.what;
        EXPECT_EQ(reader.windows("id"), row.answer) << row.what;
    }
}

TEST(PreferringBrowserReader, withoutSourcesThereIsNothingToSay) {
    PreferringBrowserReader reader({});
    EXPECT_EQ(reader.frontTab("id"), BrowserAnswer(""));
}

} // namespace
} // namespace kestrio
