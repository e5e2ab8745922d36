// What the optimizer takes from one reading of the machine. A view: it must not outlive the applications it looks at.
#pragma once

#include "Kestrio/Platform/KernelCounters.h"
#include "Kestrio/Resources/AppProcessScanner.h"

#include <span>

namespace kestrio {

struct SampledApps {
    std::span<const AppProcesses> apps; // in the sampler's order
    bool hasCPU = false;                // without it, the applications' CPU figures say nothing
    MemoryPressure pressure = MemoryPressure::normal;
};

} // namespace kestrio
