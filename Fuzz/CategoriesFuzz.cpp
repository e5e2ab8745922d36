#include "Fuzz/Fuzz.h"
#include "Kestrio/Classification/Categorizer.h"

#include <nlohmann/json.hpp>

namespace {

using Stored = kestrio::Categorizer::StoredOverrides;

/// The object's texts, as the settings hand them on.
Stored overrides(const nlohmann::json& json) {
    Stored result;
    if (json.is_object())
        for (const auto& [key, value] : json.items())
            if (value.is_string())
                result.emplace(key, value.get<std::string>());
    return result;
}

} // namespace

/// Any stored choices and any domain have a category, and its explanation ends in it; what is stored again is what was
/// understood.
void kestrio::fuzz(std::string_view input) {
    auto stored = overrides(nlohmann::json::parse(input, nullptr, false));
    const StoredSetting<Stored> setting{[&] { return stored; },
                                        [&](const Stored& value) {
                                            stored = value;
                                            return true;
                                        }};
    Categorizer categorizer(setting, setting);
    const auto snapshot = categorizer.snapshot();
    const auto domain = std::string(input.substr(0, 300));
    require(snapshot.explained(domain, domain).back().answer == snapshot.category(domain, domain));
    require(Categorizer::hierarchy(domain).front() == domain);
    for (const auto& [key, category] : snapshot.domainOverrides)
        require(key.empty() || snapshot.category("", key) == category);
    categorizer.setAppCategory(ActivityCategory::work, "a");
    categorizer.setAppCategory(std::nullopt, "a");
    auto expected = snapshot.appOverrides;
    expected.erase("a");
    require(Categorizer(setting, setting).snapshot().appOverrides == expected);
}
