// What a person can do about the recording: pause it for a while, or resume it. Plain values.
#pragma once

#include "Kestrio/Model/Models.h"
#include "Kestrio/Pages/Viewpoint.h"

#include <variant>
#include <vector>

namespace kestrio {

struct PauseMenu {
    struct Entry {
        std::string title;
        std::optional<Seconds> length; // absent: until somebody resumes
        friend bool operator==(const Entry&, const Entry&) = default;
    };
    std::string title;
    std::string symbol;
    std::vector<Entry> entries;
    friend bool operator==(const PauseMenu&, const PauseMenu&) = default;
};

struct ResumeButton {
    std::string title;
    std::string symbol;
    friend bool operator==(const ResumeButton&, const ResumeButton&) = default;
};

using PauseControl = std::variant<PauseMenu, ResumeButton>;

PauseControl pauseControl(TrackingState state, const std::optional<Date>& pausedUntil, const Viewpoint& viewpoint);

/// "Resume Tracking", or "Resume (paused until {time})" for a pause that ends by itself.
std::string resumeTitle(const std::optional<Date>& pausedUntil, const Calendar& calendar);

} // namespace kestrio
