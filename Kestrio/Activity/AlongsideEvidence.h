// What plays alongside at one moment. A value.
#pragma once

#include "Kestrio/Model/Models.h"

#include <set>
#include <string>
#include <vector>

namespace kestrio {

struct AlongsideEvidence {
    std::vector<ActivitySample> detected; // each of kind watching or listening
    std::set<std::string> appsPlayingVideo;
};

} // namespace kestrio
