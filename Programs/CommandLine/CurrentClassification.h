// What the person has decided about categories and projects, as the commands apply it to what was recorded.
#pragma once

#include "Kestrio/Base/Clock.h"
#include "Kestrio/Platform/Linux/Locations.h"
#include "Kestrio/Reports/ReportBuilder.h"

namespace kestrio {

/// As of now. The clock must outlive it.
Classification currentClassification(const Locations& places, const Clock& clock);

} // namespace kestrio
