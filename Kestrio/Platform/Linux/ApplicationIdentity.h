// Which application a window belongs to, from all that the host tells of its process and itself.
//
// Belongs to one queue. The first question for a window reads some small files of its process (0.1 ms); later ones for
// the same process and class one, which tells a process from a later one with the same number.
#pragma once

#include "Kestrio/Platform/Linux/DesktopEntries.h"
#include "Kestrio/Platform/Linux/IdentityCatalogue.h"
#include "Kestrio/Platform/Linux/ProcessIdentity.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <tuple>

namespace kestrio {

/// What a window shows of itself. Wayland's app_id is a class.
struct WindowOwner {
    std::optional<pid_t> process;
    std::string className;
    std::string instanceName = {};
};

struct ApplicationID {
    /// Absent when there is no evidence at all.
    std::optional<std::string> bundleIdentifier;
    std::optional<std::string> localizedName;

    friend bool operator==(const ApplicationID&, const ApplicationID&) = default;
};

/// The evidence in order: the unit that the desktop started the application in, its sandbox, the desktop file it was
/// started from, its window's class, its program, and at last the class as it stands. A unit and an environment are
/// handed on to whatever the application starts, so a terminal's unit counts only for a window that has the terminal's
/// class, and any unit yields to an entry that both class and program agree on.
ApplicationID identify(const WindowOwner& owner, const ProcessEvidence& evidence, DesktopEntries& entries,
                       const IdentityCatalogue& catalogue);

/// The application that a process is by itself, without a window: what the desktop started it as, or what its program
/// is installed as. A program with a desktop file of its own counts before the unit that it inherited. Absent for any
/// other program.
std::optional<ApplicationID> applicationOf(const ProcessEvidence& evidence, DesktopEntries& entries,
                                           const IdentityCatalogue& catalogue);

class ApplicationIdentity {
public:
    /// `processes` is `/proc`, or a folder like it. Entries and catalogue must outlive this.
    ApplicationIdentity(DesktopEntries& entries, const IdentityCatalogue& catalogue,
                        std::filesystem::path processes = "/proc");

    ApplicationID identify(const WindowOwner& owner);

    std::optional<ApplicationID> applicationOf(pid_t process);

    /// Whether a program of this file name is an application that people start, with windows of its own.
    bool isApplicationProgram(std::string_view fileName);

    /// The name and the icon of an installed application by its bundle identifier.
    std::optional<std::string> name(std::string_view bundleIdentifier);
    std::optional<std::string> icon(std::string_view bundleIdentifier);

    /// Its desktop file. Absent when it is not installed.
    std::optional<DesktopEntry> entry(std::string_view bundleIdentifier);

    /// The raw text of the activity category that the application's desktop file suggests. Absent when it is not
    /// installed.
    std::optional<std::string> categoryHint(std::string_view bundleIdentifier);

    const std::filesystem::path& processes() const { return processes_; }

private:
    using Key = std::tuple<pid_t, std::uint64_t, std::string, std::string>;

    const DesktopEntry* installed(std::string_view bundleIdentifier);

    DesktopEntries& entries_;
    const IdentityCatalogue& catalogue_;
    const std::filesystem::path processes_;
    std::map<Key, ApplicationID> known_;
    std::uint64_t knownVersion_ = 0; // of the entries that it was found with
};

} // namespace kestrio
