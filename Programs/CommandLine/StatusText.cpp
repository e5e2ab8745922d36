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
    if (calendar.isSameDay(until, now))
        return "until " + calendar.localized(until, "jmm");
    const bool isThisYear = calendar.components(until).year == calendar.components(now).year;
    return "until " + calendar.localized(until, isThisYear ? "EEEdMMMjmm" : "yEEEdMMMjmm");
}

std::string statusLine(const AgentStatus& status, Date now, const Calendar& calendar, const TableStyle& style) {
    std::string more;
    if (status.state == TrackingState::paused && status.pausedUntil)
        more += "  " + pauseEnd(*status.pausedUntil, now, calendar);
    if (status.live && status.state != TrackingState::paused) // what was open until a moment ago
        more += "  " + named(*status.live);
    for (const auto& session : status.alongside)
        more += "  · " + named(session);
    const auto moment = calendar.formatted(now, "HH:mm:ss");
    const auto line = more.empty() ? fmt::format("{}  {}", moment, rawValue(status.state))
                                   : fmt::format("{}  {:<8}{}", moment, rawValue(status.state), more);
    return text::fittedToColumns(line, style.width);
}

} // namespace kestrio
