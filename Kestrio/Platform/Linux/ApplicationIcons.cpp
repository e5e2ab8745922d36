#include "Kestrio/Platform/Linux/ApplicationIcons.h"

namespace kestrio {

ApplicationIcons::ApplicationIcons(const Environment& environment, const Clock& clock)
    : entries_(applicationFolders(environment), messageLocale(environment), clock),
      identity_(entries_, IdentityCatalogue::builtIn()),
      theme_(iconFolders(environment), chosenIconTheme(environment)) {}

std::optional<std::filesystem::path> ApplicationIcons::iconFile(const std::string& application, int pixels) {
    const auto name = iconName(application);
    return name ? theme_.find(*name, pixels) : std::nullopt;
}

std::optional<std::string> ApplicationIcons::iconName(const std::string& application) {
    const std::filesystem::path path(application);
    if (!path.is_absolute())
        return identity_.icon(application);
    entries_.refresh();
    const auto* entry =
        path.extension() == ".desktop" ? entries_.byFile(path) : entries_.byProgram(path.filename().string());
    return entry != nullptr && !entry->icon.empty() ? std::optional(entry->icon) : std::nullopt;
}

} // namespace kestrio
