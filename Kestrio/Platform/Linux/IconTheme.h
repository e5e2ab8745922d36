// Finds the file of an icon by its name, as the icon themes of freedesktop.org are laid out: in the person's theme,
// in those that it inherits, in hicolor, and last beside all themes.
//
// Belongs to one thread. What a theme consists of is read once; each look-up then asks the file system for the folders
// that fit, some 0.1 ms.
#pragma once

#include "Kestrio/Platform/Linux/Locations.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrio {

/// The folders with icon themes, the person's own first, and those with icons of no theme.
std::vector<std::filesystem::path> iconFolders(const Environment& environment);

/// The name of the theme that the person chose in their desktop, as far as its files tell. Empty otherwise.
std::string chosenIconTheme(const Environment& environment);

class IconTheme {
public:
    /// The theme's name may be empty or that of one that is not installed.
    IconTheme(std::vector<std::filesystem::path> folders, const std::string& name);

    /// The icon that is drawn best at so many pixels: the size itself, else the nearest. A name that is a path stands
    /// for its file. Absent when there is none.
    std::optional<std::filesystem::path> find(std::string_view name, int pixels);

private:
    /// A folder of a theme with icons of one size.
    struct SizedFolder {
        std::filesystem::path path;
        int least; // pixels
        int most;
        bool isDrawn; // at any size between the two
    };
    using Folders = std::vector<SizedFolder>;
    struct Theme {
        Folders folders;
        std::vector<std::string> parents;
    };

    const Theme& theme(const std::string& name);
    Theme read(const std::string& name) const;
    static int distance(const SizedFolder& folder, int pixels);
    std::optional<std::filesystem::path> findInTheme(const std::string& name, std::string_view icon, int pixels);

    const std::vector<std::filesystem::path> folders_;
    std::vector<std::string> order_; // of the themes to look through
    std::map<std::string, Theme> themes_;
};

} // namespace kestrio
