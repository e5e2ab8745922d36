#include "Kestrio/Platform/Linux/TabMessages.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace kestrio {
namespace {

using JSON = nlohmann::json;

JSON message() {
    return JSON::parse(R"({"version": 1, "windows": [{"id": 7, "type": "normal", "state": "minimized", "focused": true,
        "left": -10, "top": 20.5, "width": 800, "height": 600, "tabs": [
            {"url": "https://a.example/", "title": "Ä", "active": false, "audible": true, "muted": true},
            {"url": "https://b.example/", "title": "B", "active": true, "audible": false, "muted": false}]}]})");
}

TEST(TabMessages, windowsAreReadWithTheirTabs) {
    const auto windows = bridgedWindows(message().dump());
    ASSERT_TRUE(windows);
    ASSERT_EQ(windows->size(), 1U);
    const BridgedWindow expected{
        7,
        false,
        true,
        true,
        {-10, 20.5, 800, 600},
        {{"https://a.example/", "Ä", false, true, true}, {"https://b.example/", "B", true, false, false}}};
    EXPECT_EQ(windows->front(), expected);
    EXPECT_EQ(windows->front().activeTab()->title, "B");
    EXPECT_EQ(bridgedWindows(R"({"version":1,"windows":[]})"), std::vector<BridgedWindow>());
}

TEST(TabMessages, windowsOfTheDevelopersToolsAreTold) {
    for (const char* type : {"normal", "popup", "app", "panel", "devtools", "something new"}) {
        auto json = message();
        json["windows"][0]["type"] = type;
        EXPECT_EQ(bridgedWindows(json.dump())->front().isTool, std::string_view(type) == "devtools") << type;
    }
}

TEST(TabMessages, aWindowWithoutAnActiveTabHasNone) {
    auto json = message();
    json["windows"][0]["tabs"][1]["active"] = false;
    EXPECT_EQ(bridgedWindows(json.dump())->front().activeTab(), nullptr);
    json["windows"][0]["tabs"] = JSON::array();
    EXPECT_EQ(bridgedWindows(json.dump())->front().activeTab(), nullptr);
}

TEST(TabMessages, aFieldThatIsMissingOrOfAnotherTypeIsNoMessage) {
    struct Row {
        const char* place;
        const char* allowed; // the types of `wrong` that the field may have
    };
    const Row rows[] = {
        {"/version", ""},
        {"/windows", ""},
        {"/windows/0", ""},
        {"/windows/0/id", "integer"},
        {"/windows/0/type", "string"},
        {"/windows/0/state", "string"},
        {"/windows/0/focused", "boolean"},
        {"/windows/0/left", "integer float"},
        {"/windows/0/top", "integer float"},
        {"/windows/0/width", "integer float"},
        {"/windows/0/height", "integer float"},
        {"/windows/0/tabs", ""},
        {"/windows/0/tabs/0", ""},
        {"/windows/0/tabs/0/url", "string"},
        {"/windows/0/tabs/0/title", "string"},
        {"/windows/0/tabs/0/active", "boolean"},
        {"/windows/0/tabs/0/audible", "boolean"},
        {"/windows/0/tabs/0/muted", "boolean"},
    };
    const std::pair<const char*, JSON> wrong[] = {{"null", nullptr},     {"boolean", true}, {"float", 1.5},
                                                  {"integer", 3},        {"string", "x"},   {"array", JSON::array({1})},
                                                  {"object", {{"a", 1}}}};
    for (const auto& row : rows) {
        const JSON::json_pointer place(row.place);
        for (const auto& [type, value] : wrong) {
            auto json = message();
            json[place] = value;
            const bool isAllowed = std::string_view(row.allowed).find(type) != std::string_view::npos;
            EXPECT_EQ(bridgedWindows(json.dump()).has_value(), isAllowed) << row.place << " " << type;
        }
        auto json = message();
        if (place.back() == "0")
            continue; // a window less or a tab less is a message too
        json[place.parent_pointer()].erase(place.back());
        EXPECT_FALSE(bridgedWindows(json.dump())) << row.place;
    }
    auto json = message();
    json["windows"][0]["id"] = UINT64_MAX;
    EXPECT_FALSE(bridgedWindows(json.dump()));
}

