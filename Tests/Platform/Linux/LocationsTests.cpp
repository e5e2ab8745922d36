#include "Kestrio/Platform/Linux/Locations.h"

#include <gtest/gtest.h>
#include <map>

namespace kestrio {
namespace {

Environment environment(std::map<std::string, std::string> values) {
    return [values](const std::string& name) -> std::optional<std::string> {
        const auto found = values.find(name);
        return found == values.end() ? std::nullopt : std::optional(found->second);
    };
}

TEST(Locations, followTheDesktopsVariables) {
    const auto found = locations(environment({{"HOME", "/home/a"},
                                              {"XDG_DATA_HOME", "/data"},
                                              {"XDG_CONFIG_HOME", "/config"},
                                              {"XDG_CACHE_HOME", "/cache"},
                                              {"XDG_RUNTIME_DIR", "/run/user/7"}}));
    ASSERT_TRUE(found);
    EXPECT_EQ(found->data, "/data");
    EXPECT_EQ(found->settingsFile(), "/config/Kestrio/settings.json");
    EXPECT_EQ(found->cache, "/cache");
    EXPECT_EQ(found->runtime, "/run/user/7");
}

TEST(Locations, fallBackToTheHomeFolderWhereAVariableIsMissingOrRelative) {
    const auto found = locations(environment({{"HOME", "/home/a"}, {"XDG_DATA_HOME", "relative"}}));
    ASSERT_TRUE(found);
    EXPECT_EQ(found->data, "/home/a/.local/share");
    EXPECT_EQ(found->config, "/home/a/.config");
    EXPECT_EQ(found->cache, "/home/a/.cache");
    EXPECT_TRUE(found->runtime.empty());
}

TEST(Locations, kestrioHomeMovesEverythingBelowOneFolder) {
    const auto found =
        locations(environment({{"KESTRIO_HOME", "/trial"}, {"HOME", "/home/a"}, {"XDG_DATA_HOME", "/d"}}));
    ASSERT_TRUE(found);
    EXPECT_EQ(found->data, "/trial/data");
    EXPECT_EQ(found->settingsFile(), "/trial/config/Kestrio/settings.json");
    EXPECT_EQ(found->timeweftSettingsFile(), "/trial/config/com.personal.Timeweft.json");
    EXPECT_EQ(found->autostartFolder(), "/trial/config/autostart");
    EXPECT_EQ(found->cache, "/trial/cache");
    EXPECT_EQ(found->runtime, "/trial/run");
}

TEST(Locations, areAbsentWithoutAnyHome) {
    EXPECT_FALSE(locations(environment({})));
    EXPECT_FALSE(locations(environment({{"HOME", "somewhere"}})));
}

} // namespace
} // namespace kestrio
