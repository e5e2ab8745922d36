#include "Fuzz/Fuzz.h"
#include "Kestrio/Base/Text.h"

#include <algorithm>

/// Prefixes never grow, folding is done once, and what is fitted to columns fits and commands no terminal.
void kestrio::fuzz(std::string_view input) {
    const std::size_t count = input.empty() ? 0 : static_cast<unsigned char>(input.front());
    require(input.starts_with(text::prefix(input, count)));
    const auto folded = text::folded(input, text::Ignoring::caseOnly);
    text::folded(input, text::Ignoring::caseAndDiacritics);
    const auto valid = text::fromUntrustedBytes(input);
    require(text::fromUntrustedBytes(valid) == valid);
    const auto fitted = text::fittedToColumns(input, count);
    require(text::columns(fitted) <= count && text::fromUntrustedBytes(fitted) == fitted);
    require(std::none_of(fitted.begin(), fitted.end(), [](unsigned char c) { return c < 0x20 || c == 0x7F; }));
    require(text::trimmed(input).size() <= input.size());
}