TEST(TabMessages, otherTextsAreNoMessages) {
    for (const std::string text : {"", "null", "[]", "{}", "1", "\"x\"", "{\"version\":1", "{\"version\":1}x"})
        EXPECT_FALSE(bridgedWindows(text)) << text;
    auto later = message();
    later["version"] = 2;
    EXPECT_FALSE(bridgedWindows(later.dump()));
}

TEST(TabMessages, fieldsOfALaterVersionArePassedOver) {
    auto json = message();
    json["mood"] = "good";
    json["windows"][0]["tabs"][0]["group"] = {{"id", 3}};
    EXPECT_EQ(bridgedWindows(json.dump()), bridgedWindows(message().dump()));
}

TEST(TabMessages, textThatIsNotUTF8IsNoMessage) {
    for (const std::string_view bytes : {"\xFF", "\xC3", "\xED\xA0\x80", "\xC0\x80", "\xF5\x80\x80\x80", "\\ud800"}) {
        const auto text = message().dump();
        const auto at = text.find("Ä");
        EXPECT_FALSE(bridgedWindows(text.substr(0, at) + std::string(bytes) + text.substr(at + 2))) << bytes;
    }
}

TEST(TabMessages, theCharactersThatSeparateFieldsAreTakenOut) {
    auto json = message();
    json["windows"][0]["tabs"][0]["title"] = "a\x1C\x1D\x1E\x1F"
                                             "b\x1B\t\xC2\x85";
    json["windows"][0]["tabs"][0]["url"] = std::string("x\x1F\0y", 4);
    const auto tab = bridgedWindows(json.dump())->front().tabs.front();
    EXPECT_EQ(tab.title, "ab\x1B\t\xC2\x85");
    EXPECT_EQ(tab.url, "x\uFFFDy");
}

TEST(TabMessages, everyLimitHolds) {
    const auto isMessage = [](const JSON& json) { return bridgedWindows(json.dump()).has_value(); };
    auto json = message();
    auto& tab = json["windows"][0]["tabs"][0];
    tab["url"] = std::string(tabLimits::urlBytes, 'x');
    tab["title"] = std::string(tabLimits::titleBytes, 'x');
    EXPECT_TRUE(isMessage(json));
    tab["url"] = std::string(tabLimits::urlBytes + 1, 'x');
    EXPECT_FALSE(isMessage(json));
    tab["url"] = "x";
    tab["title"] = std::string(tabLimits::titleBytes + 1, 'x');
    EXPECT_FALSE(isMessage(json));

    json = message();
    const auto window = json["windows"][0];
    json["windows"] = std::vector(tabLimits::windows, window);
    EXPECT_TRUE(isMessage(json));
    json["windows"].push_back(window);
    EXPECT_FALSE(isMessage(json));

    json = message();
    json["windows"].push_back(window);
    json["windows"][0]["tabs"] = std::vector(tabLimits::tabs - 2, window["tabs"][0]);
    EXPECT_TRUE(isMessage(json));
    json["windows"][0]["tabs"].push_back(window["tabs"][0]);
    EXPECT_FALSE(isMessage(json)) << "of all windows together";
}

TEST(TabMessages, bracketsDeepInOneAnotherAreRefusedUnread) {
    const auto nested = [](std::size_t depth) {
        return R"({"version":1,"windows":[],"more":)" + std::string(depth, '[') + std::string(depth, ']') + "}";
    };
    EXPECT_TRUE(bridgedWindows(nested(tabLimits::depth - 1)));
    EXPECT_FALSE(bridgedWindows(nested(tabLimits::depth)));
    EXPECT_FALSE(bridgedWindows(std::string(900'000, '[')));
    EXPECT_TRUE(bridgedWindows(R"({"version":1,"windows":[],"more":"[[[[[[[[[[[[[[[[\"[[[[["})")) << "in a text";
}

} // namespace
} // namespace kestrio
