// Waiting, in tests against real services, for something that is told by a notice.
#pragma once

#include <functional>

namespace kestrio {

/// Asks again and again until the condition holds. False when it does not within the deadline, which is far longer
/// than anything that works ever takes.
bool eventually(const std::function<bool()>& condition, double deadlineSeconds = 10);

} // namespace kestrio
