#include "Fuzz/Fuzz.h"
#include "Kestrio/Platform/Linux/ProcessIdentity.h"
#include "Kestrio/Platform/Linux/ProcessTexts.h"

/// The kernel's counters of a process, whose name is any bytes.
void kestrio::fuzz(std::string_view input) {
    if (const auto stat = parseProcessStat(input))
        require(stat->name.size() + 4 <= input.size());
    parseProcessStatus(input);
    parseProcessPages(input);
    parseProcessDiskUse(input);
    placeOfFlatpak(input);
}
