#include "Kestrio/Platform/Linux/IconTheme.h"

#include "Kestrio/Platform/Linux/DesktopEntries.h"
#include "Kestrio/Platform/Linux/KeyFile.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <system_error>
#include <utility>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

constexpr auto commonTheme = "hicolor";
/// Complete themes that desktops bring, for names that an application took from them.
constexpr std::array fullThemes{"Adwaita", "breeze"};
constexpr std::array endings{".svg", ".png", ".svgz", ".xpm"};
constexpr std::size_t mostThemes = 16; // themes that inherit each other in a circle end somewhere

bool isFile(const fs::path& file) {
    std::error_code ignored;
    return fs::is_regular_file(file, ignored);
}

std::vector<std::string> listed(std::string_view text) {
    std::vector<std::string> items;
    while (!text.empty()) {
        const auto end = std::min(text.find(','), text.size());
        if (end > 0)
            items.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return items;
}

int number(const KeyFile& file, std::string_view group, std::string_view key, int otherwise) {
    const auto text = value(file, group, key);
    int parsed = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), parsed);
    const bool isNumber = error == std::errc() && end == text.data() + text.size() && parsed > 0 && parsed <= 4096;
    return isNumber ? parsed : otherwise;
}

/// Desktop files name icons without an ending; some give one.
std::string_view withoutEnding(std::string_view name) {
    for (const std::string_view ending : endings)
        if (name.ends_with(ending))
            return name.substr(0, name.size() - ending.size());
    return name;
}

std::optional<fs::path> fileIn(const fs::path& folder, std::string_view name) {
    for (const auto* ending : endings)
        if (auto file = folder / (std::string(name) + ending); isFile(file))
            return file;
    return std::nullopt;
}

bool isOneName(std::string_view name) {
    return !name.empty() && name.find('/') == std::string_view::npos && name != "." && name != "..";
}

} // namespace

std::vector<fs::path> iconFolders(const Environment& environment) {
    std::vector<fs::path> folders;
    if (const fs::path home = environment("HOME").value_or(""); home.is_absolute())
        folders.push_back(home / ".icons");
    for (const auto& applications : applicationFolders(environment))
        folders.push_back(applications.parent_path() / "icons");
    folders.emplace_back("/usr/share/pixmaps");
    return folders;
}

std::string chosenIconTheme(const Environment& environment) {
    const auto places = locations(environment);
    if (!places)
        return {};
    const auto kde = readKeyFile(places->config / "kdeglobals");
    const auto gtk4 = readKeyFile(places->config / "gtk-4.0/settings.ini");
    const auto gtk3 = readKeyFile(places->config / "gtk-3.0/settings.ini");
    const bool isKDE = environment("XDG_CURRENT_DESKTOP").value_or("").find("KDE") != std::string::npos;
    const std::array names{isKDE ? value(kde, "Icons", "Theme") : std::string_view(),
                           value(gtk4, "Settings", "gtk-icon-theme-name"),
                           value(gtk3, "Settings", "gtk-icon-theme-name"), value(kde, "Icons", "Theme")};
    const auto named = std::find_if(names.begin(), names.end(), [](auto name) { return !name.empty(); });
    return named == names.end() ? std::string() : std::string(*named);
}

IconTheme::IconTheme(std::vector<fs::path> folders, const std::string& name) : folders_(std::move(folders)) {
    const auto add = [this](const std::string& theme) {
        const bool isThere = std::find(order_.begin(), order_.end(), theme) != order_.end();
        if (isOneName(theme) && !isThere && order_.size() < mostThemes)
            order_.push_back(theme);
    };
    add(name);
    for (std::size_t i = 0; i < order_.size(); ++i) {
        const std::string current = order_[i];
        for (const auto& parent : theme(current).parents)
            if (parent != commonTheme)
                add(parent);
    }
    add(commonTheme);
    for (const auto* theme : fullThemes)
        add(theme);
}

const IconTheme::Theme& IconTheme::theme(const std::string& name) {
    const auto known = themes_.find(name);
    return known != themes_.end() ? known->second : themes_.emplace(name, read(name)).first->second;
}

IconTheme::Theme IconTheme::read(const std::string& name) const {
    const auto described = std::find_if(folders_.begin(), folders_.end(),
                                        [&](const auto& folder) { return isFile(folder / name / "index.theme"); });
    if (described == folders_.end())
        return {};
    const auto index = readKeyFile(*described / name / "index.theme");
    Theme theme{.folders = {}, .parents = listed(value(index, "Icon Theme", "Inherits"))};
    auto subfolders = listed(value(index, "Icon Theme", "Directories"));
    for (auto& scaled : listed(value(index, "Icon Theme", "ScaledDirectories")))
        subfolders.push_back(std::move(scaled));
    for (const auto& subfolder : subfolders) {
        const int scale = number(index, subfolder, "Scale", 1);
        const int size = number(index, subfolder, "Size", 0);
        const auto type = value(index, subfolder, "Type");
        const int slack = type == "Fixed" ? 0 : number(index, subfolder, "Threshold", 2);
        const bool isDrawn = type == "Scalable";
        const int least = isDrawn ? number(index, subfolder, "MinSize", size) : size - slack;
        const int most = isDrawn ? number(index, subfolder, "MaxSize", size) : size + slack;
        std::error_code ignored;
        for (const auto& folder : folders_)
            if (size > 0 && fs::is_directory(folder / name / subfolder, ignored))
                theme.folders.push_back({folder / name / subfolder, least * scale, most * scale, isDrawn});
    }
    return theme;
}

int IconTheme::distance(const SizedFolder& folder, int pixels) {
    if (pixels < folder.least)
        return folder.least - pixels;
    return pixels > folder.most ? pixels - folder.most : 0;
}

std::optional<fs::path> IconTheme::findInTheme(const std::string& name, std::string_view icon, int pixels) {
    std::optional<fs::path> best;
    // A larger picture made smaller looks better than a smaller one made larger, and a drawing better than either.
    auto bestRank = std::pair(std::numeric_limits<int>::max(), 0);
    for (const auto& folder : theme(name).folders) {
        const int away = distance(folder, pixels);
        const int rank = pixels > folder.most ? 2 * away : away;
        const auto ranked = std::pair(rank, folder.isDrawn ? 0 : 1);
        if (ranked >= bestRank)
            continue;
        if (auto file = fileIn(folder.path, icon)) {
            best = std::move(file);
            bestRank = ranked;
        }
    }
    return best;
}

std::optional<fs::path> IconTheme::find(std::string_view name, int pixels) {
    if (fs::path(name).is_absolute())
        return isFile(fs::path(name)) ? std::optional(fs::path(name)) : std::nullopt;
    const auto icon = withoutEnding(name);
    if (!isOneName(icon))
        return std::nullopt;
    for (const auto& theme : order_)
        if (auto file = findInTheme(theme, icon, pixels))
            return file;
    for (const auto& folder : folders_)
        if (auto file = fileIn(folder, icon))
            return file;
    return std::nullopt;
}

} // namespace kestrio
