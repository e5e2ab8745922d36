#include "Kestrio/Shell/ClassificationSettings.h"

#include "Kestrio/Shell/Settings.h"

namespace kestrio {
namespace {

StoredSetting<Categorizer::StoredOverrides> storedOverrides(KeyValueStore& store, const char* key) {
    return {[&store, key] { return store.get<SettingDictionary>(key); },
            [&store, key](const auto& overrides) { return store.set(key, overrides); }};
}

StoredSetting<std::string> storedRules(KeyValueStore& store) {
    return {[&store]() -> std::optional<std::string> {
                auto stored = store.get<SettingBytes>(settingKey::projectRules);
                return stored ? std::optional(std::move(stored->bytes)) : std::nullopt;
            },
            [&store](const auto& json) { return store.set(settingKey::projectRules, SettingBytes{json}); }};
}

} // namespace

ClassificationSettings::ClassificationSettings(KeyValueStore& store, Categorizer::HostHint hostHint)
    : categorizer_(storedOverrides(store, settingKey::appCategoryOverrides),
                   storedOverrides(store, settingKey::domainCategoryOverrides), std::move(hostHint)),
      projectRules_(storedRules(store)),
      watch_(store.observe([this](const auto& key) { reload(key); })) {}

void ClassificationSettings::reload(const std::string& key) {
    if (key == settingKey::appCategoryOverrides || key == settingKey::domainCategoryOverrides)
        categorizer_.reload();
    else if (key == settingKey::projectRules)
        projectRules_.reload();
}

} // namespace kestrio
