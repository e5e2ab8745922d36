// The settings in memory, for tests: behaves as the file does, without one. Any thread; observers are called on the
// setting thread.
#pragma once

#include "Kestrio/Base/Signal.h"
#include "Kestrio/Platform/KeyValueStore.h"

#include <mutex>

namespace kestrio {

class MemoryKeyValueStore final : public KeyValueStore {
public:
    MemoryKeyValueStore() = default;

    /// A store in which the person set these before.
    explicit MemoryKeyValueStore(std::map<std::string, SettingValue> stored);

    std::optional<SettingValue> value(const std::string& key) const override;
    bool set(const std::string& key, std::optional<SettingValue> value) override;
    std::vector<std::string> storedKeys() const override;
    void registerDefaults(std::map<std::string, SettingValue> defaults) override;
    Subscription observe(std::function<void(const std::string& key)> receiver) override;

    /// From now on `set` fails, with its line in the log, as on a full disk; or works again.
    void refuseWrites(bool refuse);

private:
    using Values = std::map<std::string, SettingValue>;

    // The mutex is held. Absent where nothing is stored or registered.
    std::optional<SettingValue> effective(const std::string& key) const;
    void tell(const std::vector<std::string>& keys) const;

    mutable std::recursive_mutex mutex_; // guards all below; observers may read and set
    Values stored_;
    Values defaults_;
    bool refusing_ = false;
    Signal<std::string> changed_;
};

} // namespace kestrio
