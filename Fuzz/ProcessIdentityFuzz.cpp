#include "Fuzz/Fuzz.h"
#include "Kestrio/Platform/Linux/ProcessIdentity.h"
#include "Kestrio/Platform/Linux/ResponsibleProcess.h"

/// The texts of the kernel about a process, which hold what that process likes.
void kestrio::fuzz(std::string_view input) {
    const auto application = applicationOfControlGroup(input);
    require(!application || !application->empty());
    snapApplicationOfControlGroup(input);
    require(unescapedUnitName(input).size() <= input.size());
    applicationOfFlatpakInfo(input);
    launchedDesktopFile(input, 4711);
    commandArguments(input);
    startTicks(input);
    const auto descent = processDescent(input);
    require(!descent || (descent->parent >= 0 && descent->name.size() < input.size()));
}
