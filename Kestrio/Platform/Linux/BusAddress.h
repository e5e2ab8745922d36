// Asking whether a bus answers before trusting it with a connection.
//
// The bus library waits half a minute for a bus that accepts a connection and then says nothing, as a stopped one does.
// So the first step of the handshake is tried on a socket of our own, with a deadline.
#pragma once

#include "Kestrio/Base/Date.h"

#include <string>

namespace kestrio {

/// Whether one of the addresses (separated by semicolons, as in `DBUS_SESSION_BUS_ADDRESS`) lets us in. Addresses that
/// are not local sockets are not tried and count as no answer: a program of one person on one computer has none.
bool busAnswers(const std::string& addresses, Seconds deadline);

} // namespace kestrio
