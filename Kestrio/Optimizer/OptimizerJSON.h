// The person's tuning and rules of the optimizer as JSON, the form in which the settings keep them: objects with the
// field names as keys, enumerations by their raw value, dates as seconds since 2001-01-01 00:00 UTC, identities in
// their canonical upper-case form. Pure; callable from any thread.
//
// A record is read whole or not at all. Where anything is missing or of another type, however deep, the answer is
// absent, and the caller goes on with the type's default value: half of what somebody decided is not what they decided.
#pragma once

#include "TindraCore/Decisions.h"
#include "TindraCore/Rules.h"

#include <optional>
#include <string>
#include <string_view>

namespace kestrio {

/// Absent for what JSON cannot hold: a number that is not finite, a text that is not UTF-8. What was stored before
/// then stays.
std::optional<std::string> encoded(const tindra::OptimizerTuning& tuning);
std::optional<std::string> encoded(const tindra::OptimizerRules& rules);

/// Unknown keys are passed over.
std::optional<tindra::OptimizerTuning> decodedTuning(std::string_view json);
std::optional<tindra::OptimizerRules> decodedRules(std::string_view json);

} // namespace kestrio
