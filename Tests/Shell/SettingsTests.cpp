#include "Kestrio/Platform/Testing/MemoryKeyValueStore.h"
#include "Kestrio/Shell/Settings.h"
#include "Tests/ExpectedLog.h"

#include <gtest/gtest.h>
#include <set>

namespace kestrio {
namespace {

using Keys = std::vector<std::string>;
constexpr const char* running = "com.haldorvinter.Kestrio";

TEST(AppSettings, aFreshInstallReadsTheRegisteredValuesAndWritesNone) {
    struct Row {
        const char* key;
        SettingValue value;
    };
    const Row rows[] = {
        {"idleMinutes", std::int64_t{3}},
        {"showTimeInMenuBar", true},
        {"showActivityLight", true},
        {"appearanceMode", std::string("system")},
        {"showYouTubeThumbnails", false},
        {"showSystemMonitor", true},
        {"systemMenuStyle", std::string("iconAndPercent")},
        {"resourceLogEnabled", true},
        {"resourceLogDays", std::int64_t{90}},
        {"resourceDetail", std::int64_t{1}},
        {"resourceDetailDays", std::int64_t{7}},
        {"optimizerEnabled", false},
        {"optimizerMemoryAlerts", true},
        {"optimizerRunawayAlerts", true},
    };
    MemoryKeyValueStore store;
    AppSettings::registerDefaults(store, nullptr, running);
    for (const auto& row : rows)
        EXPECT_EQ(store.value(row.key), row.value) << row.key;
    EXPECT_EQ(store.storedKeys(), Keys{"didMigrateFromTimeweft"});

    std::size_t registered = 0;
    for (const auto& setting : knownSettings())
        registered += setting.registered ? 1 : 0;
    EXPECT_EQ(registered, std::size(rows));
}

TEST(AppSettings, keysWithoutARegisteredValueReadAsEmpty) {
    MemoryKeyValueStore store;
    AppSettings::registerDefaults(store, nullptr, running);
    for (const char* key : {"dismissedBrowserBanner", "hasOnboarded", "dashboardSection", "settingsTab",
                            "appCategoryOverrides", "domainCategoryOverrides", "projectRules", "optimizerRules",
                            "optimizerTuning", "ssdSpeedTest", "didConfigureLaunchAtLogin", "didMigrateToKestrio"})
        EXPECT_EQ(store.value(key), std::nullopt) << key;
}

TEST(AppSettings, theOldestSettingsAreTakenOverAsTheyStand) {
    const std::map<std::string, SettingValue> old = {
        {"idleMinutes", std::int64_t{10}},
        {"somethingUnknown", std::string("kept")},
        {"projectRules", SettingBytes{std::string("\0\xff", 2)}},
        {"appCategoryOverrides", SettingDictionary{{"com.a", "work"}}},
        {"showActivityLight", false},
        {"didConfigureLaunchAtLogin", true},
        {"didMigrateToKestrio", true},
        {"didMigrateFromTimeweft", true},
    };
    MemoryKeyValueStore store;
    const MemoryKeyValueStore oldStore(old);
    AppSettings::registerDefaults(store, &oldStore, running);
    EXPECT_EQ(store.storedKeys(), (Keys{"appCategoryOverrides", "didMigrateFromTimeweft", "idleMinutes", "projectRules",
                                        "showActivityLight", "somethingUnknown"}));
    for (const char* key : {"idleMinutes", "somethingUnknown", "projectRules", "appCategoryOverrides"})
        EXPECT_EQ(store.value(key), old.at(key)) << key;
    EXPECT_FALSE(store.boolean("didConfigureLaunchAtLogin"));
    EXPECT_EQ(oldStore.storedKeys().size(), old.size());
}

TEST(AppSettings, whatThePersonSetHereWinsOverTheOldestSettings) {
    MemoryKeyValueStore store({{"idleMinutes", std::int64_t{5}}});
    const MemoryKeyValueStore oldStore({{"idleMinutes", std::int64_t{10}}, {"resourceLogDays", std::int64_t{30}}});
    AppSettings::registerDefaults(store, &oldStore, running);
    EXPECT_EQ(store.integer("idleMinutes"), 5);
    EXPECT_EQ(store.integer("resourceLogDays"), 30);
}

TEST(AppSettings, valuesThatWereRegisteredBeforeShadowTheOldestSettings) {
    MemoryKeyValueStore store;
    store.registerDefaults({{"idleMinutes", std::int64_t{3}}});
    const MemoryKeyValueStore oldStore({{"idleMinutes", std::int64_t{10}}});
    AppSettings::migrateFromTimeweft(store, &oldStore, running);
    EXPECT_EQ(store.integer("idleMinutes"), 3);
}

TEST(AppSettings, aSecondLaunchDoesNotRepeatTheTakeOver) {
    MemoryKeyValueStore store;
    MemoryKeyValueStore oldStore({{"idleMinutes", std::int64_t{10}}});
    AppSettings::registerDefaults(store, &oldStore, running);
    ASSERT_TRUE(oldStore.set("idleMinutes", std::int64_t{20}));
    ASSERT_TRUE(oldStore.set("resourceDetail", std::int64_t{5}));
    ASSERT_TRUE(store.set("idleMinutes", std::nullopt));
    AppSettings::registerDefaults(store, &oldStore, running);
    EXPECT_EQ(store.integer("idleMinutes"), 3);
    EXPECT_EQ(store.integer("resourceDetail"), 1);
}

TEST(AppSettings, aSettingOfTheOldestProgramItselfIsNotTakenOver) {
    MemoryKeyValueStore store;
    const MemoryKeyValueStore oldStore({{"idleMinutes", std::int64_t{10}}});
    AppSettings::registerDefaults(store, &oldStore, "com.personal.Timeweft");
    EXPECT_EQ(store.integer("idleMinutes"), 3);
    EXPECT_TRUE(store.boolean("didMigrateFromTimeweft"));
}

TEST(AppSettings, withoutOldSettingsTheTakeOverIsStillMarkedAsDone) {
    MemoryKeyValueStore store;
    const MemoryKeyValueStore empty;
    AppSettings::migrateFromTimeweft(store, &empty, running);
    EXPECT_EQ(store.storedKeys(), Keys{"didMigrateFromTimeweft"});
}

TEST(AppSettings, whereNothingCanBeKeptTheRegisteredValuesStillStand) {
    MemoryKeyValueStore store;
    store.refuseWrites(true);
    const MemoryKeyValueStore oldStore({{"idleMinutes", std::int64_t{10}}});
    const ExpectedLog log;
    AppSettings::registerDefaults(store, &oldStore, running);
    EXPECT_EQ(store.integer("idleMinutes"), 3);
    EXPECT_EQ(log.lines().size(), 1U);
}

template <class Choice>
void expectChoice(std::vector<std::pair<std::string, std::string>> rows) {
    const auto cases = allCases<Choice>();
    ASSERT_EQ(cases.size(), rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(static_cast<std::size_t>(cases[i]), i);
        EXPECT_EQ(rawText(cases[i]), rows[i].first);
        EXPECT_EQ(label(cases[i]), rows[i].second);
        EXPECT_EQ(choiceOf<Choice>(rows[i].first), cases[i]) << rows[i].first;
    }
    EXPECT_EQ(choiceOf<Choice>("nonsense"), cases.front());
    EXPECT_EQ(choiceOf<Choice>(""), cases.front());
    EXPECT_EQ(choiceOf<Choice>(std::nullopt), cases.front());
}

TEST(SettingChoices, haveTheirTextsAndFallBackToTheFirstCase) {
    expectChoice<SystemMenuStyle>(
        {{"iconAndPercent", "Icon and CPU %"}, {"icon", "Icon only"}, {"percent", "CPU % only"}, {"hidden", "Hidden"}});
    expectChoice<AppearanceMode>({{"system", "Match System"}, {"light", "Light"}, {"dark", "Dark"}});
    expectChoice<SettingsTab>({{"general", "General"},
                               {"categories", "Categories"},
                               {"projects", "Projects"},
                               {"optimization", "Optimization"},
                               {"permissions", "Permissions"},
                               {"data", "Data"},
                               {"about", "About"}});
}

TEST(SettingChoices, areReadFromTheStore) {
    MemoryKeyValueStore store;
    EXPECT_EQ(choice<AppearanceMode>(store, settingKey::appearanceMode), AppearanceMode::system);
    ASSERT_TRUE(store.set(settingKey::appearanceMode, std::string("dark")));
    EXPECT_EQ(choice<AppearanceMode>(store, settingKey::appearanceMode), AppearanceMode::dark);
    ASSERT_TRUE(store.set(settingKey::appearanceMode, std::int64_t{2}));
    EXPECT_EQ(choice<AppearanceMode>(store, settingKey::appearanceMode), AppearanceMode::system);
}

TEST(KnownSettings, listEveryKeyOnceWithAMeaning) {
    std::set<std::string> keys;
    for (const auto& setting : knownSettings()) {
        EXPECT_TRUE(keys.insert(setting.key).second) << setting.key;
        EXPECT_FALSE(setting.meaning.empty()) << setting.key;
        EXPECT_EQ(setting.meaning.find('\n'), std::string::npos) << setting.key;
        EXPECT_EQ(knownSetting(setting.key), &setting);
    }
    EXPECT_EQ(keys.size(), 27U);
    EXPECT_EQ(knownSetting("nonsense"), nullptr);
}

TEST(KnownSettings, registeredValuesAreAllowedOnesAndReadBackFromTheirText) {
    for (const auto& setting : knownSettings()) {
        if (!setting.registered)
            continue;
        const auto parsed = parseSettingValue(setting.key, settingText(*setting.registered));
        const auto* value = std::get_if<SettingValue>(&parsed);
        ASSERT_TRUE(value) << setting.key;
        EXPECT_EQ(*value, *setting.registered) << setting.key;
    }
}

TEST(KnownSettings, everyBooleanTakesTheSameWords) {
    for (const auto& setting : knownSettings()) {
        if (setting.type != SettingType::boolean)
            continue;
        for (const char* yes : {"true", "on", "yes", "1"})
            EXPECT_EQ(std::get<SettingValue>(parseSettingValue(setting.key, yes)), SettingValue(true)) << setting.key;
        for (const char* no : {"false", "off", "no", "0"})
            EXPECT_EQ(std::get<SettingValue>(parseSettingValue(setting.key, no)), SettingValue(false)) << setting.key;
        for (const char* text : {"", "maybe", "2", "TRUE ", "null"})
            EXPECT_TRUE(std::holds_alternative<SettingTextError>(parseSettingValue(setting.key, text)))
                << setting.key << " " << text;
    }
}

TEST(KnownSettings, takeWhatIsAllowed) {
    struct Row {
        const char* key;
        const char* text;
        SettingValue value;
    };
    const Row rows[] = {
        {"idleMinutes", "1", std::int64_t{1}},
        {"idleMinutes", "1440", std::int64_t{1440}},
        {"resourceLogDays", "1", std::int64_t{1}},
        {"resourceLogDays", "3650", std::int64_t{3650}},
        {"resourceDetailDays", "1", std::int64_t{1}},
        {"resourceDetailDays", "3650", std::int64_t{3650}},
        {"resourceDetail", "0", std::int64_t{0}},
        {"resourceDetail", "1", std::int64_t{1}},
        {"resourceDetail", "5", std::int64_t{5}},
        {"resourceDetail", "10", std::int64_t{10}},
        {"appearanceMode", "dark", std::string("dark")},
        {"systemMenuStyle", "hidden", std::string("hidden")},
        {"settingsTab", "about", std::string("about")},
        {"dashboardSection", "anything", std::string("anything")},
        {"appCategoryOverrides", "{}", SettingDictionary{}},
        {"domainCategoryOverrides", R"({"a.org":"work"})", SettingDictionary{{"a.org", "work"}}},
        {"projectRules", "[]", SettingBytes{"[]"}},
        {"optimizerRules", R"( {"a" : 1} )", SettingBytes{R"( {"a" : 1} )"}},
        {"optimizerTuning", "{}", SettingBytes{"{}"}},
        {"ssdSpeedTest", "null", SettingBytes{"null"}},
    };
    for (const auto& row : rows) {
        const auto parsed = parseSettingValue(row.key, row.text);
        const auto* value = std::get_if<SettingValue>(&parsed);
        ASSERT_TRUE(value) << row.key << " " << row.text;
        EXPECT_EQ(*value, row.value) << row.key << " " << row.text;
    }
}

TEST(KnownSettings, sayWhatIsWrongAndWhatIsAllowed) {
    struct Row {
        const char* key;
        const char* text;
        const char* message;
    };
    const char* idle = "it must be a whole number from 1 to 1440";
    const char* detail = "it must be one of 0, 1, 5, 10";
    const char* days = "it must be a whole number from 1 to 3650";
    const Row rows[] = {
        {"nonsense", "1", "there is no setting named \"nonsense\""},
        {"idleMinutes", "0", idle},
        {"idleMinutes", "1441", idle},
        {"idleMinutes", "-3", idle},
        {"idleMinutes", "3.5", idle},
        {"idleMinutes", "3 ", idle},
        {"idleMinutes", "+3", idle},
        {"idleMinutes", "", idle},
        {"idleMinutes", "99999999999999999999", idle},
        {"resourceDetail", "2", detail},
        {"resourceDetail", "-1", detail},
        {"resourceLogDays", "0", days},
        {"resourceLogDays", "3651", days},
        {"resourceDetailDays", "0", days},
        {"resourceDetailDays", "3651", days},
        {"appearanceMode", "Dark", "\"Dark\" is not a value for appearanceMode: it must be one of system, light, dark"},
        {"systemMenuStyle", "",
         "\"\" is not a value for systemMenuStyle: it must be one of iconAndPercent, icon, percent, hidden"},
        {"settingsTab", "x", "it must be one of general, categories, projects, optimization, permissions, data, about"},
        {"optimizerEnabled", "maybe", "it must be true or false (on, off, yes, no, 1 and 0 do too)"},
        {"appCategoryOverrides", "[]", "must be a JSON object whose values are all texts"},
        {"appCategoryOverrides", R"({"a":1})", "must be a JSON object whose values are all texts"},
        {"appCategoryOverrides", "{", "the value for appCategoryOverrides is not valid JSON: parse error at line 1"},
        {"projectRules", "[1,", "the value for projectRules is not valid JSON: parse error at line 1"},
        {"projectRules", "", "the value for projectRules is not valid JSON"},
        {"dashboardSection", "\xff", "the value for dashboardSection is not valid UTF-8 text"},
    };
    for (const auto& row : rows) {
        const auto parsed = parseSettingValue(row.key, row.text);
        const auto* error = std::get_if<SettingTextError>(&parsed);
        ASSERT_TRUE(error) << row.key << " " << row.text;
        EXPECT_NE(error->message.find(row.message), std::string::npos) << error->message;
    }
}

TEST(KnownSettings, valuesAreWrittenForPeople) {
    struct Row {
        SettingValue value;
        const char* text;
    };
    const Row rows[] = {
        {true, "true"},
        {false, "false"},
        {std::int64_t{-7}, "-7"},
        {std::string("dark"), "dark"},
        {SettingDictionary{{"a", "b"}}, R"({"a":"b"})"},
        {SettingDictionary{}, "{}"},
        {SettingBytes{"[1]"}, "[1]"},
        {SettingBytes{"\xff\xfe"}, "(2 bytes that are not text)"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(settingText(row.value), row.text);
}

} // namespace
} // namespace kestrio
