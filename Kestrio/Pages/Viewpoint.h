// From where a page is looked at: the texts of times and days depend on the present moment and on the person's
// calendar. A value for the length of a call; on the calendar's queue.
#pragma once

#include "Kestrio/Base/Calendar.h"

namespace kestrio {

struct Viewpoint {
    Date now;
    const Calendar& calendar;
};

} // namespace kestrio
