#include "Kestrio/Platform/Linux/DesktopEntries.h"

#include "Kestrio/Base/Text.h"
#include "Kestrio/Platform/Linux/ProcessIdentity.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>
#include <sys/stat.h>
#include <utility>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

constexpr Seconds betweenLooks{2.0};
constexpr std::string_view suffix = ".desktop";
constexpr std::uintmax_t longestFile = 1024 * 1024; // the translations of a large suite take 100 KiB
constexpr int deepestFolder = 8;

/// Ids and classes are compared without the case of ASCII letters: clients and packagers do not agree on it.
std::string folded(std::string_view text) {
    std::string result(text);
    for (auto& c : result)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return result;
}

std::string_view trimmedBlanks(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t'))
        text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t' || text.back() == '\r'))
        text.remove_suffix(1);
    return text;
}

/// A value of the type string: escapes undone, and valid UTF-8 whatever the file holds.
std::string unescaped(std::string_view value) {
    std::string result;
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] != '\\' || i + 1 == value.size()) {
            result += value[i];
            continue;
        }
        switch (value[++i]) {
        case 's': result += ' '; break;
        case 'n': result += '\n'; break;
        case 't': result += '\t'; break;
        case 'r': result += '\r'; break;
        case '\\': result += '\\'; break;
        default: (result += '\\') += value[i];
        }
    }
    return text::fromUntrustedBytes(result);
}

/// How well a translation's locale fits the person's: 4 with country and modifier, 3 with country, 2 with modifier,
/// 1 by language alone, 0 for the untranslated text, nothing for another language.
std::optional<int> fitOfLocale(std::string_view offered, std::string_view wanted) {
    if (offered.empty())
        return 0;
    const auto modifierAt = wanted.find('@');
    const auto modifier = modifierAt == std::string_view::npos ? std::string_view() : wanted.substr(modifierAt);
    auto plain = wanted.substr(0, modifierAt);
    plain = plain.substr(0, plain.find('.'));
    const auto language = plain.substr(0, plain.find('_'));
    const auto isJoined = [offered](std::string_view a, std::string_view b) {
        return offered.size() == a.size() + b.size() && offered.starts_with(a) && offered.ends_with(b);
    };
    if (language.empty())
        return std::nullopt;
    if (!modifier.empty() && isJoined(plain, modifier))
        return plain == language ? 2 : 4;
    if (!modifier.empty() && isJoined(language, modifier))
        return 2;
    if (offered == plain && plain != language)
        return 3;
    return offered == language ? std::optional(1) : std::nullopt;
}

/// The words of a command line in which quotes hold blanks together.
std::vector<std::string> wordsOf(std::string_view exec) {
    std::vector<std::string> words;
    std::string word;
    bool isOpen = false;
    bool isQuoted = false;
    for (std::size_t i = 0; i < exec.size(); ++i) {
        const char c = exec[i];
        if (isQuoted && c == '\\' && i + 1 < exec.size()) {
            word += exec[++i];
        } else if (c == '"') {
            isQuoted = !isQuoted;
            isOpen = true;
        } else if (!isQuoted && (c == ' ' || c == '\t')) {
            if (isOpen)
                words.push_back(std::exchange(word, {}));
            isOpen = false;
        } else {
            word += c;
            isOpen = true;
        }
    }
    if (isOpen)
        words.push_back(std::move(word));
    return words;
}

std::string_view fileNameOf(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

/// The words of a command line behind `env` and its assignments, the program first.
std::vector<std::string> commandOf(std::string_view exec) {
    auto words = wordsOf(exec);
    auto word = words.begin();
    if (word != words.end() && fileNameOf(*word) == "env") {
        ++word;
        while (word != words.end() && (word->starts_with('-') || word->find('=') != std::string::npos))
            if (*word++ == "-u" && word != words.end()) // with the name of a variable to remove
                ++word;
    }
    words.erase(words.begin(), word);
    return words;
}

/// Where a program named without a folder is. Its own place when it is a link is what processes show.
std::optional<fs::path> resolvedProgram(const std::string& program) {
    std::error_code error;
    if (program.starts_with('/')) {
        auto path = fs::canonical(program, error);
        return error ? std::nullopt : std::optional(std::move(path));
    }
    for (const char* folder : {"/usr/local/bin", "/usr/bin", "/bin", "/usr/games", "/snap/bin"}) {
        auto path = fs::canonical(fs::path(folder) / program, error);
        if (!error)
            return path;
    }
    return std::nullopt;
}

std::int64_t changeTime(const fs::path& folder) {
    struct stat status {};
    if (stat(folder.c_str(), &status) != 0)
        return 0;
    return std::int64_t{status.st_mtim.tv_sec} * 1'000'000'000 + status.st_mtim.tv_nsec;
}

std::optional<std::string> readText(const fs::path& file) {
    std::error_code error;
    if (!fs::is_regular_file(file, error) || fs::file_size(file, error) > longestFile)
        return std::nullopt;
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        return std::nullopt;
    return std::string(std::istreambuf_iterator<char>(stream), {});
}

} // namespace

