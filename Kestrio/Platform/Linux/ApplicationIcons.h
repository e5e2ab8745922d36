// The file with the icon of an application, as its desktop file and the person's icon theme say.
//
// Belongs to one thread, which may be one of its own; a look-up reads small files, in some milliseconds the first time.
#pragma once

#include "Kestrio/Platform/Linux/ApplicationIdentity.h"
#include "Kestrio/Platform/Linux/IconTheme.h"

#include <filesystem>
#include <optional>
#include <string>

namespace kestrio {

class ApplicationIcons {
public:
    /// The clock must outlive this.
    ApplicationIcons(const Environment& environment, const Clock& clock);

    /// By bundle identifier, or by the path of its program or desktop file. Absent where the host knows no icon.
    std::optional<std::filesystem::path> iconFile(const std::string& application, int pixels);

private:
    std::optional<std::string> iconName(const std::string& application);

    DesktopEntries entries_;
    ApplicationIdentity identity_;
    IconTheme theme_;
};

} // namespace kestrio
