// What the programs of the command line end with.
#pragma once

namespace kestrio::exitStatus {

inline constexpr int done = 0;
inline constexpr int failed = 1;
inline constexpr int wrongUsage = 2;

} // namespace kestrio::exitStatus
