// What a look into the recorded sessions comes to. Plain values.
#pragma once

#include "Kestrio/Base/DatabaseTrouble.h"
#include "Kestrio/Model/Models.h"

#include <variant>
#include <vector>

namespace kestrio {

/// The sessions, or why nobody can tell whether there are any.
using FoundSessions = std::variant<std::vector<ActivitySession>, DatabaseTrouble>;

} // namespace kestrio
