#include "Kestrio/Platform/Linux/TabMessages.h"

#include "Kestrio/Base/Text.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace kestrio {
namespace {

using JSON = nlohmann::json;

/// Thrown and caught in this file alone.
struct Malformed {};

void require(bool condition) {
    if (!condition)
        throw Malformed();
}

bool isShallow(std::string_view text) {
    std::size_t depth = 0;
    bool isInText = false;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char c = text[at];
        if (isInText && c == '\\')
            ++at;
        else if (c == '"')
            isInText = !isInText;
        else if (!isInText && (c == '[' || c == '{') && ++depth > tabLimits::depth)
            return false;
        else if (!isInText && (c == ']' || c == '}') && depth > 0)
            --depth;
    }
    return true;
}

const JSON& field(const JSON& object, const char* name) {
    require(object.is_object());
    const auto found = object.find(name);
    require(found != object.end());
    return *found;
}

std::string textField(const JSON& object, const char* name, std::size_t longest) {
    const auto& value = field(object, name);
    require(value.is_string());
    const auto& raw = value.get_ref<const std::string&>();
    require(raw.size() <= longest);
    auto text = text::fromUntrustedBytes(raw);
    std::erase_if(text, [](char c) { return c >= '\x1C' && c <= '\x1F'; });
    return text;
}

bool truthField(const JSON& object, const char* name) {
    const auto& value = field(object, name);
    require(value.is_boolean());
    return value.get<bool>();
}

double numberField(const JSON& object, const char* name) {
    const auto& value = field(object, name);
    require(value.is_number());
    return value.get<double>();
}

std::int64_t integerField(const JSON& object, const char* name) {
    const auto& value = field(object, name);
    require(value.is_number_integer());
    require(!value.is_number_unsigned() || value.get<std::uint64_t>() <= INT64_MAX);
    return value.get<std::int64_t>();
}

BridgedTab tab(const JSON& json) {
    return {textField(json, "url", tabLimits::urlBytes), textField(json, "title", tabLimits::titleBytes),
            truthField(json, "active"), truthField(json, "audible"), truthField(json, "muted")};
}

BridgedWindow window(const JSON& json) {
    constexpr std::size_t longestWord = 32;
    BridgedWindow window;
    window.id = integerField(json, "id");
    window.isTool = textField(json, "type", longestWord) == "devtools";
    window.isMinimized = textField(json, "state", longestWord) == "minimized";
    window.isFocused = truthField(json, "focused");
    window.bounds = {numberField(json, "left"), numberField(json, "top"), numberField(json, "width"),
                     numberField(json, "height")};
    const auto& tabs = field(json, "tabs");
    require(tabs.is_array() && tabs.size() <= tabLimits::tabs);
    for (const auto& each : tabs)
        window.tabs.push_back(tab(each));
    return window;
}

std::vector<BridgedWindow> windows(const JSON& message) {
    require(integerField(message, "version") == 1);
    const auto& all = field(message, "windows");
    require(all.is_array() && all.size() <= tabLimits::windows);
    std::vector<BridgedWindow> windows;
    std::size_t tabs = 0;
    for (const auto& each : all) {
        windows.push_back(window(each));
        tabs += windows.back().tabs.size();
        require(tabs <= tabLimits::tabs);
    }
    return windows;
}

} // namespace

const BridgedTab* BridgedWindow::activeTab() const {
    const auto found = std::find_if(tabs.begin(), tabs.end(), [](const auto& tab) { return tab.isActive; });
    return found == tabs.end() ? nullptr : &*found;
}

std::optional<std::vector<BridgedWindow>> bridgedWindows(std::string_view message) {
    if (!isShallow(message))
        return std::nullopt;
    try {
        return windows(JSON::parse(message, nullptr, false));
    } catch (const Malformed&) {
        return std::nullopt;
    }
}

} // namespace kestrio
