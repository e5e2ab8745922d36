// Asking whether a bus answers before trusting it with a connection.
//
// The bus library waits half a minute for a bus that accepts a connection and then says nothing, as a stopped one does.
// So the first step of the handshake is tried on a socket of our own, with a deadline.
#pragma once

#include "Kestrio/Base/Date.h"

#include <optional>
#include <string>

namespace kestrio {

/// The first of the addresses (separated by semicolons, as in `DBUS_SESSION_BUS_ADDRESS`) that lets us in. Absent when
/// none does within the deadline, which is for all of them together. Addresses that are not local sockets are not
/// tried: a program of one person on one computer has none.
std::optional<std::string> answeringBus(const std::string& addresses, Seconds deadline);

} // namespace kestrio
