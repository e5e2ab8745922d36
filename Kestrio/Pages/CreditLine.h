// The small line at the foot of the dashboard. Plain values.
#pragma once

#include "Kestrio/Shell/AppInfo.h"

namespace kestrio {

struct CreditLine {
    static constexpr auto aboutTitle = "About Kestrio"; // opens the settings at "about"
    static constexpr auto credit = "Made by Haldor Vinter";
    static constexpr auto link = AppInfo::website;
};

} // namespace kestrio
