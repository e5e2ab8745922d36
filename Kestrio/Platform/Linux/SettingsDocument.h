// The content of the settings file as a plain value: one JSON object from key to value. No file, no lock.
//
// What this version does not understand (floats, nulls, nested maps, other arrays) is carried along untouched and
// reads as absent, so that an older program never destroys what a newer one stored.
#pragma once

#include "Kestrio/Platform/KeyValueStore.h"

#include <cstddef>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrio {

class SettingsDocument {
public:
    /// Larger or deeper files were not written by this program.
    static constexpr std::size_t largestSize = 4 * 1024 * 1024;
    static constexpr int deepestLevel = 8;

    /// A document without keys.
    SettingsDocument() = default;

    /// Absent when the text is damaged: not JSON, not an object, too large or too deep.
    static std::optional<SettingsDocument> parse(std::string_view text);

    /// The file's text, with a line break at its end.
    std::string text() const;

    std::optional<SettingValue> value(const std::string& key) const;

    /// All that are understood.
    std::map<std::string, SettingValue> values() const;

    /// Sorted; also the keys whose values are not understood.
    std::vector<std::string> keys() const;

    /// Stores the value, or removes the key. False, and nothing changes, when a text in it is not valid UTF-8.
    bool set(const std::string& key, const std::optional<SettingValue>& value);

    friend bool operator==(const SettingsDocument&, const SettingsDocument&) = default;

private:
    nlohmann::json object_ = nlohmann::json::object();
};

} // namespace kestrio
