// Whether an X display blends windows with what is behind them. Where nothing does, what a window leaves see-through is
// black.
#pragma once

#include <string>

namespace kestrio {

/// By the owner that such a program has to have for the screen's own selection. `display` as in $DISPLAY. True where no
/// server can be reached: whatever shows the windows then does blend them. Asks over a connection of its own, and
/// blocks until the server answers.
bool blendsWindows(const std::string& display);

} // namespace kestrio
