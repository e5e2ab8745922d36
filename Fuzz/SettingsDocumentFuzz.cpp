#include "Fuzz/Fuzz.h"
#include "Kestrio/Platform/Linux/SettingsDocument.h"

/// What was understood once is understood again, unchanged, after being written.
void kestrio::fuzz(std::string_view input) {
    const auto document = SettingsDocument::parse(input);
    if (!document)
        return;
    const auto again = SettingsDocument::parse(document->text());
    require(again && *again == *document);
    for (const auto& [key, value] : document->values()) {
        SettingsDocument copy;
        require(copy.set(key, value) && copy.value(key) == value);
    }
}
