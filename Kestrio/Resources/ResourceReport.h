// The resource log of a range as one document in Markdown: a summary that says what happened, not what to do.
#pragma once

#include "Kestrio/Resources/ResourceExporter.h"

#include <string>

namespace kestrio::ResourceExporter {

/// Pure. A section without data is left out or says so.
std::string report(const Snapshot& snapshot, const Surroundings& surroundings);

} // namespace kestrio::ResourceExporter
