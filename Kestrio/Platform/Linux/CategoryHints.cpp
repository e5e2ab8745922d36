#include "Kestrio/Platform/Linux/CategoryHints.h"

namespace kestrio {

CategoryHints::CategoryHints(std::vector<std::filesystem::path> folders, const Clock& clock,
                             const IdentityCatalogue& catalogue)
    : entries_(std::move(folders), "", clock), identity_(entries_, catalogue) {}

std::optional<std::string> CategoryHints::category(std::string_view bundleID) {
    const std::lock_guard guard(lock_);
    if (const auto version = entries_.refresh(); version != knownVersion_) {
        known_.clear();
        knownVersion_ = version;
    }
    auto known = known_.find(bundleID);
    if (known == known_.end())
        known = known_.emplace(bundleID, identity_.categoryHint(bundleID)).first;
    return known->second;
}

} // namespace kestrio
