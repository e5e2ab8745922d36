#include "Kestrio/Platform/Linux/SettledPage.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

const BrowserPage a{"http://a.test", "A"};
const BrowserPage b{"http://b.test", "B"};
const BrowserPage mixed{"http://b.test", "A"};

std::string answerOf(const SettledPage& page, double at) {
    const auto* answer = page.answer(Uptime(at));
    return answer ? answer->address + " " + answer->title : "none";
}

struct Look {
    double at;
    std::optional<BrowserPage> page;
    std::string answer;
};

void expectAnswers(const char* what, const std::vector<Look>& looks) {
    SettledPage page;
    for (const auto& look : looks) {
        page.see(look.page, Uptime(look.at));
        EXPECT_EQ(answerOf(page, look.at), look.answer) << what << ", at " << look.at;
    }
}

TEST(SettledPage, aPageIsBelievedWhenItWasReadTwiceWithTimeInBetween) {
    expectAnswers("twice", {{0, a, "none"}, {0.25, a, "http://a.test A"}, {2, a, "http://a.test A"}});
    expectAnswers("too soon", {{0, a, "none"}, {0.125, a, "none"}, {0.25, a, "http://a.test A"}});
    expectAnswers("interrupted", {{0, a, "none"}, {0.125, std::nullopt, "none"}, {0.25, a, "none"}});
    expectAnswers("another", {{0, mixed, "none"}, {0.25, b, "none"}, {0.5, b, "http://b.test B"}});
}

TEST(SettledPage, theOldPageIsHeldWhileTheNewOneSettlesButNotForEver) {
    expectAnswers("a change", {{0, a, "none"},
                               {1, a, "http://a.test A"},
                               {3, mixed, "http://a.test A"},
                               {3.25, b, "http://a.test A"},
                               {3.5, b, "http://b.test B"}});
    expectAnswers("no rest", {{0, a, "none"},
                              {1, a, "http://a.test A"},
                              {3, b, "http://a.test A"},
                              {5, mixed, "http://a.test A"},
                              {7, b, "none"},
                              {7.25, b, "http://b.test B"}});
    expectAnswers("gone", {{0, a, "none"}, {1, a, "http://a.test A"}, {6.5, std::nullopt, "none"}});
}

TEST(SettledPage, aPageThatIsBackIsBelievedAtOnce) {
    expectAnswers("back", {{0, a, "none"},
                           {1, a, "http://a.test A"},
                           {2, b, "http://a.test A"},
                           {2.1, a, "http://a.test A"},
                           {60, a, "http://a.test A"}});
}

TEST(SettledPage, tellsWhetherItIsWorthReadingAgain) {
    SettledPage page;
    page.see(std::nullopt, Uptime(0));
    EXPECT_FALSE(page.isSettling());
    page.see(a, Uptime(1));
    EXPECT_TRUE(page.isSettling());
    EXPECT_FALSE(page.isSettled());
    page.see(a, Uptime(2));
    EXPECT_FALSE(page.isSettling());
    EXPECT_TRUE(page.isSettled());
}

} // namespace
} // namespace kestrio
