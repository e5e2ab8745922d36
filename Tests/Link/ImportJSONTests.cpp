#include "Kestrio/Link/ImportJSON.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace kestrio {
namespace {

using JSON = nlohmann::ordered_json;

TEST(ImportJSON, goesThereAndBack) {
    struct Row {
        ImportOutcome outcome;
        const char* json;
    };
    const Row table[] = {
        {ImportReport{{1, 2, 3}, 4}, R"({"added":1,"extended":2,"duplicates":3,"skipped":4})"},
        {ImportStopped{}, R"({"stopped":true})"},
        {ImportFailure{"The file \"a\" isn't UTF-8 text."}, R"({"error":"The file \"a\" isn't UTF-8 text."})"},
    };
    for (const auto& row : table) {
        EXPECT_EQ(toJSON(row.outcome).dump(), row.json);
        EXPECT_EQ(importOutcomeFromJSON(JSON::parse(row.json)), row.outcome) << row.json;
    }
}

TEST(ImportJSON, ofAnotherShapeIsAbsent) {
    for (const char* text : {"null", "[]", "{}", "1", "\"stopped\"", R"({"error":1})", R"({"added":1})",
                             R"({"added":1,"extended":2,"duplicates":3,"skipped":"4"})",
                             R"({"added":1.5,"extended":2,"duplicates":3,"skipped":4})"})
        EXPECT_EQ(importOutcomeFromJSON(JSON::parse(text)), std::nullopt) << text;
    EXPECT_EQ(importOutcomeFromJSON(JSON::parse("no json", nullptr, false)), std::nullopt);
}

} // namespace
} // namespace kestrio
