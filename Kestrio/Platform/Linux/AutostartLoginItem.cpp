#include "Kestrio/Platform/Linux/AutostartLoginItem.h"

#include "Kestrio/Base/Files.h"
#include "Kestrio/Platform/Linux/SafeFiles.h"

#include <cerrno>
#include <cstring>
#include <fmt/format.h>
#include <fstream>
#include <iterator>
#include <map>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t largestEntry = 64 * 1024;

std::string_view trimmedBlanks(std::string_view text) {
    const auto first = text.find_first_not_of(" \t\r");
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

/// The keys of the main group, without translations. The first of two equal keys counts.
std::map<std::string, std::string> mainGroup(std::string_view entry) {
    std::map<std::string, std::string> keys;
    bool inMainGroup = false;
    while (!entry.empty()) {
        const auto end = entry.find('\n');
        const auto line = trimmedBlanks(entry.substr(0, end));
        entry.remove_prefix(end == std::string_view::npos ? entry.size() : end + 1);
        if (line.starts_with('[')) {
            inMainGroup = line == "[Desktop Entry]";
            continue;
        }
        const auto equals = line.find('=');
        if (!inMainGroup || line.starts_with('#') || equals == std::string_view::npos)
            continue;
        keys.emplace(trimmedBlanks(line.substr(0, equals)), trimmedBlanks(line.substr(equals + 1)));
    }
    return keys;
}

std::string read(const fs::path& file) {
    std::error_code error;
    if (!fs::is_regular_file(file, error))
        return {};
    std::ifstream stream(file, std::ios::binary);
    std::string text(largestEntry, '\0');
    stream.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(stream.gcount()));
    return text;
}

} // namespace

std::string quotedForExec(std::string_view argument) {
    // First within the quotes: `"`, `` ` ``, `$` and `\` take a backslash, and a percent sign is doubled. Then the
    // whole is a text value, in which every backslash is doubled again.
    std::string quoted = "\"";
    for (const char c : argument) {
        switch (c) {
        case '"':
        case '`':
        case '$': quoted += "\\\\"; break;
        case '\\': quoted += "\\\\\\"; break;
        case '%': quoted += '%'; break;
        case '\n': quoted += "\\n"; continue;
        case '\t': quoted += "\\t"; continue;
        case '\r': quoted += "\\r"; continue;
        default: break;
        }
        quoted += c;
    }
    return quoted + '"';
}

bool isEnabledEntry(std::string_view desktopEntry) {
    const auto keys = mainGroup(desktopEntry);
    const auto is = [&](const char* key, const char* value) {
        const auto found = keys.find(key);
        return found != keys.end() && found->second == value;
    };
    return keys.contains("Exec") && !is("Hidden", "true") && !is("X-GNOME-Autostart-enabled", "false");
}

AutostartLoginItem::AutostartLoginItem(const fs::path& folder, fs::path program)
    : file_(folder / "kestrio.desktop"), program_(std::move(program)) {}

bool AutostartLoginItem::isEnabled() const {
    return isEnabledEntry(read(file_));
}

std::optional<std::string> AutostartLoginItem::enable() {
    if (const auto error = makeFolder(file_.parent_path()))
        return fmt::format("couldn't make the folder {}: {}", file_.parent_path().string(), error.message());
    const auto entry = fmt::format("[Desktop Entry]\n"
                                   "Type=Application\n"
                                   "Version=1.5\n"
                                   "Name=Kestrio\n"
                                   "Comment=Sees where your time goes, privately\n"
                                   "Icon=dev.haldorvinter.Kestrio\n"
                                   "Exec={} --login\n"
                                   "Terminal=false\n"
                                   "NoDisplay=true\n"
                                   "StartupNotify=false\n"
                                   "X-GNOME-Autostart-enabled=true\n",
                                   quotedForExec(program_.string()));
    if (read(file_) == entry)
        return std::nullopt;
    removeLeftovers(file_);
    if (const auto error = replaceFile(file_, entry, 0644))
        return fmt::format("couldn't write {}: {}", file_.string(), error.message());
    return std::nullopt;
}

std::optional<std::string> AutostartLoginItem::disable() {
    std::error_code error;
    fs::remove(file_, error);
    if (error && error != std::errc::not_a_directory)
        return fmt::format("couldn't remove {}: {}", file_.string(), error.message());
    return std::nullopt;
}

} // namespace kestrio
