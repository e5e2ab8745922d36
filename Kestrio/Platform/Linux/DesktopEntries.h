// The applications that are installed, by their desktop files.
//
// Belongs to one queue. The first question reads all files, some 10 µs each. Only `refresh` looks again: at most every
// two seconds, whether one of the folders changed (a `stat` each).
#pragma once

#include "Kestrio/Base/Clock.h"
#include "Kestrio/Platform/Linux/Locations.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrio {

struct DesktopEntry {
    std::string id;          // without ".desktop"; subfolders as "folder-"
    std::string name;        // in the person's language where the file has it
    std::string icon;        // a name in the icon theme or a path; may be empty
    std::string program;     // what Exec starts, as it stands there; may be empty
    std::string windowClass; // StartupWMClass; may be empty
    std::string categories;  // as in the file
    bool isShown = true;     // false: a helper for one kind of file or address (NoDisplay)
    bool runsInTerminal = false;
    bool hasOptions = false; // Exec has some: it may start but a page or a part of its program

    friend bool operator==(const DesktopEntry&, const DesktopEntry&) = default;
};

/// The person's language as the locale's name has it: "pt_BR.UTF-8" or "sr_RS@latin".
std::string messageLocale(const Environment& environment);

/// What a desktop file says. `isHidden` stands for a file that only deletes those of the same id in other folders.
struct DesktopFile {
    DesktopEntry entry; // the id is left empty
    bool isApplication = false;
    bool isHidden = false;
};
DesktopFile parseDesktopFile(std::string_view text, std::string_view locale);

/// The program that a command line of a desktop file starts: its first word behind `env` and its assignments, with
/// quotes and escapes undone. Empty when there is none.
std::string programOfExec(std::string_view exec);
/// Whether behind that program stands a word that begins with a dash.
bool hasOptionsInExec(std::string_view exec);

/// The folders with desktop files in order of precedence: the person's own first.
std::vector<std::filesystem::path> applicationFolders(const Environment& environment);

class DesktopEntries {
public:
    /// The clock must outlive the entries.
    DesktopEntries(std::vector<std::filesystem::path> folders, std::string locale, const Clock& clock);

    /// Reads the files again where one of the folders changed. The number grows each time that happened.
    std::uint64_t refresh();

    // All answers are null when nothing fits, and hold until the next `refresh`. Letter case does not matter.

    const DesktopEntry* byID(std::string_view id);

    /// By the file's place, whether it is in one of the folders or, as a private one, elsewhere and only named alike.
    const DesktopEntry* byFile(const std::filesystem::path& file);

    /// By StartupWMClass, else by the id or the id's last part. Shown entries come first.
    const DesktopEntry* byWindowClass(std::string_view windowClass);

    /// By the file name of the program in Exec, or of what that is a link to. Entries that start it without options
    /// come before those of its parts.
    const DesktopEntry* byProgram(std::string_view fileName);

private:
    using Index = std::map<std::string, std::size_t, std::less<>>; // from folded names to places in `entries_`

    void readOnce();
    void read();
    void readFolder(const std::filesystem::path& top, const std::filesystem::path& folder,
                    std::vector<std::string>& taken);
    void index();
    const DesktopEntry* find(const Index& index, std::string_view name) const;

    const std::vector<std::filesystem::path> folders_;
    const std::string locale_;
    const Clock& clock_;
    std::optional<Uptime> lastLook_;
    std::vector<std::pair<std::filesystem::path, std::int64_t>> changed_; // each folder and when it last changed
    std::vector<DesktopEntry> entries_;
    Index byID_, byClass_, byProgram_;
    std::uint64_t version_ = 0;
};

} // namespace kestrio
