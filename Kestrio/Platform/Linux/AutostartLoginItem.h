// Starting with the session by a desktop entry in the person's autostart folder.
//
// Session managers and settings programs read and change the same file: `Hidden` and `X-GNOME-Autostart-enabled` in it
// count, and an entry that somebody else switched off stays off until `enable`.
#pragma once

#include "Kestrio/Platform/LoginItem.h"

#include <filesystem>
#include <string_view>

namespace kestrio {

class AutostartLoginItem final : public LoginItem {
public:
    /// The folder is made when needed. The program is an absolute path.
    AutostartLoginItem(const std::filesystem::path& folder, std::filesystem::path program);

    bool isEnabled() const override;
    std::optional<std::string> enable() override;
    std::optional<std::string> disable() override;

private:
    const std::filesystem::path file_;
    const std::filesystem::path program_;
};

/// One argument of a desktop entry's `Exec` line, quoted as that line's two layers of rules ask for.
std::string quotedForExec(std::string_view argument);

/// Whether a session manager would start this entry: it has a command and neither switch is off.
bool isEnabledEntry(std::string_view desktopEntry);

} // namespace kestrio
