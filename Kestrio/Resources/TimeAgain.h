// Whether it is time again for something that is done now and then by the wall clock. Pure.
#pragma once

#include "Kestrio/Base/Date.h"

#include <optional>

namespace kestrio {

/// True when it was never done, was done at least `interval` ago, or when somebody has put the clock back since: it
/// would otherwise have to wait until the clock has caught up.
inline bool isTimeAgain(const std::optional<Date>& last, Seconds interval, Date now) {
    return !last || now < *last || now - *last >= interval;
}

} // namespace kestrio
