#include "Kestrio/Optimizer/OptimizerJSON.h"

#include <gtest/gtest.h>
#include <limits>
#include <nlohmann/json.hpp>
#include <rapidcheck/gtest.h>

namespace kestrio {
namespace {

using namespace tindra;
using JSON = nlohmann::ordered_json;

const std::string defaultTuningText = R"({"mode":"balanced","idleMinutes":10.0,"focusIdleMinutes":3.0,)"
                                      R"("checkEveryMinutes":15.0,"wakeSeconds":45.0,"useEfficiencyCores":true,)"
                                      R"("efficiencyThreshold":0.1})";

const std::string ownTuningText = R"({"mode":"focus","idleMinutes":7.5,"focusIdleMinutes":2.25,)"
                                  R"("checkEveryMinutes":20.0,"wakeSeconds":30.5,"useEfficiencyCores":false,)"
                                  R"("efficiencyThreshold":0.35})";
const OptimizerTuning ownTuning{OptimizerMode::focus, 7.5, 2.25, 20, 30.5, false, 0.35};

const std::string emptyRulesText = R"({"tiers":{},"schedules":[],"overrides":[],"neverTouch":[]})";

const std::string fullRulesText =
    R"({"tiers":{"com.example.chat":"checkPeriodically","com.example.notes":"canWait","com.example.on":"alwaysOn"},)"
    R"("schedules":[{"id":"E621E1F8-C36C-495A-93FC-0C247A3E6E5F","name":"Night \"shift\"","isEnabled":true,)"
    R"("window":{"start":1320,"end":360,"weekdays":[1,6,7]},"tiers":{"com.example.chat":"canWait"}},)"
    R"({"id":"00000000-0000-0000-0000-000000000001","name":"","isEnabled":false,)"
    R"("window":{"start":0,"end":0,"weekdays":[]},"tiers":{}}],)"
    R"("overrides":[{"appID":"com.example.notes","tier":"alwaysOn","until":771692800.5}],)"
    R"("neverTouch":["com.example.editor","com.example.player"]})";

OptimizerRules fullRules() {
    OptimizerRules rules;
    rules.tiers = {{"com.example.chat", AppTier::checkPeriodically},
                   {"com.example.notes", AppTier::canWait},
                   {"com.example.on", AppTier::alwaysOn}};
    rules.schedules = {{*uuid("E621E1F8-C36C-495A-93FC-0C247A3E6E5F"),
                        "Night \"shift\"",
                        true,
                        {1320, 360, {7, 1, 6}},
                        {{"com.example.chat", AppTier::canWait}}},
                       {*uuid("00000000-0000-0000-0000-000000000001"), "", false, {0, 0, {}}, {}}};
    rules.overrides = {{"com.example.notes", AppTier::alwaysOn, tindra::Date{1'750'000'000.5}}};
    rules.neverTouch = {"com.example.player", "com.example.editor"};
    return rules;
}

TEST(OptimizerTuningJSON, hasItsSevenKeysInOrder) {
    EXPECT_EQ(encoded(OptimizerTuning{}), defaultTuningText);
    EXPECT_EQ(encoded(ownTuning), ownTuningText);
}

TEST(OptimizerTuningJSON, isReadFromItsText) {
    EXPECT_EQ(decodedTuning(defaultTuningText), OptimizerTuning{});
    EXPECT_EQ(decodedTuning(ownTuningText), ownTuning);
}

TEST(OptimizerTuningJSON, isReadInAnyOrderWithWholeNumbersAndKeysThatNobodyKnows) {
    EXPECT_EQ(decodedTuning(R"( {"efficiencyThreshold": 1, "wakeSeconds": 30.5, "mode": "focus", "colour": [null],
                                 "useEfficiencyCores": false, "checkEveryMinutes": 2e1,
                                 "focusIdleMinutes": -4, "idleMinutes": 0} )"),
              (OptimizerTuning{OptimizerMode::focus, 0, -4, 20, 30.5, false, 1}));
}

TEST(OptimizerRulesJSON, hasItsKeysInOrder) {
    EXPECT_EQ(encoded(OptimizerRules{}), emptyRulesText);
    EXPECT_EQ(encoded(fullRules()), fullRulesText);
}

TEST(OptimizerRulesJSON, isReadFromItsText) {
    EXPECT_EQ(decodedRules(emptyRulesText), OptimizerRules{});
    EXPECT_EQ(decodedRules(fullRulesText), fullRules());
}

TEST(OptimizerRulesJSON, datesAreSecondsSince2001) {
    const std::string text = R"({"tiers":{},"schedules":[],)"
                             R"("overrides":[{"appID":"a","tier":"canWait","until":0}],"neverTouch":[]})";
    const auto rules = decodedRules(text);
    ASSERT_TRUE(rules);
    EXPECT_EQ(rules->overrides[0].until, tindra::Date{978'307'200}); // 2001-01-01 00:00:00 UTC
    OptimizerRules before;
    before.overrides = {{"a", AppTier::canWait, tindra::Date{0}}};
    EXPECT_EQ(JSON::parse(encoded(before).value())["overrides"][0]["until"], -978'307'200.0);
}

TEST(OptimizerRulesJSON, anIdentityIsReadInEitherCaseAndWrittenInUpper) {
    auto json = JSON::parse(fullRulesText);
    json["schedules"][0]["id"] = "e621e1f8-c36c-495a-93fc-0c247a3e6e5f";
    const auto rules = decodedRules(json.dump());
    ASSERT_TRUE(rules);
    EXPECT_EQ(encoded(*rules), fullRulesText);
}

TEST(OptimizerRulesJSON, whatIsNamedTwiceInASetCountsOnce) {
    auto json = JSON::parse(fullRulesText);
    json["schedules"][0]["window"]["weekdays"] = {7, 6, 1, 7, 6.0};
    json["neverTouch"].push_back("com.example.editor");
    EXPECT_EQ(decodedRules(json.dump()), fullRules());
}

TEST(OptimizerRulesJSON, aNumberWithoutAFractionIsAnInteger) {
    auto json = JSON::parse(fullRulesText);
    json["schedules"][0]["window"]["start"] = 1320.0;
    EXPECT_EQ(decodedRules(json.dump()), fullRules());
    for (const char* wrong : {"1320.5", "3000000000", "-3000000000", "18446744073709551615", "1e300"}) {
        json["schedules"][0]["window"]["start"] = JSON::parse(wrong);
        EXPECT_EQ(decodedRules(json.dump()), std::nullopt) << wrong;
    }
    for (const int border : {INT32_MAX, -INT32_MAX}) {
        json["schedules"][0]["window"]["start"] = border;
        ASSERT_TRUE(decodedRules(json.dump())) << border;
        EXPECT_EQ(decodedRules(json.dump())->schedules[0].window.start, border);
    }
}

TEST(OptimizerRulesJSON, unknownKeysArePassedOver) {
    auto json = JSON::parse(fullRulesText);
    json["later"] = {1, 2};
    json["schedules"][0]["later"] = nullptr;
    json["schedules"][0]["window"]["later"] = "x";
    json["overrides"][0]["later"] = false;
    EXPECT_EQ(decodedRules(json.dump()), fullRules());
}

TEST(OptimizerRulesJSON, anUnknownTierOrIdentityFailsTheWhole) {
    const char* const places[] = {"/tiers/com.example.chat", "/schedules/0/tiers/com.example.chat", "/overrides/0/tier",
                                  "/schedules/1/id"};
    for (const char* place : places)
        for (const char* wrong : {"", "never", "CanWait", "canWait ", "E621E1F8C36C495A93FC0C247A3E6E5F"}) {
            auto json = JSON::parse(fullRulesText);
            json[JSON::json_pointer(place)] = wrong;
            EXPECT_EQ(decodedRules(json.dump()), std::nullopt) << place << " " << wrong;
        }
}

TEST(OptimizerJSON, whatIsNoJSONIsAbsent) {
    for (const std::string text : {"", " ", "null", "true", "0", "\"text\"", "[]", "{}", "{", "[[[[", "\xFF\xFE"}) {
        EXPECT_EQ(decodedTuning(text), std::nullopt) << text;
        EXPECT_EQ(decodedRules(text), std::nullopt) << text;
    }
    EXPECT_EQ(decodedTuning(ownTuningText + "x"), std::nullopt);
    EXPECT_EQ(decodedRules(fullRulesText + "}"), std::nullopt);
    EXPECT_EQ(decodedRules(ownTuningText), std::nullopt);
    EXPECT_EQ(decodedTuning(fullRulesText), std::nullopt);
    EXPECT_EQ(decodedRules(std::string(100'000, '[')), std::nullopt);
}

TEST(OptimizerJSON, aTextThatEndsTooEarlyIsAbsent) {
    for (std::size_t length = 0; length < fullRulesText.size(); ++length)
        EXPECT_EQ(decodedRules(fullRulesText.substr(0, length)), std::nullopt) << length;
    for (std::size_t length = 0; length < ownTuningText.size(); ++length)
        EXPECT_EQ(decodedTuning(ownTuningText.substr(0, length)), std::nullopt) << length;
}

TEST(OptimizerJSON, whereReadingFailsTheDefaultStandsAsAWhole) {
    auto json = JSON::parse(ownTuningText);
    json.erase("efficiencyThreshold");
    EXPECT_EQ(decodedTuning(json.dump()).value_or(OptimizerTuning()), OptimizerTuning());
    json = JSON::parse(fullRulesText);
    json.erase("neverTouch");
    EXPECT_EQ(decodedRules(json.dump()).value_or(OptimizerRules()), OptimizerRules());
}

TEST(OptimizerJSON, aNumberThatJSONCannotHoldIsNotWritten) {
    using Limits = std::numeric_limits<double>;
    for (const double wrong : {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity()}) {
        std::vector<OptimizerTuning> tunings(5);
        tunings[0].idleMinutes = wrong;
        tunings[1].focusIdleMinutes = wrong;
        tunings[2].checkEveryMinutes = wrong;
        tunings[3].wakeSeconds = wrong;
        tunings[4].efficiencyThreshold = wrong;
        for (const auto& tuning : tunings)
            EXPECT_EQ(encoded(tuning), std::nullopt) << wrong;
        OptimizerRules rules;
        rules.overrides = {{"a", AppTier::canWait, tindra::Date{wrong}}};
        EXPECT_EQ(encoded(rules), std::nullopt) << wrong;
    }
    EXPECT_EQ(decodedTuning(R"({"mode":"balanced","idleMinutes":1e999,"focusIdleMinutes":3,"checkEveryMinutes":15,)"
                            R"("wakeSeconds":45,"useEfficiencyCores":true,"efficiencyThreshold":0.1})"),
              std::nullopt);
}

TEST(OptimizerJSON, aTextThatIsNotUTF8IsNotWritten) {
    const std::string wrong = "caf\xE9";
    std::vector<OptimizerRules> all(5);
    all[0].tiers = {{wrong, AppTier::canWait}};
    all[1].schedules = {{UUID{}, wrong, true, {}, {}}};
    all[2].schedules = {{UUID{}, "", true, {}, {{wrong, AppTier::canWait}}}};
    all[3].overrides = {{wrong, AppTier::canWait, tindra::Date{}}};
    all[4].neverTouch = {wrong};
    for (const auto& rules : all)
        EXPECT_EQ(encoded(rules), std::nullopt);
}

// --- Every place of a text, broken in turn -------------------------------------------------------------------------

using Pointer = JSON::json_pointer;

/// Every place below the root.
void collectPlaces(const JSON& json, const Pointer& at, std::vector<Pointer>& places) {
    if (!at.empty())
        places.push_back(at);
    if (json.is_object())
        for (const auto& [key, value] : json.items())
            collectPlaces(value, at / key, places);
    if (json.is_array())
        for (std::size_t i = 0; i < json.size(); ++i)
            collectPlaces(json[i], at / i, places);
}

std::vector<Pointer> placesOf(const JSON& json) {
    std::vector<Pointer> places;
    collectPlaces(json, Pointer(), places);
    return places;
}

/// Whether the place is a key of a record, and not an entry of a list or an identifier in a map of tiers.
bool isKeyOfRecord(const JSON& whole, const Pointer& place) {
    const auto above = place.parent_pointer();
    return whole[above].is_object() && (above.empty() || above.back() != "tiers");
}

const std::vector<JSON>& valuesOfEveryType() {
    static const std::vector<JSON> values{nullptr, true, 7, 7.5, "text", JSON::array(), JSON::object()};
    return values;
}

bool isSameType(const JSON& value, const JSON& other) {
    return value.type() == other.type() || (value.is_number() && other.is_number());
}

template <class Decode>
void expectEveryBreakToFail(const std::string& text, std::size_t keysOfRecords, const Decode& decode) {
    const auto whole = JSON::parse(text);
    ASSERT_TRUE(decode(text));
    std::size_t keys = 0;
    for (const auto& place : placesOf(whole)) {
        for (const auto& value : valuesOfEveryType()) {
            if (isSameType(value, whole[place]))
                continue;
            auto mistyped = whole;
            mistyped[place] = value;
            EXPECT_FALSE(decode(mistyped.dump())) << "mistyped: " << mistyped.dump();
        }
        if (!isKeyOfRecord(whole, place))
            continue;
        ++keys;
        auto removed = whole;
        removed[place.parent_pointer()].erase(place.back());
        EXPECT_FALSE(decode(removed.dump())) << "removed: " << removed.dump();

        auto shouted = place.back();
        shouted[0] = static_cast<char>(shouted[0] - 'a' + 'A');
        for (const auto& name : {place.back() + "s", place.back().substr(1), shouted, place.back() + " "}) {
            auto misspelt = removed;
            misspelt[place.parent_pointer()][name] = whole[place];
            EXPECT_FALSE(decode(misspelt.dump())) << "misspelt: " << misspelt.dump();
        }
    }
    EXPECT_EQ(keys, keysOfRecords) << "the walk has missed a key";
}

TEST(OptimizerTuningJSON, everyKeyRemovedMistypedAndMisspeltFailsTheWhole) {
    expectEveryBreakToFail(ownTuningText, 7, [](const std::string& text) { return decodedTuning(text).has_value(); });
}

TEST(OptimizerRulesJSON, everyKeyAtEveryDepthRemovedMistypedAndMisspeltFailsTheWhole) {
    // 4 of the whole, 5 and 3 of each of the two schedules and their windows, 3 of the override.
    expectEveryBreakToFail(fullRulesText, 4 + 2 * (5 + 3) + 3,
                           [](const std::string& text) { return decodedRules(text).has_value(); });
}

TEST(OptimizerTuningJSON, aNumberIsNoBooleanAndABooleanNoNumber) {
    for (const char* number : {"0", "1", "1.0"}) {
        auto json = JSON::parse(ownTuningText);
        json["useEfficiencyCores"] = JSON::parse(number);
        EXPECT_EQ(decodedTuning(json.dump()), std::nullopt) << number;
    }
}

// --- Properties ---------------------------------------------------------------------------------------------------

double anyFinite() {
    return *rc::gen::arbitrary<double>();
}

/// Text of characters beyond ASCII too, with quotes and line ends.
std::string anyText() {
    std::string text;
    for (int count = *rc::gen::inRange(0, 8); count > 0; --count)
        text +=
            *rc::gen::element<std::string>("a", ".", "\"", "\\", "\n", std::string(1, '\0'), "\u00E9", "\U0001F426");
    return text;
}

AppTiers anyTiers() {
    AppTiers tiers;
    for (int count = *rc::gen::inRange(0, 4); count > 0; --count)
        tiers.insert_or_assign(anyText(), *rc::gen::elementOf(allAppTiers));
    return tiers;
}

Schedule anySchedule() {
    Schedule schedule;
    for (auto& byte : schedule.id.bytes)
        byte = *rc::gen::arbitrary<std::uint8_t>();
    schedule.name = anyText();
    schedule.isEnabled = *rc::gen::arbitrary<bool>();
    schedule.window = {*rc::gen::inRange(-10, 1500), *rc::gen::inRange(-10, 1500),
                       *rc::gen::container<std::set<int>>(rc::gen::inRange(0, 9))};
    schedule.tiers = anyTiers();
    return schedule;
}

OptimizerRules anyRules() {
    OptimizerRules rules;
    rules.tiers = anyTiers();
    for (int count = *rc::gen::inRange(0, 3); count > 0; --count)
        rules.schedules.push_back(anySchedule());
    for (int count = *rc::gen::inRange(0, 3); count > 0; --count)
        rules.overrides.push_back({anyText(), *rc::gen::elementOf(allAppTiers),
                                   tindra::Date{*rc::gen::inRange(978'307'200, 2'000'000'000) + 0.25}});
    for (int count = *rc::gen::inRange(0, 3); count > 0; --count)
        rules.neverTouch.insert(anyText());
    return rules;
}

RC_GTEST_PROP(OptimizerJSONProperties, tuningComesBackAsItWas, ()) {
    const OptimizerTuning tuning{*rc::gen::elementOf(allOptimizerModes),
                                 anyFinite(),
                                 anyFinite(),
                                 anyFinite(),
                                 anyFinite(),
                                 *rc::gen::arbitrary<bool>(),
                                 anyFinite()};
    RC_ASSERT(decodedTuning(encoded(tuning).value()) == std::optional(tuning));
}

RC_GTEST_PROP(OptimizerJSONProperties, rulesComeBackAsTheyWere, ()) {
    const auto rules = anyRules();
    RC_ASSERT(decodedRules(encoded(rules).value()) == std::optional(rules));
}

RC_GTEST_PROP(OptimizerJSONProperties, aTextWithASpoiledByteIsReadWholeOrNotAtAll, ()) {
    auto text = fullRulesText;
    text[*rc::gen::inRange<std::size_t>(0, text.size())] = *rc::gen::arbitrary<char>();
    // Read, it must be something that can be written and read again: nothing half.
    if (const auto rules = decodedRules(text))
        RC_ASSERT(decodedRules(encoded(*rules).value()) == rules);
}

} // namespace
} // namespace kestrio
