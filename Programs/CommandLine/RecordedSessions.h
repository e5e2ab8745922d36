// The sessions of a range as the commands show them: what is stored, and what is open in the agent right now.
#pragma once

#include "Kestrio/Activity/Database.h"
#include "Kestrio/Link/Background.h"

#include <optional>
#include <vector>

namespace kestrio {

/// Both may be missing: a null database when nothing was ever recorded, an absent agent when none runs. In the order of
/// their starts but for open ones, which come last.
std::vector<ActivitySession> sessionsOf(Database* database, const std::optional<AgentStatus>& agent,
                                        DateInterval interval);

} // namespace kestrio
