// Who plays and who records, by a PulseAudio server or PipeWire in its place.
//
// May be used from any thread; a thread of its own, "Kestrio.sound", talks to the server and sleeps until that has
// news. A stream that claims to play is listened to, two messages a second, since many players keep a silent one open;
// nothing is while all is quiet. Every question finds a server that went away and came back.
#pragma once

#include "Kestrio/Base/Date.h"
#include "Kestrio/Platform/AudioUse.h"

#include <filesystem>
#include <memory>
#include <string>

namespace kestrio {

class PulseAudioUse final : public AudioUse {
public:
    struct Options {
        /// As in $PULSE_SERVER; empty finds the person's own.
        std::string server = {};
        /// A stream counts as silent when nothing was heard of it for so long: pauses in speech, gaps between tracks.
        Seconds silenceAfter{5.0};
        /// A server that is not there is looked for at most so often, and only when somebody asks.
        Seconds betweenAttempts{5.0};
        std::filesystem::path processes = "/proc";
    };

    explicit PulseAudioUse(Options options);
    ~PulseAudioUse() override;
    PulseAudioUse(const PulseAudioUse&) = delete;
    PulseAudioUse& operator=(const PulseAudioUse&) = delete;

    std::vector<ApplicationTrace> playing() override;
    std::vector<ApplicationTrace> recording() override;

private:
    class Session;

    // Shared with its thread, which is left behind where the server's library hangs.
    std::shared_ptr<Session> session_;
};

} // namespace kestrio
