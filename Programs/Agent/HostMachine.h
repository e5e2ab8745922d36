// The readers of this machine's processes, cores, memory and drives, made for one queue and living on it.
#pragma once

#include "Kestrio/Base/Clock.h"
#include "Kestrio/Platform/Linux/ApplicationIdentity.h"
#include "Kestrio/Platform/Linux/LinuxDisks.h"
#include "Kestrio/Platform/Linux/LinuxKernelCounters.h"
#include "Kestrio/Platform/Linux/LinuxMemoryTraffic.h"
#include "Kestrio/Platform/Linux/LinuxProcessTable.h"
#include "Kestrio/Platform/Linux/Locations.h"

namespace kestrio {

class HostMachine {
public:
    /// The clock must outlive this. Without places the drives cannot be tested.
    HostMachine(const Clock& clock, const Environment& environment)
        : entries(applicationFolders(environment), messageLocale(environment), clock),
          identity(entries, IdentityCatalogue::builtIn()),
          processes(LinuxProcessTable::setupOfThisMachine(), &identity),
          disks(testFolders(environment)) {}

    /// The folders that most likely lie on a drive of the machine and not in memory: the person's own first.
    static std::vector<std::filesystem::path> testFolders(const Environment& environment) {
        std::vector<std::filesystem::path> folders;
        if (const auto places = locations(environment))
            folders = {places->cache / "Kestrio", places->cache, places->cache.parent_path()};
        folders.emplace_back("/var/tmp");
        folders.emplace_back("/tmp");
        return folders;
    }

    DesktopEntries entries;
    ApplicationIdentity identity;
    LinuxProcessTable processes;
    LinuxKernelCounters kernel;
    LinuxMemoryTraffic memoryTraffic;
    LinuxDisks disks;
};

} // namespace kestrio
