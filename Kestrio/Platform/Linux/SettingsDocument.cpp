#include "Kestrio/Platform/Linux/SettingsDocument.h"

#include <array>
#include <cstdint>
#include <utility>

namespace kestrio {
namespace {

using Json = nlohmann::json;

constexpr std::string_view base64Digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

std::string base64(std::string_view bytes) {
    std::string text;
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        const std::size_t count = std::min<std::size_t>(3, bytes.size() - at);
        std::uint32_t group = 0;
        for (std::size_t i = 0; i < 3; ++i)
            group = group << 8 | (i < count ? static_cast<unsigned char>(bytes[at + i]) : 0U);
        for (std::size_t i = 0; i < 4; ++i)
            text += i <= count ? base64Digits[group >> (18 - 6 * i) & 63U] : '=';
    }
    return text;
}

/// Absent when the text is not whole groups of base64.
std::optional<std::string> fromBase64(std::string_view text) {
    if (text.size() % 4 != 0)
        return std::nullopt;
    std::string bytes;
    for (std::size_t at = 0; at < text.size(); at += 4) {
        const auto group = text.substr(at, 4);
        const bool last = at + 4 == text.size();
        const std::size_t padding = !last ? 0 : group.ends_with("==") ? 2 : group.ends_with('=') ? 1 : 0;
        std::uint32_t bits = 0;
        for (std::size_t i = 0; i < 4; ++i) {
            const auto digit = i >= 4 - padding ? 0 : base64Digits.find(group[i]);
            if (digit == std::string_view::npos)
                return std::nullopt;
            bits = bits << 6 | static_cast<std::uint32_t>(digit);
        }
        for (std::size_t i = 0; i < 3 - padding; ++i)
            bytes += static_cast<char>(bits >> (16 - 8 * i) & 255U);
    }
    return bytes;
}

/// Writing a text is what checks that it is UTF-8: the same rule then holds for what is written and what is read.
bool isText(const std::string& bytes) {
    try {
        return !Json(bytes).dump().empty();
    } catch (const Json::exception&) {
        return false;
    }
}

/// Levels of objects and arrays, counted outside texts. Enough for a bound; whether it is JSON is the parser's affair.
bool isTooDeep(std::string_view text) {
    int depth = 0;
    bool inText = false;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char c = text[at];
        if (inText) {
            if (c == '\\')
                ++at;
            else if (c == '"')
                inText = false;
        } else if (c == '"') {
            inText = true;
        } else if (c == '{' || c == '[') {
            if (++depth > SettingsDocument::deepestLevel)
                return true;
        } else if (c == '}' || c == ']') {
            --depth;
        }
    }
    return false;
}

std::optional<SettingValue> bytesFrom(const Json& array) {
    if (array.size() != 2 || !array[0].is_string() || !array[1].is_string())
        return std::nullopt;
    const auto& form = array[0].get_ref<const std::string&>();
    const auto& text = array[1].get_ref<const std::string&>();
    if (form == "utf8")
        return SettingBytes{text};
    if (form != "base64")
        return std::nullopt;
    auto bytes = fromBase64(text);
    return bytes ? std::optional<SettingValue>(SettingBytes{std::move(*bytes)}) : std::nullopt;
}

std::optional<SettingValue> dictionaryFrom(const Json& object) {
    SettingDictionary dictionary;
    for (const auto& [key, value] : object.items()) {
        if (!value.is_string())
            return std::nullopt;
        dictionary.emplace(key, value.get<std::string>());
    }
    return dictionary;
}

std::optional<SettingValue> valueFrom(const Json& json) {
    switch (json.type()) {
    case Json::value_t::boolean: return json.get<bool>();
    case Json::value_t::number_integer: return json.get<std::int64_t>();
    case Json::value_t::number_unsigned:
        if (json.get<std::uint64_t>() > static_cast<std::uint64_t>(INT64_MAX))
            return std::nullopt;
        return json.get<std::int64_t>();
    case Json::value_t::string: return json.get<std::string>();
    case Json::value_t::array: return bytesFrom(json);
    case Json::value_t::object: return dictionaryFrom(json);
    case Json::value_t::null:
    case Json::value_t::number_float:
    case Json::value_t::binary:
    case Json::value_t::discarded: return std::nullopt;
    }
    return std::nullopt;
}

/// Absent when a text in the value is not UTF-8.
struct ToJson {
    std::optional<Json> operator()(bool value) const { return value; }
    std::optional<Json> operator()(std::int64_t value) const { return value; }
    std::optional<Json> operator()(const std::string& value) const {
        return isText(value) ? std::optional<Json>(value) : std::nullopt;
    }
    std::optional<Json> operator()(const SettingBytes& value) const {
        // As text where possible, so that a person can read and mend the JSON inside.
        return isText(value.bytes) ? Json::array({"utf8", value.bytes}) : Json::array({"base64", base64(value.bytes)});
    }
    std::optional<Json> operator()(const SettingDictionary& value) const {
        auto object = Json::object();
        for (const auto& [key, text] : value) {
            if (!isText(key) || !isText(text))
                return std::nullopt;
            object[key] = text;
        }
        return object;
    }
};

} // namespace

std::optional<SettingsDocument> SettingsDocument::parse(std::string_view text) {
    if (text.size() > largestSize || isTooDeep(text))
        return std::nullopt;
    SettingsDocument document;
    document.object_ = Json::parse(text, nullptr, /*allow_exceptions=*/false);
    if (!document.object_.is_object())
        return std::nullopt;
    return document;
}

std::string SettingsDocument::text() const {
    return object_.dump(2) + "\n";
}

std::optional<SettingValue> SettingsDocument::value(const std::string& key) const {
    const auto found = object_.find(key);
    return found == object_.end() ? std::nullopt : valueFrom(*found);
}

std::map<std::string, SettingValue> SettingsDocument::values() const {
    std::map<std::string, SettingValue> values;
    for (const auto& [key, json] : object_.items())
        if (auto value = valueFrom(json))
            values.emplace(key, std::move(*value));
    return values;
}

std::vector<std::string> SettingsDocument::keys() const {
    std::vector<std::string> keys;
    for (const auto& [key, json] : object_.items())
        keys.push_back(key);
    return keys;
}

bool SettingsDocument::set(const std::string& key, const std::optional<SettingValue>& value) {
    if (!value) {
        object_.erase(key);
        return true;
    }
    auto json = isText(key) ? std::visit(ToJson{}, *value) : std::nullopt;
    if (!json)
        return false;
    object_[key] = std::move(*json);
    return true;
}

} // namespace kestrio
