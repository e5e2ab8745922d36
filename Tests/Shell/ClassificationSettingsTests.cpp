#include "Kestrio/Platform/Testing/MemoryKeyValueStore.h"
#include "Kestrio/Shell/ClassificationSettings.h"
#include "Kestrio/Shell/FreshUUID.h"
#include "Kestrio/Shell/Settings.h"
#include "Tests/ExpectedLog.h"

#include <gtest/gtest.h>
#include <set>

namespace kestrio {
namespace {

using enum ActivityCategory;

TEST(ClassificationSettings, keepWhatIsSetUnderItsKeys) {
    MemoryKeyValueStore store;
    ClassificationSettings settings(store);
    EXPECT_TRUE(store.storedKeys().empty());
    EXPECT_TRUE(settings.categorizer().setAppCategory(work, "a"));
    EXPECT_TRUE(settings.categorizer().setDomainCategory(social, "b.org"));
    EXPECT_TRUE(settings.projectRules().setRules({{{}, "c", "D"}}));
    EXPECT_EQ(store.get<SettingDictionary>("appCategoryOverrides"), (SettingDictionary{{"a", "work"}}));
    EXPECT_EQ(store.get<SettingDictionary>("domainCategoryOverrides"), (SettingDictionary{{"b.org", "social"}}));
    EXPECT_EQ(store.get<SettingBytes>("projectRules"),
              (SettingBytes{R"([{"id":"00000000-0000-0000-0000-000000000000","keyword":"c","project":"D"}])"}));
    settings.categorizer().setAppCategory(std::nullopt, "a");
    EXPECT_EQ(store.get<SettingDictionary>("appCategoryOverrides"), SettingDictionary());
}

TEST(ClassificationSettings, readWhatIsStored) {
    MemoryKeyValueStore store({{"appCategoryOverrides", SettingDictionary{{"a", "work"}, {"b", "sleep"}}},
                               {"domainCategoryOverrides", SettingDictionary{{"b.org", "social"}}},
                               {"projectRules", SettingBytes{"[]"}}});
    ClassificationSettings settings(store, [](std::string_view) { return entertainment; });
    const auto snapshot = settings.categorizer().snapshot();
    EXPECT_EQ(snapshot.appCategory("a"), work);
    EXPECT_EQ(snapshot.appCategory("b"), entertainment);
    EXPECT_EQ(snapshot.category("b", "b.org"), social);
    EXPECT_TRUE(settings.projectRules().rules().empty());
}

TEST(ClassificationSettings, valuesOfOtherTypesCountAsNone) {
    MemoryKeyValueStore store({{"appCategoryOverrides", std::string("work")},
                               {"domainCategoryOverrides", std::int64_t{1}},
                               {"projectRules", std::string("[]")}});
    ClassificationSettings settings(store);
    EXPECT_TRUE(settings.categorizer().snapshot().appOverrides.empty());
    EXPECT_TRUE(settings.categorizer().snapshot().domainOverrides.empty());
    EXPECT_TRUE(settings.projectRules().rules().empty());
}

TEST(ClassificationSettings, followTheStore) {
    MemoryKeyValueStore store;
    ClassificationSettings settings(store);
    int categories = 0;
    int rules = 0;
    const auto one = settings.categorizer().observe([&] { ++categories; });
    const auto other = settings.projectRules().observe([&] { ++rules; });
    store.set("appCategoryOverrides", SettingDictionary{{"a", "work"}});
    EXPECT_EQ(settings.categorizer().snapshot().appCategory("a"), work);
    store.set("domainCategoryOverrides", SettingDictionary{{"b.org", "social"}});
    EXPECT_EQ(settings.categorizer().snapshot().category("a", "b.org"), social);
    EXPECT_EQ(categories, 2);
    EXPECT_EQ(rules, 0);
    store.set("projectRules",
              SettingBytes{R"([{"id":"00000000-0000-0000-0000-000000000000","keyword":"c","project":"D"}])"});
    EXPECT_EQ(settings.projectRules().rules().size(), 1u);
    store.set("idleMinutes", std::int64_t{5});
    EXPECT_EQ(categories, 2);
    EXPECT_EQ(rules, 1);
}

TEST(ClassificationSettings, tellOnceOfAChangeOfTheirOwn) {
    MemoryKeyValueStore store;
    ClassificationSettings settings(store);
    int heard = 0;
    const auto one = settings.categorizer().observe([&] { ++heard; });
    const auto other = settings.projectRules().observe([&] { ++heard; });
    settings.categorizer().setAppCategory(work, "a");
    EXPECT_EQ(heard, 1);
    settings.categorizer().setDomainCategory(work, "a.org");
    EXPECT_EQ(heard, 2);
    settings.projectRules().setRules({{{}, "c", "D"}});
    EXPECT_EQ(heard, 3);
}

TEST(ClassificationSettings, sayWhatTheStoreRefused) {
    MemoryKeyValueStore store;
    ClassificationSettings settings(store);
    store.refuseWrites(true);
    const ExpectedLog log;
    EXPECT_FALSE(settings.categorizer().setAppCategory(work, "a"));
    EXPECT_FALSE(settings.projectRules().setRules({{{}, "c", "D"}}));
}

TEST(FreshUUID, isRandomAndSaysSo) {
    std::set<tindra::UUID> seen;
    for (int i = 0; i < 1000; ++i) {
        const auto uuid = freshUUID();
        EXPECT_TRUE(seen.insert(uuid).second);
        const auto text = tindra::text(uuid);
        EXPECT_EQ(text[14], '4') << text;
        EXPECT_NE(std::string("89AB").find(text[19]), std::string::npos) << text;
    }
}

} // namespace
} // namespace kestrio
