// The monitors and the windows of an X server. Belongs to the queue of its windows. Everything is asked anew at each
// question, all of it in two exchanges with the server.
#pragma once

#include "Kestrio/Platform/Linux/X11Windows.h"
#include "Kestrio/Platform/Screens.h"

namespace kestrio {

class X11Screens final : public Screens {
public:
    /// Both must outlive the screens.
    X11Screens(X11Connection& connection, X11Windows& windows) : connection_(connection), windows_(windows) {}

    /// Without a window manager there are displays, and no windows.
    ScreenLayout layout() override;

private:
    X11Connection& connection_;
    X11Windows& windows_;
};

} // namespace kestrio
