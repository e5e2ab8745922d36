// Whoever starts a program may have closed its standard streams. The next file that it opens would then take their
// place, and what is meant for people would be written into it.
#pragma once

#include <fcntl.h>

namespace kestrio {

/// Puts /dev/null where a standard stream is closed. The first thing that a program does.
inline void openStandardStreams() {
    for (int stream = 0; stream <= 2; ++stream)
        if (fcntl(stream, F_GETFD) < 0)
            open("/dev/null", O_RDWR); // takes the lowest free number, which is this one
}

} // namespace kestrio
