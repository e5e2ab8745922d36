// Joining open sessions to stored ones, so that what goes on right now shows without waiting for a write.
#pragma once

#include "Kestrio/Model/Models.h"

#include <vector>

namespace kestrio {

/// Adds one open session to the stored ones of an interval. One with a row moves that row's end on, or is left out when
/// the row is not among them. One without gets a row of its own at the end of the list, with `nextID` as identifier,
/// which moves down by one; not if it lasted no time yet. One that does not reach into the interval is left out.
void joinLive(std::vector<ActivitySession>& stored, const LiveActivity& live, DateInterval interval,
              std::int64_t& nextID);

/// Adds all that is open, the main session and those alongside that have lasted long enough to count.
void joinOpen(std::vector<ActivitySession>& stored, const std::optional<LiveActivity>& live,
              const std::vector<LiveActivity>& alongside, DateInterval interval);

} // namespace kestrio
