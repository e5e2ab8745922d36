#include "Kestrio/Pages/PauseControl.h"

#include "Kestrio/Pages/SessionWords.h"
#include "Kestrio/Pages/StateWords.h"

#include <fmt/format.h>

namespace kestrio {
namespace {

/// A day is taken as 24 hours, so where the clocks change the end is an hour beside midnight.
Seconds untilTomorrow(const Viewpoint& viewpoint) {
    return viewpoint.calendar.startOfDay(viewpoint.now) + Seconds(86'400) - viewpoint.now;
}

} // namespace

std::string resumeTitle(const std::optional<Date>& pausedUntil, const Calendar& calendar) {
    const auto end = pauseEnd(pausedUntil);
    return end ? fmt::format("Resume (paused until {})", shortTime(*end, calendar)) : "Resume Tracking";
}

PauseControl pauseControl(TrackingState state, const std::optional<Date>& pausedUntil, const Viewpoint& viewpoint) {
    if (state == TrackingState::paused)
        return ResumeButton{resumeTitle(pausedUntil, viewpoint.calendar), "play.fill"};
    return PauseMenu{"Pause Tracking",
                     "pause.fill",
                     {{"30 minutes", Seconds(1'800)},
                      {"1 hour", Seconds(3'600)},
                      {"Until tomorrow", untilTomorrow(viewpoint)},
                      {"Until I resume", std::nullopt}}};
}

} // namespace kestrio
