#include "Kestrio/Classification/ProjectDetection.h"

#include "Kestrio/Base/Text.h"

#include <algorithm>
#include <array>

namespace kestrio {
namespace {

using namespace std::string_view_literals;

constexpr std::array familyNames{"editor"sv,           "projectFirst"sv,     "projectInBrackets"sv, "terminal"sv,
                                 "folderInBrackets"sv, "folderBehindFile"sv, "sessionFirst"sv};

constexpr std::array vscodeFamily{"com.microsoft.VSCode"sv,
                                  "com.microsoft.VSCodeInsiders"sv,
                                  "com.todesktop.230313mzl4w4u92"sv,
                                  "com.exafunction.windsurf"sv,
                                  "com.vscodium"sv,
                                  "com.visualstudio.code.oss"sv};

/// Editors of the same family under any identifier.
constexpr std::array editorAppNames{"visual studio code"sv, "code"sv, "code - insiders"sv, "cursor"sv, "windsurf"sv,
                                    "vscodium"sv,           "kiro"sv, "antigravity"sv,     "trae"sv};

constexpr std::array projectFirstApps{"com.apple.dt.Xcode"sv, "dev.zed.Zed"sv, "dev.zed.Zed-Preview"sv,
                                      "com.google.android.studio"sv, "com.panic.Nova"sv};

constexpr std::array terminals{"com.apple.Terminal"sv,    "com.googlecode.iterm2"sv, "dev.warp.Warp-Stable"sv,
                               "com.mitchellh.ghostty"sv, "net.kovidgoyal.kitty"sv,  "io.alacritty"sv,
                               "com.github.wez.wezterm"sv};

constexpr std::array shells{"zsh"sv, "-zsh"sv, "bash"sv, "-bash"sv, "fish"sv, "-fish"sv, "sh"sv, "login"sv};

constexpr std::array namesOfNoProject{"welcome"sv,       "untitled"sv,    "settings"sv,    "get started"sv,
                                      "release notes"sv, "extensions"sv,  "walkthrough"sv, "keyboard shortcuts"sv,
                                      "new tab"sv,       "terminal"sv,    "~"sv,           "desktop"sv,
                                      "downloads"sv,     "documents"sv,   "library"sv,     "tmp"sv,
                                      "users"sv,         "applications"sv};

constexpr std::array separators{" — "sv, " – "sv, " - "sv};

/// Some terminals put the shell behind a colon; it means nothing elsewhere.
constexpr std::array shellSeparators{" — "sv, " – "sv, " - "sv, " : "sv};

constexpr std::size_t longestName = 80;
constexpr std::size_t longestExtension = 6;

template <std::size_t Count>
bool isOneOf(const std::array<std::string_view, Count>& all, std::string_view one) {
    return std::find(all.begin(), all.end(), one) != all.end();
}

using Segments = std::vector<std::string_view>;

Segments split(std::string_view title, std::string_view separator) {
    Segments pieces;
    while (true) {
        const auto at = title.find(separator);
        if (const auto piece = text::trimmedOfBlanks(title.substr(0, at)); !piece.empty())
            pieces.push_back(piece);
        if (at == std::string_view::npos)
            return pieces;
        title.remove_prefix(at + separator.size());
    }
}

/// The pieces between separators of one kind, the first that splits; else the whole title.
template <std::size_t Count>
Segments segments(std::string_view title, const std::array<std::string_view, Count>& kinds) {
    for (const auto separator : kinds)
        if (auto pieces = split(title, separator); pieces.size() > 1)
            return pieces;
    return {text::trimmedOfBlanks(title)};
}

std::string_view lastPathComponent(std::string_view path) {
    while (path.size() > 1 && path.ends_with('/'))
        path.remove_suffix(1);
    return path == "/" ? path : path.substr(path.rfind('/') + 1); // npos + 1 is 0
}

std::string_view pathExtension(std::string_view path) {
    const auto name = lastPathComponent(path);
    const auto dot = name.rfind('.');
    return dot == std::string_view::npos || dot == 0 ? ""sv : name.substr(dot + 1);
}

bool looksLikeFileName(std::string_view name) {
    const auto extension = pathExtension(name);
    return !extension.empty() && text::characterCount(extension) <= longestExtension &&
           name.find(' ') == std::string_view::npos;
}

std::optional<std::string> editorProject(std::string_view title, std::string_view lowercasedName) {
    auto pieces = segments(title, separators);
    std::erase_if(pieces, [&](std::string_view piece) {
        const auto lowercased = text::lowercased(piece);
        return lowercased == lowercasedName || isOneOf(editorAppNames, lowercased) ||
               lowercased.starts_with("[extension development host]");
    });
    if (pieces.empty() || (pieces.size() == 1 && looksLikeFileName(pieces[0])))
        return std::nullopt;
    return std::string(pieces[pieces.size() > 1 ? 1 : 0]);
}

/// What stands in the last brackets.
std::optional<std::string_view> inBrackets(std::string_view title) {
    const auto close = title.rfind(')');
    const auto open = close == std::string_view::npos ? close : title.rfind('(', close);
    return open == std::string_view::npos ? std::nullopt : std::optional(title.substr(open + 1, close - open - 1));
}

bool endsPath(char32_t c) {
    return c == U':' || c == U'—' || c == U'–' || c == U'|' || c == U'(' || c == U')' || text::isWhiteSpace(c);
}

/// The last piece of the title that begins with a tilde or a slash, goes on to a character that ends paths, and has a
/// slash in it; as the regular expression (?:~|/)[^\s:—–|()]* finds them from left to right.
std::optional<std::string_view> lastPath(std::string_view title) {
    std::optional<std::string_view> last;
    for (auto start = title.find_first_of("~/"); start != std::string_view::npos;) {
        auto end = start + 1;
        while (end < title.size()) {
            const auto scalar = *text::firstScalar(title.substr(end));
            if (endsPath(scalar.value))
                break;
            end += scalar.length;
        }
        const auto path = title.substr(start, end - start);
        if (path.find('/') != std::string_view::npos)
            last = path;
        start = title.find_first_of("~/", end);
    }
    return last;
}

/// The name of the folder at the path's end; absent for the home folder and the root.
std::optional<std::string> folderName(std::string_view path) {
    if (path.ends_with('/'))
        path.remove_suffix(1);
    const auto name = lastPathComponent(path);
    return name.empty() || name == "~" || name == "/" ? std::nullopt : std::optional<std::string>(name);
}

std::optional<std::string> terminalProject(std::string_view title) {
    if (const auto path = lastPath(title))
        if (auto name = folderName(*path))
            return name;
    const auto pieces = segments(title, shellSeparators);
    if (pieces.size() < 2 || !isOneOf(shells, text::lowercased(pieces[1])))
        return std::nullopt;
    return std::string(pieces[0]);
}

std::optional<std::string> folderBehindFile(std::string_view title) {
    const auto pieces = segments(title, separators);
    std::optional<std::string> folder;
    for (auto piece = pieces.begin() + 1; piece != pieces.end(); ++piece) {
        if (piece->starts_with('[') && piece->ends_with(']'))
            return std::string(piece->substr(1, piece->size() - 2));
        if (!folder && (piece->starts_with('/') || piece->starts_with('~')))
            folder = folderName(*piece);
    }
    return folder;
}

std::optional<std::string> sessionFirst(std::string_view title) {
    const auto colon = title.find(": ");
    return colon == std::string_view::npos ? std::nullopt : std::optional<std::string>(title.substr(0, colon));
}

std::optional<TitleFamily> builtInFamily(std::string_view bundleID, std::string_view lowercasedName) {
    if (isOneOf(vscodeFamily, bundleID) || isOneOf(editorAppNames, lowercasedName))
        return TitleFamily::editor;
    if (isOneOf(projectFirstApps, bundleID) || bundleID.starts_with("com.jetbrains."))
        return TitleFamily::projectFirst;
    if (bundleID.starts_with("com.sublimetext."))
        return TitleFamily::projectInBrackets;
    return isOneOf(terminals, bundleID) ? std::optional(TitleFamily::terminal) : std::nullopt;
}

/// The lower-cased names that stand for the person, the machine and the places of all homes.
std::set<std::string, std::less<>> ignoredNames(const ProjectHost& host) {
    std::set<std::string, std::less<>> names(namesOfNoProject.begin(), namesOfNoProject.end());
    const auto home = std::string_view(host.homeFolder);
    const auto machine = std::string_view(host.hostName);
    const auto parent = home.substr(0, home.find_last_of('/') == std::string_view::npos ? 0 : home.find_last_of('/'));
    const auto shortName = machine.substr(0, machine.find('.'));
    for (const auto name :
         {std::string_view(host.accountName), lastPathComponent(home), lastPathComponent(parent), machine, shortName})
        names.insert(text::lowercased(name));
    for (const auto name : {machine, shortName})
        names.insert(text::lowercased(host.accountName + "@" + std::string(name)));
    return names;
}

std::string_view withoutSuffix(std::string_view name, std::string_view suffix) {
    return name.ends_with(suffix) ? name.substr(0, name.size() - suffix.size()) : name;
}

} // namespace

std::string_view rawValue(TitleFamily family) {
    return familyNames[static_cast<std::size_t>(family)];
}

std::optional<TitleFamily> titleFamily(std::string_view rawValue) {
    const auto found = std::find(familyNames.begin(), familyNames.end(), rawValue);
    return found == familyNames.end() ? std::nullopt
                                      : std::optional(static_cast<TitleFamily>(found - familyNames.begin()));
}

ProjectDetector::ProjectDetector(ProjectHost host)
    : hostApplications_(std::move(host.applications)), ignoredNames_(ignoredNames(host)) {}

ProjectReading ProjectDetector::reading(std::string_view bundleID, std::string_view appName,
                                        std::string_view title) const {
    if (title.empty())
        return {};
    const auto lowercasedName = text::lowercased(appName);
    ProjectReading result;
    result.family = builtInFamily(bundleID, lowercasedName);
    if (result.family) {
        result.read = read(*result.family, title, lowercasedName);
    } else if (const auto known = hostApplications_.find(bundleID); known != hostApplications_.end()) {
        result.family = known->second;
        result.read = read(*result.family, title, lowercasedName);
        // Without a project open these show their own name alone.
        if (result.read && text::lowercased(*result.read) == lowercasedName)
            result.read.reset();
    }
    if (result.read)
        result.project = tidied(*result.read);
    return result;
}

std::optional<std::string> ProjectDetector::read(TitleFamily family, std::string_view title,
                                                 std::string_view lowercasedName) {
    switch (family) {
    case TitleFamily::editor: return editorProject(title, lowercasedName);
    case TitleFamily::projectFirst: return std::string(segments(title, separators).front());
    case TitleFamily::projectInBrackets: {
        const auto name = inBrackets(title);
        return name ? std::optional<std::string>(*name) : std::nullopt;
    }
    case TitleFamily::terminal: return terminalProject(title);
    case TitleFamily::folderInBrackets: {
        const auto path = inBrackets(title);
        return path ? folderName(*path) : std::nullopt;
    }
    case TitleFamily::folderBehindFile: return folderBehindFile(title);
    case TitleFamily::sessionFirst: return sessionFirst(title);
    }
    return std::nullopt;
}

/// The name without what editors append to it; absent when that leaves none.
std::optional<std::string> ProjectDetector::tidied(std::string_view name) const {
    name = text::trimmedOfBlanks(name);
    name = name.substr(0, name.find(" ["));
    for (const auto suffix : {" (Workspace)"sv, ".xcodeproj"sv, ".xcworkspace"sv, ".code-workspace"sv})
        name = withoutSuffix(name, suffix);
    name = text::trimmedOfBlanks(name);
    if (name.empty() || text::characterCount(name) > longestName || ignoredNames_.contains(text::lowercased(name)))
        return std::nullopt;
    return std::string(name);
}

} // namespace kestrio
