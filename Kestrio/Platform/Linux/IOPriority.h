// I/O priorities as the kernel's `ioprio_get` and `ioprio_set` have them: a class in the upper bits, a level within it
// in the lower. The kernel's own header for them is, in some of its versions, no C++.
#pragma once

namespace kestrio::ioPriority {

inline constexpr int ofProcess = 1; // the kind of identifier that a thread's is

inline constexpr int classNone = 0; // follows the thread's other priority
inline constexpr int classRealTime = 1;
inline constexpr int classBestEffort = 2;
inline constexpr int classIdle = 3;

inline constexpr int classShift = 13;

constexpr int value(int priorityClass, int level) {
    return (priorityClass << classShift) | level;
}

constexpr int classOf(int value) {
    return value >> classShift & 7;
}

} // namespace kestrio::ioPriority
