// What this host's descriptions of its applications suggest as their activity categories.
//
// Any thread. Answers from memory but for the first question about an application (some ten microseconds; the very
// first reads all desktop files), and after the installed ones changed.
#pragma once

#include "Kestrio/Platform/Linux/ApplicationIdentity.h"
#include "Kestrio/Platform/Linux/DesktopEntries.h"
#include "Kestrio/Platform/Linux/IdentityCatalogue.h"

#include <filesystem>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrio {

class CategoryHints {
public:
    /// The folders hold desktop files. Clock and catalogue must outlive this.
    CategoryHints(std::vector<std::filesystem::path> folders, const Clock& clock, const IdentityCatalogue& catalogue);

    /// The raw text of the category; absent when the application is not installed.
    std::optional<std::string> category(std::string_view bundleID);

private:
    std::mutex lock_; // guards all below
    DesktopEntries entries_;
    ApplicationIdentity identity_;
    std::map<std::string, std::optional<std::string>, std::less<>> known_;
    std::uint64_t knownVersion_ = 0; // of the entries that it was found with
};

} // namespace kestrio
