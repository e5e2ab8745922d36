// The tab "About": which version this is, what to tell whoever helps, and what the program promises. Plain values.
#pragma once

#include <array>
#include <string>

namespace kestrio {

struct AboutSettings {
    static constexpr auto name = "Kestrio";
    static constexpr auto symbol = "kestrio.mark";
    static constexpr auto copyTitle = "Copy System Info";
    static constexpr auto copiedTitle = "Copied"; // for a moment
    static constexpr auto copySymbol = "doc.text";
    static constexpr auto copiedSymbol = "checkmark";

    struct Point {
        const char* symbol;
        const char* text;
    };
    static constexpr std::array points{Point{"internaldrive", "Everything stays on this Mac"},
                                       Point{"lock.shield", "No account, no servers, no analytics"},
                                       Point{"macwindow", "Private windows stay private"},
                                       Point{"trash", "Remove everything anytime"}};
};

/// "Version 1.2.3"
inline std::string versionLine(const std::string& version) {
    return "Version " + version;
}

} // namespace kestrio