std::string messageLocale(const Environment& environment) {
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"})
        if (auto value = environment(name); value && !value->empty())
            return *value;
    return {};
}

DesktopFile parseDesktopFile(std::string_view text, std::string_view locale) {
    DesktopFile file;
    bool isInGroup = false;
    int nameFit = -1;
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size());
        const auto line = trimmedBlanks(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.starts_with('['))
            isInGroup = line == "[Desktop Entry]";
        const auto equals = line.find('=');
        if (!isInGroup || line.starts_with('#') || equals == std::string_view::npos)
            continue;
        const auto key = trimmedBlanks(line.substr(0, equals));
        const auto value = trimmedBlanks(line.substr(equals + 1));
        auto& entry = file.entry;
        if (key == "Type")
            file.isApplication = value == "Application";
        else if (key == "Hidden")
            file.isHidden = value == "true";
        else if (key == "NoDisplay")
            entry.isShown = value != "true";
        else if (key == "Icon")
            entry.icon = unescaped(value);
        else if (key == "Exec") {
            entry.program = programOfExec(unescaped(value));
            entry.hasOptions = hasOptionsInExec(unescaped(value));
        } else if (key == "StartupWMClass")
            entry.windowClass = unescaped(value);
        else if (key == "Categories")
            entry.categories = unescaped(value);
        else if (key == "Terminal")
            entry.runsInTerminal = value == "true";
        else if (key == "Name" || (key.starts_with("Name[") && key.ends_with(']'))) {
            const auto fit = fitOfLocale(key == "Name" ? "" : key.substr(5, key.size() - 6), locale);
            if (fit && *fit > nameFit) {
                nameFit = *fit;
                entry.name = unescaped(value);
            }
        }
    }
    return file;
}

std::string programOfExec(std::string_view exec) {
    auto words = commandOf(exec);
    return words.empty() ? std::string() : std::move(words.front());
}

bool hasOptionsInExec(std::string_view exec) {
    const auto words = commandOf(exec);
    return std::any_of(words.begin() + (words.empty() ? 0 : 1), words.end(),
                       [](const std::string& word) { return word.starts_with('-'); });
}

