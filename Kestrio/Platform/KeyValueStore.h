// Seam: the person's settings, one flat map from text to small values.
//
// Reads and writes may come from any thread; a read takes the time of a file's `stat`, a write that of a small file.
// Values that the program registered stand beneath what the person set: reading finds them, storing never writes them.
// A value of another type than asked for reads as absent.
#pragma once

#include "Kestrio/Base/Subscription.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace kestrio {

struct SettingBytes {
    std::string bytes;
    friend bool operator==(const SettingBytes&, const SettingBytes&) = default;
};
using SettingDictionary = std::map<std::string, std::string>;
using SettingValue = std::variant<bool, std::int64_t, std::string, SettingBytes, SettingDictionary>;

class KeyValueStore {
public:
    virtual ~KeyValueStore() = default;

    /// What the person set, else what is registered, else absent.
    virtual std::optional<SettingValue> value(const std::string& key) const = 0;

    /// Stores the value, or with an absent one removes what the person set. False, with a line in the log, when it
    /// cannot be kept; the old value then stays in force.
    virtual bool set(const std::string& key, std::optional<SettingValue> value) = 0;

    /// The keys that the person's side of the store holds, sorted.
    virtual std::vector<std::string> storedKeys() const = 0;

    /// Puts values beneath the person's own, over earlier registered ones of the same key. They are never written.
    virtual void registerDefaults(std::map<std::string, SettingValue> defaults) = 0;

    /// `receiver` is called with the key after its value changed, in whichever process that happened.
    virtual Subscription observe(std::function<void(const std::string& key)> receiver) = 0;

    // What reading code asks for; each is absent, or the type's empty value, when the key holds something else.
    template <class Type>
    std::optional<Type> get(const std::string& key) const {
        const auto found = value(key);
        const auto* typed = found ? std::get_if<Type>(&*found) : nullptr;
        return typed ? std::optional<Type>(*typed) : std::nullopt;
    }
    bool boolean(const std::string& key) const { return get<bool>(key).value_or(false); }
    std::int64_t integer(const std::string& key) const { return get<std::int64_t>(key).value_or(0); }
};

} // namespace kestrio
