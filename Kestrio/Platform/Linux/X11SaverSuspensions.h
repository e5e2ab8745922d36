// The programs that have told an X server to leave its screen saver off, as players do while they play.
//
// Belongs to the queue of its connection. The server gives no notice of this, so that every question asks each of its
// clients' resources anew (about 1 ms on a full desktop).
#pragma once

#include "Kestrio/Platform/Linux/X11Connection.h"

#include <vector>

namespace kestrio {

/// The processes, in no particular order; a client on another machine has none. Empty when the server does not answer.
std::vector<pid_t> saverSuspendingProcesses(X11Connection& connection);

} // namespace kestrio
