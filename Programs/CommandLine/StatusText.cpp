#include "Programs/CommandLine/StatusText.h"

#include "Kestrio/Base/Text.h"

#include <fmt/format.h>

namespace kestrio {
namespace {

std::string named(const LiveActivity& live) {
    const auto& sample = live.sample;
    const auto title = sample.title.empty() ? sample.appName : sample.appName + ": " + sample.title;
    return sample.kind == SessionKind::focus ? title : fmt::format("{} {}", label(sample.kind), title);
}

} // namespace

std::string pauseEnd(Date until, Date now, const Calendar& calendar) {
    if (until >= distantFuture)
        return "until you resume";
    return "until " + calendar.localized(until, calendar.isSameDay(until, now) ? "jmm" : "EEEdMMMjmm");
}

std::string statusLine(const AgentStatus& status, Date now, const Calendar& calendar, const TableStyle& style) {
    auto line = fmt::format("{}  {:<8}", calendar.formatted(now, "HH:mm:ss"), rawValue(status.state));
    if (status.state == TrackingState::paused && status.pausedUntil)
        line += "  " + pauseEnd(*status.pausedUntil, now, calendar);
    if (status.live)
        line += "  " + named(*status.live);
    for (const auto& session : status.alongside)
        line += "  · " + named(session);
    return text::fittedToColumns(line, style.width);
}

} // namespace kestrio
