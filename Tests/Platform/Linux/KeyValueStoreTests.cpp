// What every store of settings does, over the file and over its twin in memory.

#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Platform/Linux/FileKeyValueStore.h"
#include "Kestrio/Platform/Testing/MemoryKeyValueStore.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

struct InMemory {
    MemoryKeyValueStore store;
    void settle() {}
};

struct InFile {
    TemporaryFolder folder;
    FileKeyValueStore store{folder.path() / "Kestrio" / "settings.json"};
    void settle() {}
};

struct InWatchedFile {
    TemporaryFolder folder;
    WorkerQueue queue{"settings"};
    FileKeyValueStore store{folder.path() / "Kestrio" / "settings.json", &queue};
    void settle() {
        queue.sync([] {});
    }
};

template <class Host>
struct AnyKeyValueStore : testing::Test {
    Host host;
    KeyValueStore& store = host.store;
    std::vector<std::string> heard;

    Subscription listen() {
        return store.observe([this](const std::string& key) { heard.push_back(key); });
    }
    std::vector<std::string> heardSoFar() {
        host.settle();
        return std::exchange(heard, {});
    }
};

using Hosts = testing::Types<InMemory, InFile, InWatchedFile>;
TYPED_TEST_SUITE(AnyKeyValueStore, Hosts);

using Keys = std::vector<std::string>;

TYPED_TEST(AnyKeyValueStore, keepsEveryType) {
    const SettingValue rows[] = {
        true,
        false,
        std::int64_t{0},
        std::int64_t{-90},
        std::string("text"),
        SettingBytes{"[1,2]"},
        SettingBytes{std::string("\0\xff", 2)},
        SettingDictionary{{"com.a", "work"}, {"com.b", ""}},
        SettingDictionary{},
    };
    for (const auto& row : rows) {
        ASSERT_TRUE(this->store.set("k", row)) << row.index();
        EXPECT_EQ(this->store.value("k"), row) << row.index();
    }
}

TYPED_TEST(AnyKeyValueStore, aFreshOneIsEmpty) {
    EXPECT_EQ(this->store.value("k"), std::nullopt);
    EXPECT_FALSE(this->store.boolean("k"));
    EXPECT_EQ(this->store.integer("k"), 0);
    EXPECT_EQ(this->store.storedKeys(), Keys{});
}

TYPED_TEST(AnyKeyValueStore, aValueOfAnotherTypeReadsAsTheEmptyOne) {
    ASSERT_TRUE(this->store.set("k", std::string("5")));
    EXPECT_EQ(this->store.integer("k"), 0);
    EXPECT_FALSE(this->store.boolean("k"));
    EXPECT_EQ(this->store.template get<SettingBytes>("k"), std::nullopt);
    EXPECT_EQ(this->store.template get<std::string>("k"), "5");
}

TYPED_TEST(AnyKeyValueStore, registeredValuesStandBeneathStoredOnes) {
    this->store.registerDefaults({{"a", std::int64_t{3}}, {"b", true}});
    EXPECT_EQ(this->store.integer("a"), 3);
    EXPECT_EQ(this->store.storedKeys(), Keys{});
    ASSERT_TRUE(this->store.set("a", std::int64_t{7}));
    EXPECT_EQ(this->store.integer("a"), 7);
    EXPECT_EQ(this->store.storedKeys(), Keys{"a"});
    ASSERT_TRUE(this->store.set("a", std::nullopt));
    EXPECT_EQ(this->store.integer("a"), 3);
    EXPECT_EQ(this->store.storedKeys(), Keys{});
}

TYPED_TEST(AnyKeyValueStore, laterRegisteredValuesReplaceEarlierOnesOfTheSameKey) {
    this->store.registerDefaults({{"a", std::int64_t{3}}, {"b", std::int64_t{4}}});
    this->store.registerDefaults({{"a", std::int64_t{5}}});
    EXPECT_EQ(this->store.integer("a"), 5);
    EXPECT_EQ(this->store.integer("b"), 4);
}

TYPED_TEST(AnyKeyValueStore, aStoredValueOfAnotherTypeHidesTheRegisteredOne) {
    this->store.registerDefaults({{"a", std::int64_t{3}}});
    ASSERT_TRUE(this->store.set("a", std::string("x")));
    EXPECT_EQ(this->store.integer("a"), 0);
}

TYPED_TEST(AnyKeyValueStore, tellsObserversOfEachChangeOnce) {
    const auto token = this->listen();
    ASSERT_TRUE(this->store.set("k", std::int64_t{1}));
    EXPECT_EQ(this->heardSoFar(), Keys{"k"});
    ASSERT_TRUE(this->store.set("k", std::int64_t{1}));
    EXPECT_EQ(this->heardSoFar(), Keys{});
    ASSERT_TRUE(this->store.set("k", std::nullopt));
    EXPECT_EQ(this->heardSoFar(), Keys{"k"});
    ASSERT_TRUE(this->store.set("k", std::nullopt));
    EXPECT_EQ(this->heardSoFar(), Keys{});
}

TYPED_TEST(AnyKeyValueStore, storingTheRegisteredValueChangesNothingForObservers) {
    this->store.registerDefaults({{"k", std::int64_t{3}}});
    const auto token = this->listen();
    ASSERT_TRUE(this->store.set("k", std::int64_t{3}));
    EXPECT_EQ(this->heardSoFar(), Keys{});
    EXPECT_EQ(this->store.storedKeys(), Keys{"k"});
}

TYPED_TEST(AnyKeyValueStore, registeringTellsOfTheKeysWhoseValueChanged) {
    ASSERT_TRUE(this->store.set("stored", true));
    const auto token = this->listen();
    this->store.registerDefaults({{"stored", false}, {"new", true}});
    EXPECT_EQ(this->heardSoFar(), Keys{"new"});
}

TYPED_TEST(AnyKeyValueStore, anObserverHearsNothingFromBeforeOrAfterItsTime) {
    ASSERT_TRUE(this->store.set("before", true));
    auto token = this->listen();
    this->host.settle();
    token.cancel();
    ASSERT_TRUE(this->store.set("after", true));
    EXPECT_EQ(this->heardSoFar(), Keys{});
}

TYPED_TEST(AnyKeyValueStore, anObserverMayReadAndSet) {
    std::vector<std::int64_t> seen;
    const auto token = this->store.observe([&](const std::string& key) {
        seen.push_back(this->store.integer(key));
        if (key == "a")
            this->store.set("b", std::int64_t{2});
    });
    ASSERT_TRUE(this->store.set("a", std::int64_t{1}));
    this->host.settle();
    this->host.settle();
    EXPECT_EQ(seen, (std::vector<std::int64_t>{1, 2}));
}

TYPED_TEST(AnyKeyValueStore, storedKeysAreSorted) {
    for (const char* key : {"b", "a", "c"})
        ASSERT_TRUE(this->store.set(key, true));
    EXPECT_EQ(this->store.storedKeys(), (Keys{"a", "b", "c"}));
}

} // namespace
} // namespace kestrio
