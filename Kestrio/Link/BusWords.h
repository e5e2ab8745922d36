// What a call over the bus that failed says to the person.
#pragma once

#include "Kestrio/Link/BusNames.h"

#include <sdbus-c++/Error.h>
#include <string>

namespace kestrio {

inline constexpr auto noAnswer = "Kestrio does not answer";

/// What the agent itself says is for the person; what the library says is not.
inline std::string busWords(const sdbus::Error& error) {
    return error.getName().starts_with(busNames::errorPrefix) ? error.getMessage() : noAnswer;
}

} // namespace kestrio
