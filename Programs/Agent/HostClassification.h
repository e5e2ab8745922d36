// What classification is told about this host: how its applications describe themselves, and by which names terminals
// call the person and the machine.
#pragma once

#include "Kestrio/Base/Clock.h"
#include "Kestrio/Classification/Categorizer.h"
#include "Kestrio/Classification/ProjectDetection.h"
#include "Kestrio/Platform/Linux/Locations.h"

namespace kestrio {

ProjectHost projectHost(const Environment& environment);

/// The clock must outlive the hint and all its copies, which share what they learn.
Categorizer::HostHint hostHint(const Environment& environment, const Clock& clock);

} // namespace kestrio
