#include "Programs/CommandLine/StatusText.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

const Calendar& calendar() {
    static const Calendar berlin("en_GB", "Europe/Berlin");
    return berlin;
}
Date now() {
    return calendar().date(2026, 11, 21, 10, 31, 5);
}
LiveActivity activity(const char* app, const char* title, SessionKind kind = SessionKind::focus) {
    return {{app, app, title, {}, {}, {}, kind}, now(), now(), {}};
}

AgentStatus inState(TrackingState state, std::optional<Date> pausedUntil = {}) {
    AgentStatus status;
    status.state = state;
    status.pausedUntil = pausedUntil;
    return status;
}

TEST(StatusText, isOneLine) {
    struct Row {
        AgentStatus status;
        std::size_t width;
        const char* line;
    };
    const auto paused = inState(TrackingState::paused, distantFuture);
    const auto shortly = inState(TrackingState::paused, now() + Seconds(1800));
    const auto stopped = inState(TrackingState::paused);
    const auto idle = inState(TrackingState::idle);
    AgentStatus working;
    working.live = activity("Editor", "Letter");
    AgentStatus untitled;
    untitled.live = activity("Editor", "");
    AgentStatus full = working;
    full.alongside = {activity("Player", "Film", SessionKind::watching), activity("Radio", "", SessionKind::listening)};
    AgentStatus hostile;
    hostile.live = activity("Editor", "a\x1B[31mred\nb\u202Ec");
    const Row rows[] = {
        {{}, 80, "10:31:05  tracking"},
        {idle, 80, "10:31:05  idle"},
        {paused, 80, "10:31:05  paused    until you resume"},
        {shortly, 80, "10:31:05  paused    until 11:01"},
        {stopped, 80, "10:31:05  paused"},
        {working, 80, "10:31:05  tracking  Editor: Letter"},
        {untitled, 80, "10:31:05  tracking  Editor"},
        {full, 80, "10:31:05  tracking  Editor: Letter  · Watching Player: Film  · Listening Radio"},
        {full, 40, "10:31:05  tracking  Editor: Letter  · W…"},
        {hostile, 80, "10:31:05  tracking  Editor: a [31mred bc"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(statusLine(row.status, now(), calendar(), {row.width, true}), row.line);
}

TEST(StatusText, theEndOfAPauseSaysAsMuchAsItNeeds) {
    struct Row {
        Date until;
        const char* text;
    };
    const Row rows[] = {
        {distantFuture, "until you resume"},
        {now() + Seconds(60), "until 10:32"},
        {calendar().date(2026, 11, 22), "until Sun, 22 Nov, 00:00"},
        {calendar().date(2027, 11, 22, 9), "until Mon, 22 Nov 2027, 09:00"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(pauseEnd(row.until, now(), calendar()), row.text);
}

} // namespace
} // namespace kestrio
