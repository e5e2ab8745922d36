// Whose copied and selected text an X server would hand to others. The text lies with the program that it was copied
// in: stopped, that would keep waiting whoever pastes.
//
// For the queue of the connection; a question takes two answers of the server, and is asked right before a stop.
#pragma once

#include "Kestrio/Platform/Linux/X11Connection.h"

#include <sys/types.h>
#include <vector>

namespace kestrio {

/// The processes that own the clipboard and what is selected, once each. One on another machine has none. Empty when
/// nothing is copied, and when the server does not answer.
std::vector<pid_t> selectionHolders(X11Connection& connection);

} // namespace kestrio
