// Which browser a process belongs to. Reads some small files of it and of those that it descends from (0.1 ms each);
// belongs to the queue of the `ApplicationIdentity`.
#pragma once

#include "Kestrio/Platform/Linux/ApplicationIdentity.h"

#include <optional>
#include <set>
#include <string>
#include <sys/types.h>

namespace kestrio {

/// The bundle identifier of the known browser that the process itself is. Absent when it is none.
std::optional<std::string> browserOfProcess(ApplicationIdentity& identity, pid_t process);

/// The same for the nearest process that started this one, itself left out: of a native host, the browser that it
/// serves.
std::optional<std::string> browserThatStarted(ApplicationIdentity& identity, pid_t process);

/// The known browsers that this person has processes of, by bundle identifier. Looks at every process there is (0.1 ms
/// for each of the person's own).
std::set<std::string> runningBrowsers(ApplicationIdentity& identity);

} // namespace kestrio
