// `kestrioctl monitor`: one picture of the machine, and what is worth saying about it.
#pragma once

namespace kestrio {

/// Takes a second. Returns the exit status.
int monitor(bool json);

} // namespace kestrio
