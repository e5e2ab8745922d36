// What the agent is doing, in one line or a few. Pure functions.
#pragma once

#include "Kestrio/Base/Calendar.h"
#include "Kestrio/Link/Background.h"
#include "Programs/CommandLine/SessionTable.h"

#include <string>

namespace kestrio {

/// "10:31:05  tracking  Firefox: A title", cut to the width; what plays alongside follows. Without a line feed.
std::string statusLine(const AgentStatus& status, Date now, const Calendar& calendar, const TableStyle& style);

/// "until 11:00", "until you resume": the end of a pause.
std::string pauseEnd(Date until, Date now, const Calendar& calendar);

} // namespace kestrio
