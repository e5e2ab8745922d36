// What may stand between the optimizer and the processes: for tests that let the agent die between two of its deeds.
#pragma once

#include "Kestrio/Platform/ProcessSignals.h"

#include <functional>
#include <memory>

namespace kestrio {

/// The real signals in, what the optimizer is to use out. Empty in the program itself.
using WrapSignals = std::function<std::unique_ptr<ProcessSignals>(std::unique_ptr<ProcessSignals>)>;

} // namespace kestrio
