// What the person was doing: one observation, a session still open, a stored session, and the small enumerations that
// every report, page and export uses. Plain values, copied freely, usable from any thread.
//
// Texts in these records compare by canonical equivalence, so that two encodings of one title are one activity.
#pragma once

#include "Kestrio/Base/Date.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kestrio {

/// Whether a session was the person's main line or went on beside it. Only `focus` counts as active time and as
/// switches between applications; the others overlap it in time and are reported apart.
enum class SessionKind : std::int64_t {
    focus = 0,     // the application in front
    watching = 1,  // a video playing alongside
    listening = 2, // sound playing alongside
};
inline constexpr std::array allSessionKinds{SessionKind::focus, SessionKind::watching, SessionKind::listening};

constexpr std::int64_t rawValue(SessionKind kind) {
    return static_cast<std::int64_t>(kind);
}
/// Absent for an integer that stands for no kind.
std::optional<SessionKind> sessionKind(std::int64_t rawValue);
std::string_view label(SessionKind kind);

/// How time in a category is counted. Follows from the category alone.
enum class Productivity { productive, neutral, distracting };
inline constexpr std::array allProductivities{Productivity::productive, Productivity::neutral,
                                              Productivity::distracting};
std::string_view rawValue(Productivity productivity);

/// What a stretch of activity was for. The order is that of legends and menus.
enum class ActivityCategory { development, work, learning, communication, entertainment, social, other };
inline constexpr std::array allActivityCategories{ActivityCategory::development,   ActivityCategory::work,
                                                  ActivityCategory::learning,      ActivityCategory::communication,
                                                  ActivityCategory::entertainment, ActivityCategory::social,
                                                  ActivityCategory::other};

/// The desktop's own adaptive colours, by name; a theme gives each its values in light and dark.
enum class SystemColor { blue, teal, purple, orange, red, brown, gray };

/// The text by which a category is stored and identified.
std::string_view rawValue(ActivityCategory category);
/// Absent for a text that is not exactly one of the raw texts.
std::optional<ActivityCategory> activityCategory(std::string_view rawValue);
std::string_view label(ActivityCategory category);
SystemColor color(ActivityCategory category);
Productivity productivity(ActivityCategory category);

enum class TrackingState {
    tracking, // a session is being recorded, or can be at the next tick
    idle,     // the person is at the machine but has touched nothing for the idle limit
    away,     // the machine is locked, asleep, in the screen saver or otherwise not in use
    paused,   // the person paused recording
};
inline constexpr std::array allTrackingStates{TrackingState::tracking, TrackingState::idle, TrackingState::away,
                                              TrackingState::paused};
std::string_view rawValue(TrackingState state);
std::optional<TrackingState> trackingState(std::string_view rawValue);

/// One observation of what is in front of the person. Two samples are the same activity exactly when all seven fields
/// are equal; an absent text differs from an empty one.
struct ActivitySample {
    std::string bundleID;
    std::string appName;
    std::string title;                 // cleaned; may be empty
    std::optional<std::string> url;    // only of a browser tab that was read
    std::optional<std::string> domain; // the site's name, taken from the address
    std::optional<std::string> project;
    SessionKind kind = SessionKind::focus;

    friend bool operator==(const ActivitySample& a, const ActivitySample& b);
};

/// A session still open in memory. Its end is `lastSeen`, the last moment at which it was confirmed.
struct LiveActivity {
    ActivitySample sample;
    Date start;
    Date lastSeen;
    std::optional<std::int64_t> rowID; // absent before the first write

    friend bool operator==(const LiveActivity&, const LiveActivity&) = default;
};

/// A stored session. `id` is its identity in lists; it is negative for a live session that has no row yet.
struct ActivitySession {
    std::int64_t id = 0;
    Date start;
    Date end; // never before `start` in a row that this program wrote
    std::string bundleID;
    std::string appName;
    std::string title;
    std::optional<std::string> url;
    std::optional<std::string> domain;
    std::optional<std::string> project;
    SessionKind kind = SessionKind::focus;

    Seconds duration() const { return end - start; }
    ActivitySample sample() const { return {bundleID, appName, title, url, domain, project, kind}; }

    friend bool operator==(const ActivitySession& a, const ActivitySession& b);
};

/// The session that a sample makes over a span of time.
ActivitySession activitySession(std::int64_t id, const ActivitySample& sample, Date start, Date end);

} // namespace kestrio

template <>
struct std::hash<kestrio::ActivitySample> {
    std::size_t operator()(const kestrio::ActivitySample& sample) const noexcept;
};

template <>
struct std::hash<kestrio::ActivitySession> {
    std::size_t operator()(const kestrio::ActivitySession& session) const noexcept;
};
