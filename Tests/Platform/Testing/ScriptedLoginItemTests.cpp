#include "Kestrio/Platform/Testing/ScriptedLoginItem.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

TEST(ScriptedLoginItem, isOffAtFirstAndFollowsWhatIsAsked) {
    ScriptedLoginItem item;
    EXPECT_FALSE(item.isEnabled());
    EXPECT_EQ(item.enable(), std::nullopt);
    EXPECT_TRUE(item.isEnabled());
    EXPECT_EQ(item.disable(), std::nullopt);
    EXPECT_FALSE(item.isEnabled());
    EXPECT_EQ(item.changesAskedFor(), 2);
}

TEST(ScriptedLoginItem, aScriptedFailureChangesNothing) {
    ScriptedLoginItem item;
    item.failWith("no room");
    EXPECT_EQ(item.enable(), "no room");
    EXPECT_FALSE(item.isEnabled());
    item.failWith(std::nullopt);
    EXPECT_EQ(item.enable(), std::nullopt);
    EXPECT_TRUE(item.isEnabled());
}

} // namespace
} // namespace kestrio
