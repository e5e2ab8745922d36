#include "Kestrio/Platform/Linux/IdentityCatalogue.h"
#include "Kestrio/Platform/Linux/TitleFamilies.h"

#include <gtest/gtest.h>
#include <set>

namespace kestrio {
namespace {

using Members = std::vector<TitleFamilyMember>;

TEST(TitleFamilies, areLinesOfMembers) {
    EXPECT_EQ(parseTitleFamilies("# comment\n\neditor\ta\tb\nterminal\tc"),
              (Members{{"a", "editor"}, {"b", "editor"}, {"c", "terminal"}}));
    EXPECT_EQ(parseTitleFamilies(""), Members());
    EXPECT_EQ(parseTitleFamilies("editor\n"), Members());
}

TEST(TitleFamilies, nameEachApplicationOnceAndAsTheCatalogueDoes) {
    std::set<std::string_view> seen;
    for (const auto& member : titleFamilyMembers()) {
        EXPECT_TRUE(seen.insert(member.bundleID).second) << member.bundleID << " stands twice";
        EXPECT_EQ(IdentityCatalogue::builtIn().identifier(member.bundleID), member.bundleID);
    }
    EXPECT_FALSE(seen.empty());
}

} // namespace
} // namespace kestrio
