// The fixed words of the dashboard's frame, beside those that its parts say for themselves. Plain values.
#pragma once

#include "Kestrio/Pages/DateControls.h"
#include "Kestrio/Pages/StateWords.h"

namespace kestrio {

struct DashboardWords {
    static constexpr auto windowTitle = "Kestrio";
    // For those who do not see the frame.
    static constexpr auto sidebarName = "Pages";
    static constexpr auto statusName = "Recording";
    static constexpr auto loadingName = "Loading";
};

/// What stands above the pages while no agent runs.
struct AgentNotice {
    std::string symbol;
    SystemColor tint = SystemColor::gray;
    std::string title;
    std::string text;
    std::string button; // starts the agent
    friend bool operator==(const AgentNotice&, const AgentNotice&) = default;
};

inline AgentNotice agentNotice() {
    return {.symbol = "moon.zzz",
            .tint = SystemColor::gray,
            .title = "Kestrio is not running",
            .text = "What you see was recorded before. Nothing is being recorded now.",
            .button = "Start Kestrio"};
}

/// What the sidebar says meanwhile.
inline StateWords agentAbsentWords() {
    return {"Not running", "power"};
}

} // namespace kestrio
