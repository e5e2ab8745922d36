// A window of an application as the window system shows it. Values; any thread.
#pragma once

#include "Kestrio/Base/Rectangle.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace kestrio {

struct TitledWindow {
    std::uint32_t id = 0;
    std::optional<pid_t> process;
    std::string title; // valid UTF-8, may be empty
    Rectangle bounds;
    Rectangle extents; // with the shadow that some applications draw around their windows and count as theirs
    bool isActive = false;

    friend bool operator==(const TitledWindow&, const TitledWindow&) = default;
};

/// The windows of the application with this bundle identifier, the front one first. Absent when the window system does
/// not tell. Answers within 0.4 s.
using TitledWindows = std::function<std::optional<std::vector<TitledWindow>>(const std::string& bundleIdentifier)>;

/// The bundle identifier of the application that a process belongs to. Absent when nothing tells.
using ApplicationOfProcess = std::function<std::optional<std::string>(pid_t process)>;

class X11Windows;

/// Those of an X server. Both must outlive the answer, which belongs to the queue of the windows.
TitledWindows titledWindows(X11Windows& windows, ApplicationOfProcess applicationOf);

} // namespace kestrio
