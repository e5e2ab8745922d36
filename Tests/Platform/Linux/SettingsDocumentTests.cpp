#include "Kestrio/Platform/Linux/SettingsDocument.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

TEST(SettingsDocument, writesEachTypeInItsFormAndReadsItBack) {
    struct Row {
        SettingValue value;
        const char* text;
    };
    const Row rows[] = {
        {true, "{\n  \"k\": true\n}\n"},
        {std::int64_t{-3}, "{\n  \"k\": -3\n}\n"},
        {std::int64_t{INT64_MAX}, "{\n  \"k\": 9223372036854775807\n}\n"},
        {std::int64_t{INT64_MIN}, "{\n  \"k\": -9223372036854775808\n}\n"},
        {std::string("naïve \"x\""), "{\n  \"k\": \"naïve \\\"x\\\"\"\n}\n"},
        {std::string(), "{\n  \"k\": \"\"\n}\n"},
        {SettingDictionary{}, "{\n  \"k\": {}\n}\n"},
        {SettingDictionary{{"com.a", "work"}}, "{\n  \"k\": {\n    \"com.a\": \"work\"\n  }\n}\n"},
        {SettingBytes{"{\"a\":1}"}, "{\n  \"k\": [\n    \"utf8\",\n    \"{\\\"a\\\":1}\"\n  ]\n}\n"},
        {SettingBytes{""}, "{\n  \"k\": [\n    \"utf8\",\n    \"\"\n  ]\n}\n"},
        {SettingBytes{"\xff"}, "{\n  \"k\": [\n    \"base64\",\n    \"/w==\"\n  ]\n}\n"},
        {SettingBytes{"\xff\x01"}, "{\n  \"k\": [\n    \"base64\",\n    \"/wE=\"\n  ]\n}\n"},
        {SettingBytes{std::string("\xff\x00\x7f", 3)}, "{\n  \"k\": [\n    \"base64\",\n    \"/wB/\"\n  ]\n}\n"},
        {SettingBytes{"\xed\xa0\x80"},
         "{\n  \"k\": [\n    \"base64\",\n    \"7aCA\"\n  ]\n}\n"}, // half a surrogate pair
    };
    for (const auto& row : rows) {
        SettingsDocument document;
        ASSERT_TRUE(document.set("k", row.value)) << row.text;
        EXPECT_EQ(document.text(), row.text);
        const auto again = SettingsDocument::parse(document.text());
        ASSERT_TRUE(again) << row.text;
        EXPECT_EQ(again->value("k"), row.value) << row.text;
    }
}

TEST(SettingsDocument, carriesWhatItDoesNotUnderstandAlong) {
    const char* forms[] = {
        "1.5",
        "null",
        "18446744073709551615",
        "{\"a\":1}",
        "{\"a\":{}}",
        "[]",
        "[1,2]",
        "[\"utf8\"]",
        "[\"utf16\",\"a\"]",
        "[\"base64\",\"a\"]",
        "[\"base64\",\"a=aa\"]",
        "[\"base64\",\"====\"]",
        "[\"base64\",\"/w==/w==\"]",
        "[\"base64\",\"????\"]",
        "[\"utf8\",3]",
    };
    for (const char* form : forms) {
        auto document = SettingsDocument::parse(std::string("{\"k\":") + form + "}");
        ASSERT_TRUE(document) << form;
        EXPECT_EQ(document->value("k"), std::nullopt) << form;
        EXPECT_EQ(document->keys(), std::vector<std::string>{"k"}) << form;
        EXPECT_TRUE(document->values().empty()) << form;
        ASSERT_TRUE(document->set("other", true));
        const auto rewritten = nlohmann::json::parse(document->text());
        EXPECT_EQ(rewritten.at("k"), nlohmann::json::parse(form)) << form;
    }
}

TEST(SettingsDocument, refusesDamagedTexts) {
    const std::string deepest = "{\"k\":" + std::string(7, '[') + std::string(7, ']') + "}";
    const std::string tooDeep = "{\"k\":" + std::string(8, '[') + std::string(8, ']') + "}";
    const std::string brackets = "{\"k\":\"" + std::string(50, '[') + "\\\"[[\"}";
    const std::string large = "{\"k\":\"" + std::string(SettingsDocument::largestSize - 8, 'a') + "\"}";
    struct Row {
        std::string text;
        bool whole;
    };
    const Row rows[] = {
        {"", false},      {"{", false},
        {"[]", false},    {"3", false},
        {"{}x", false},   {"{\"k\":\"\xff\"}", false},
        {tooDeep, false}, {large + " ", false},
        {"{}", true},     {" {} \n", true},
        {deepest, true},  {brackets, true},
        {large, true},    {std::string(500, '['), false},
    };
    for (const auto& row : rows)
        EXPECT_EQ(SettingsDocument::parse(row.text).has_value(), row.whole) << row.text.substr(0, 80);
}

TEST(SettingsDocument, refusesTextsThatAreNotUtf8AndStaysAsItWas) {
    SettingsDocument document;
    EXPECT_FALSE(document.set("k", std::string("\xff")));
    EXPECT_FALSE(document.set("\xff", true));
    EXPECT_FALSE(document.set("k", SettingDictionary{{"\xff", "a"}}));
    EXPECT_FALSE(document.set("k", SettingDictionary{{"a", "\xff"}}));
    EXPECT_EQ(document, SettingsDocument());
}

TEST(SettingsDocument, removesAKey) {
    auto document = *SettingsDocument::parse(R"({"a":1,"b":2.5})");
    EXPECT_TRUE(document.set("a", std::nullopt));
    EXPECT_TRUE(document.set("none", std::nullopt));
    EXPECT_EQ(document.keys(), std::vector<std::string>{"b"});
}

} // namespace
} // namespace kestrio
