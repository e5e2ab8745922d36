// Identities for what a person makes.
#pragma once

#include "TindraCore/UUID.h"

namespace kestrio {

/// A random one, unlike any other. Any thread.
tindra::UUID freshUUID();

} // namespace kestrio
