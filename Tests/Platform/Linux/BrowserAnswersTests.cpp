#include "Kestrio/Platform/Linux/BrowserAnswers.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

TEST(BrowserAnswers, separatorsAndBrokenBytesInPagesDoNotReachTheText) {
    EXPECT_EQ(tabText({"http://a\x1C\x1D.test", "T\x1E\x1F \xFF"}), "http://a.test\x1FT \xEF\xBF\xBD\x1Fnormal");
    EXPECT_EQ(windowText({0, 0, 1, 1}, {"x\x1F", "y\x1E"}, {{"p\x1D", "q\x1D"}, {"", "r"}}),
              "0\x1F"
              "0\x1F"
              "1\x1F"
              "1\x1Fnormal\x1Fx\x1Fy\x1Fp\x1D\x1Fq\x1Dr");
}

TEST(BrowserAnswers, aPrivateOneHasAPlaceholderAndNoTitle) {
    EXPECT_EQ(privateTabText(), "about:private\x1F\x1Fincognito");
    EXPECT_EQ(privateWindowText({1, 2, 3, 4.5}), "1\x1F"
                                                 "2\x1F"
                                                 "4\x1F"
                                                 "6.5\x1Fincognito\x1F"
                                                 "about:private\x1F\x1F"
                                                 "about:private\x1F");
}

TEST(BrowserAnswers, windowsStandInTheirOrder) {
    EXPECT_EQ(windowsText({"a", "b"}), "a\x1E"
                                       "b");
    EXPECT_EQ(windowsText({}), "");
}

} // namespace
} // namespace kestrio
