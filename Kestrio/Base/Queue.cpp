#include "Kestrio/Base/Queue.h"

#include "Kestrio/Base/Mistake.h"

namespace kestrio {

void Queue::refuseCurrent() const {
    if (isCurrent())
        programmersMistake("sync on the queue \"" + label() + "\" from its own work");
}

} // namespace kestrio
