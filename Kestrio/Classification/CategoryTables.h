// The built-in categories of applications and sites. Made at the first use, then never changed; any thread.
#pragma once

#include "Kestrio/Model/Models.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string_view>
#include <unordered_map>

namespace kestrio {

/// Lets a map that is keyed by texts be asked with any kind of text.
struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
};

using CategoryTable = std::unordered_map<std::string_view, ActivityCategory, TextHash, std::equal_to<>>;

/// By bundle identifier.
const CategoryTable& builtInApps();

/// By host: lower case, without scheme, "www." or path. A host stands for all below it, unless one of those has a row
/// of its own.
const CategoryTable& builtInDomains();

/// A beginning that all applications of one kind share.
struct CategoryPrefix {
    std::string_view prefix;
    ActivityCategory category;
};

/// The first rule whose prefix the identifier begins with; null when none fits. For identifiers without a row.
const CategoryPrefix* builtInPrefix(std::string_view bundleID);

} // namespace kestrio
