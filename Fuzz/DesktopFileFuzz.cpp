#include "Fuzz/Fuzz.h"
#include "Kestrio/Base/Text.h"
#include "Kestrio/Platform/Linux/DesktopEntries.h"

/// Whatever is in a desktop file, what is shown to people is text.
void kestrio::fuzz(std::string_view input) {
    for (const char* locale : {"", "de_DE.UTF-8", "sr_RS@latin"}) {
        const auto file = parseDesktopFile(input, locale);
        for (const auto& text : {file.entry.name, file.entry.icon, file.entry.windowClass, file.entry.categories})
            require(text::fromUntrustedBytes(text) == text);
    }
    programOfExec(input);
}
