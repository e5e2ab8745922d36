// The browsers' native host: started by a browser for our extension, ended by it. Writes nothing to standard output.
#include "Kestrio/Platform/Linux/TabSocket.h"
#include "Programs/StandardStreams.h"
#include "Programs/Tabs/TabRelay.h"

#include <cstdio>
#include <cstring>
#include <sys/stat.h>

int main(int argc, char** argv) {
    kestrio::openStandardStreams();
    umask(077);
    if (argc > 1 && std::strcmp(argv[1], "--help") == 0) {
        std::puts("kestrio-tabs is started by browsers, for Kestrio's extension. See: kestrioctl browsers");
        return 0;
    }
    const auto places = kestrio::locations(kestrio::processEnvironment);
    if (!places) {
        std::fputs("kestrio-tabs: neither KESTRIO_HOME nor HOME is set to a folder\n", stderr);
        return 1;
    }
    if (kestrio::TabRelay(0, kestrio::tabSocketPath(*places)).run())
        return 0;
    std::fputs("kestrio-tabs: the browser sent something that is no message\n", stderr);
    return 1;
}
