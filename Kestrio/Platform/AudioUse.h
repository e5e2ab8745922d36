// Seam: which processes make sound, and which listen.
//
// May be called from any thread, at each check of what plays alongside. Never waits: it answers from what the sound
// server has told so far. Nothing is a valid answer: there is silence, no sound server, or one that does not answer.
#pragma once

#include "Kestrio/Platform/ApplicationTrace.h"

#include <vector>

namespace kestrio {

class AudioUse {
public:
    virtual ~AudioUse() = default;

    /// Whoever can be heard now, or could a few seconds ago. A player that is paused, muted or silent is not among
    /// them, even where it keeps its way to the loudspeaker open.
    virtual std::vector<ApplicationTrace> playing() = 0;

    /// Whoever takes sound in: a microphone, or what others play.
    virtual std::vector<ApplicationTrace> recording() = 0;
};

} // namespace kestrio