std::vector<fs::path> applicationFolders(const Environment& environment) {
    std::vector<fs::path> folders;
    const auto add = [&folders](const fs::path& base) {
        if (base.is_absolute())
            folders.push_back((base / "applications").lexically_normal());
    };
    if (const auto base = locations(environment))
        add(base->data);
    auto shared = environment("XDG_DATA_DIRS").value_or("");
    if (shared.empty())
        shared = "/usr/local/share:/usr/share";
    for (std::string_view rest = shared; !rest.empty();) {
        const auto end = std::min(rest.find(':'), rest.size());
        add(fs::path(rest.substr(0, end)));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return folders;
}

DesktopEntries::DesktopEntries(std::vector<fs::path> folders, std::string locale, const Clock& clock)
    : folders_(std::move(folders)), locale_(std::move(locale)), clock_(clock) {}

std::uint64_t DesktopEntries::refresh() {
    const auto now = clock_.uptime();
    if (lastLook_ && now - *lastLook_ < betweenLooks)
        return version_;
    const bool isSame = lastLook_ && std::all_of(changed_.begin(), changed_.end(), [](const auto& folder) {
                            return changeTime(folder.first) == folder.second;
                        });
    lastLook_ = now;
    if (!isSame)
        read();
    return version_;
}

void DesktopEntries::readOnce() {
    if (!lastLook_)
        refresh();
}

void DesktopEntries::read() {
    entries_.clear();
    changed_.clear();
    std::vector<std::string> taken;
    for (const auto& folder : folders_)
        readFolder(folder, folder, taken);
    index();
    ++version_;
}

void DesktopEntries::readFolder(const fs::path& top, const fs::path& folder, std::vector<std::string>& taken) {
    changed_.emplace_back(folder, changeTime(folder));
    std::error_code error;
    std::vector<fs::path> files;
    std::vector<fs::path> subfolders;
    for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error)) {
        std::error_code ignored;
        if (at->path().extension() == suffix)
            files.push_back(at->path());
        else if (at->is_directory(ignored))
            subfolders.push_back(at->path());
    }
    std::sort(files.begin(), files.end());
    std::sort(subfolders.begin(), subfolders.end());
    for (const auto& path : files) {
        auto id = path.lexically_relative(top).native();
        id.resize(id.size() - suffix.size());
        std::replace(id.begin(), id.end(), '/', '-');
        const auto place = std::lower_bound(taken.begin(), taken.end(), id);
        if (place != taken.end() && *place == id)
            continue; // a folder of higher precedence has it
        const auto text = readText(path);
        if (!text)
            continue;
        taken.insert(place, id);
        auto file = parseDesktopFile(*text, locale_);
        if (!file.isApplication || file.isHidden)
            continue;
        file.entry.id = text::fromUntrustedBytes(id);
        entries_.push_back(std::move(file.entry));
    }
    const auto depth = std::distance(folder.begin(), folder.end()) - std::distance(top.begin(), top.end());
    if (depth < deepestFolder)
        for (const auto& subfolder : subfolders)
            readFolder(top, subfolder, taken);
}

void DesktopEntries::index() {
    byID_.clear();
    byClass_.clear();
    byProgram_.clear();
    // Of several entries for one name the shown ones come first, then those that start the program as it is, then those
    // of higher precedence.
    std::vector<std::size_t> order(entries_.size());
    for (std::size_t i = 0; i < order.size(); ++i)
        order[i] = i;
    std::ranges::stable_sort(order, {},
                             [this](std::size_t i) { return std::pair(!entries_[i].isShown, entries_[i].hasOptions); });
    const auto addTo = [](Index& index, std::string_view name, std::size_t place) {
        if (!name.empty())
            index.emplace(folded(name), place);
    };
    for (const auto i : order) {
        const auto& entry = entries_[i];
        addTo(byID_, entry.id, i);
        addTo(byClass_, entry.windowClass, i);
        const auto program = fileNameOf(entry.program);
        if (program.empty() || isInterpreter(program))
            continue;
        addTo(byProgram_, program, i);
        if (const auto resolved = resolvedProgram(entry.program);
            resolved && !isInterpreter(resolved->filename().native()))
            addTo(byProgram_, resolved->filename().native(), i);
    }
    // Weaker evidence never takes a class from an entry that claims it.
    for (const auto i : order)
        addTo(byClass_, entries_[i].id, i);
    for (const auto i : order)
        if (const auto dot = entries_[i].id.rfind('.'); dot != std::string::npos)
            addTo(byClass_, std::string_view(entries_[i].id).substr(dot + 1), i);
}

const DesktopEntry* DesktopEntries::find(const Index& index, std::string_view name) const {
    const auto found = index.find(folded(name));
    return found == index.end() ? nullptr : &entries_[found->second];
}

const DesktopEntry* DesktopEntries::byID(std::string_view id) {
    readOnce();
    if (const auto* entry = find(byID_, id))
        return entry;
    return id.ends_with(suffix) ? find(byID_, id.substr(0, id.size() - suffix.size())) : nullptr;
}

const DesktopEntry* DesktopEntries::byFile(const fs::path& file) {
    for (const auto& folder : folders_) {
        const auto relative = file.lexically_normal().lexically_relative(folder);
        if (relative.empty() || *relative.begin() == "..")
            continue;
        auto id = relative.native();
        std::replace(id.begin(), id.end(), '/', '-');
        return byID(id);
    }
    return byID(file.filename().native());
}

const DesktopEntry* DesktopEntries::byWindowClass(std::string_view windowClass) {
    readOnce();
    return find(byClass_, windowClass);
}

const DesktopEntry* DesktopEntries::byProgram(std::string_view fileName) {
    readOnce();
    return find(byProgram_, fileName);
}

} // namespace kestrio
