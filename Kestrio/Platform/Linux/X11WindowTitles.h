// The titles of windows as an X server has them. Belongs to the queue of its windows.
#pragma once

#include "Kestrio/Platform/Linux/X11Windows.h"
#include "Kestrio/Platform/WindowTitles.h"

namespace kestrio {

class X11WindowTitles final : public WindowTitles {
public:
    /// The windows must outlive the titles.
    explicit X11WindowTitles(X11Windows& windows) : windows_(windows) {}

    std::optional<std::string> focusedWindowTitle(pid_t processIdentifier) override {
        return windows_.title(processIdentifier);
    }

    /// True with an X server, whether it answers just now or not.
    bool isGranted() override { return windows_.hasServer(); }

private:
    X11Windows& windows_;
};

} // namespace kestrio
