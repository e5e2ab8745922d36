#include "Kestrio/Link/ImportJSON.h"

#include "Kestrio/Model/ModelsJSON.h"

#include <nlohmann/json.hpp>

namespace kestrio {

using JSON = nlohmann::ordered_json;

JSON toJSON(const ImportOutcome& outcome) {
    if (const auto* failure = std::get_if<ImportFailure>(&outcome))
        return {{"error", failure->error}};
    if (std::holds_alternative<ImportStopped>(outcome))
        return {{"stopped", true}};
    const auto& [summary, skipped] = std::get<ImportReport>(outcome);
    return {{"added", summary.added},
            {"extended", summary.extended},
            {"duplicates", summary.duplicates},
            {"skipped", skipped}};
}

std::optional<ImportOutcome> importOutcomeFromJSON(const JSON& json) {
    try {
        if (json.contains("error"))
            return ImportFailure{json.at("error").get<std::string>()};
        if (json.contains("stopped"))
            return ImportStopped{};
        const auto number = [&](const char* key) { return integerFromJSON(json.at(key)); };
        const auto added = number("added");
        const auto extended = number("extended");
        const auto duplicates = number("duplicates");
        const auto skipped = number("skipped");
        if (!added || !extended || !duplicates || !skipped)
            return std::nullopt;
        return ImportReport{{*added, *extended, *duplicates}, *skipped};
    } catch (const JSON::exception&) {
        return std::nullopt;
    }
}

} // namespace kestrio
