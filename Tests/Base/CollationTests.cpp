#include "Kestrio/Base/Collation.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

namespace kestrio {
namespace {

std::vector<std::string> sorted(std::vector<std::string> texts, const std::string& locale) {
    const Collation collation(locale);
    std::stable_sort(texts.begin(), texts.end(),
                     [&](const auto& a, const auto& b) { return collation.isBefore(a, b); });
    return texts;
}

using Texts = std::vector<std::string>;

TEST(Collation, ordersAsPeopleOfTheLanguageDo) {
    EXPECT_EQ(sorted({"zebra", "äpple", "apple"}, "en_US"), (Texts{"apple", "äpple", "zebra"}));
    EXPECT_EQ(sorted({"zebra", "äpple", "apple"}, "sv-SE"), (Texts{"apple", "zebra", "äpple"}));
}

TEST(Collation, caseMakesNoDifference) {
    EXPECT_EQ(sorted({"vivaldi", "Brave", "arc", "Chromium"}, "en_US"), (Texts{"arc", "Brave", "Chromium", "vivaldi"}));
    const Collation collation("en_US");
    EXPECT_FALSE(collation.isBefore("ARC", "arc"));
    EXPECT_FALSE(collation.isBefore("arc", "ARC"));
    EXPECT_TRUE(collation.isBefore("resume", "résumé"));
}

TEST(Collation, anUnknownLocaleStillOrders) {
    EXPECT_EQ(sorted({"b", "a", "C"}, ""), (Texts{"a", "b", "C"}));
    EXPECT_EQ(sorted({"b", "a", "C"}, "no such locale"), (Texts{"a", "b", "C"}));
}

} // namespace
} // namespace kestrio
