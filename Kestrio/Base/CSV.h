// Fields of CSV files, as they are written. Pure; any thread.
#pragma once

#include <string>
#include <string_view>

namespace kestrio {

/// The field as it stands between commas: in double quotes, those within doubled, when it holds a comma, a double quote
/// or a line break; else as it is.
inline std::string csvField(std::string_view text) {
    if (text.find_first_of(",\"\n\r") == std::string_view::npos)
        return std::string(text);
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"')
            quoted += '"';
        quoted += c;
    }
    quoted += '"';
    return quoted;
}

} // namespace kestrio
