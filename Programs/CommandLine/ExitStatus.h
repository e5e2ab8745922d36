// What every command answers with.
#pragma once

namespace kestrio::exitStatus {

inline constexpr int done = 0;
inline constexpr int failed = 1; // it could not be done
inline constexpr int wrongUsage = 2;
inline constexpr int interrupted = 130; // as shells have it for SIGINT

} // namespace kestrio::exitStatus
