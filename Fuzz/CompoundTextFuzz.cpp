#include "Fuzz/Fuzz.h"
#include "Kestrio/Base/Text.h"
#include "Kestrio/Platform/Linux/X11Text.h"

/// Titles from any client become valid UTF-8.
void kestrio::fuzz(std::string_view input) {
    const auto decoded = fromCompoundText(input);
    require(text::fromUntrustedBytes(decoded) == decoded);
    const auto latin = fromLatin1(input);
    require(text::fromUntrustedBytes(latin) == latin);
}
