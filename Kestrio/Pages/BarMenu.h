// What the two icons of the bar say besides their picture: their tips, and their menus for whoever prefers one to a
// panel. Plain values.
#pragma once

#include "Kestrio/Monitor/SystemInsight.h"
#include "Kestrio/Pages/DashboardSection.h"
#include "Kestrio/Pages/PauseControl.h"
#include "Kestrio/Pages/StateWords.h"

#include <span>
#include <variant>
#include <vector>

namespace kestrio {

// What choosing an entry does.
struct ShowPanel { // of the icon whose menu it is, where a click brings up the menu instead
    friend bool operator==(const ShowPanel&, const ShowPanel&) = default;
};
struct ShowDashboard {
    std::optional<DashboardSection> page = {}; // absent: the one that was open last
    friend bool operator==(const ShowDashboard&, const ShowDashboard&) = default;
};
struct ShowSettings {
    friend bool operator==(const ShowSettings&, const ShowSettings&) = default;
};
struct PauseTracking {
    std::optional<Seconds> length = {}; // absent: until somebody resumes
    friend bool operator==(const PauseTracking&, const PauseTracking&) = default;
};
struct ResumeTracking {
    friend bool operator==(const ResumeTracking&, const ResumeTracking&) = default;
};
struct QuitProgram {
    friend bool operator==(const QuitProgram&, const QuitProgram&) = default;
};
using BarAction = std::variant<ShowPanel, ShowDashboard, ShowSettings, PauseTracking, ResumeTracking, QuitProgram>;

struct BarMenuEntry {
    std::string text;                       // no other entry of the menu that does something has the same
    std::optional<BarAction> action = {};   // absent: it only says something, or opens more
    std::vector<BarMenuEntry> entries = {}; // what it opens
    friend bool operator==(const BarMenuEntry&, const BarMenuEntry&) = default;
};

/// In groups, between which a line is drawn.
using BarMenu = std::vector<std::vector<BarMenuEntry>>;

/// The state, the ways on, and what can be done about the recording.
BarMenu statusMenu(TrackingState state, const std::optional<Date>& pausedUntil, const Viewpoint& viewpoint);

/// What is to know about the machine, and the ways on.
BarMenu systemMenu(std::span<const SystemInsight> insights);

/// The action of the entry with this text, wherever in the menu; absent when none has it.
std::optional<BarAction> actionOf(const BarMenu& menu, std::string_view text);

struct BarTip {
    std::string title;
    std::string text;
    friend bool operator==(const BarTip&, const BarTip&) = default;
};

/// "Today: 2h 5m", and what the light means.
BarTip statusTip(const MenuBarLabel& label, Seconds activeToday);

/// "CPU 42%", and what is to know about the machine, a line for each. `cpu` is a share, 0 to 1.
BarTip systemTip(double cpu, std::span<const SystemInsight> insights);

} // namespace kestrio
