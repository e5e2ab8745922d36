#include "Kestrio/Shell/Launch.h"

#include <algorithm>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

bool liesBelow(const fs::path& path, const fs::path& folder) {
    const auto [end, ignored] = std::mismatch(folder.begin(), folder.end(), path.begin(), path.end());
    return end == folder.end();
}

} // namespace

bool isLoginLaunch(bool saidByLoginItem, std::optional<Date> sessionStart, Date now, Uptime uptime) {
    if (saidByLoginItem)
        return true;
    return now - sessionStart.value_or(now - Seconds(uptime.seconds())) < loginGrace;
}

bool isInstalled(const fs::path& program, const fs::path& personsFolder) {
    const auto path = program.lexically_normal();
    const auto home = personsFolder.lexically_normal();
    if (liesBelow(path, "/usr") || liesBelow(path, "/opt"))
        return true;
    return home.is_absolute() && home != home.root_path() &&
           (liesBelow(path, home / ".local" / "bin") || liesBelow(path, home / ".local" / "lib") ||
            liesBelow(path, home / ".local" / "opt"));
}

} // namespace kestrio
