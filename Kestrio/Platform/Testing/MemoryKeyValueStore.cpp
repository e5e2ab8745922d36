#include "Kestrio/Platform/Testing/MemoryKeyValueStore.h"

#include "Kestrio/Base/Log.h"

namespace kestrio {

MemoryKeyValueStore::MemoryKeyValueStore(std::map<std::string, SettingValue> stored) : stored_(std::move(stored)) {}

std::optional<SettingValue> MemoryKeyValueStore::value(const std::string& key) const {
    const std::lock_guard guard(mutex_);
    return effective(key);
}

bool MemoryKeyValueStore::set(const std::string& key, std::optional<SettingValue> value) {
    const std::lock_guard guard(mutex_);
    if (refusing_) {
        logLine("Kestrio: couldn't save a setting: the test refuses");
        return false;
    }
    const auto before = effective(key);
    if (value)
        stored_.insert_or_assign(key, std::move(*value));
    else
        stored_.erase(key);
    if (effective(key) != before)
        tell({key});
    return true;
}

std::vector<std::string> MemoryKeyValueStore::storedKeys() const {
    const std::lock_guard guard(mutex_);
    std::vector<std::string> keys;
    for (const auto& [key, value] : stored_)
        keys.push_back(key);
    return keys;
}

void MemoryKeyValueStore::registerDefaults(std::map<std::string, SettingValue> defaults) {
    const std::lock_guard guard(mutex_);
    std::vector<std::string> changed;
    for (auto& [key, value] : defaults) {
        const auto before = effective(key);
        defaults_.insert_or_assign(key, std::move(value));
        if (effective(key) != before)
            changed.push_back(key);
    }
    tell(changed);
}

Subscription MemoryKeyValueStore::observe(std::function<void(const std::string& key)> receiver) {
    const std::lock_guard guard(mutex_);
    return changed_.subscribe(std::move(receiver));
}

void MemoryKeyValueStore::refuseWrites(bool refuse) {
    const std::lock_guard guard(mutex_);
    refusing_ = refuse;
}

std::optional<SettingValue> MemoryKeyValueStore::effective(const std::string& key) const {
    if (const auto found = stored_.find(key); found != stored_.end())
        return found->second;
    const auto found = defaults_.find(key);
    return found == defaults_.end() ? std::nullopt : std::optional(found->second);
}

void MemoryKeyValueStore::tell(const std::vector<std::string>& keys) const {
    for (const auto& key : keys)
        changed_.emit(key);
}

} // namespace kestrio
