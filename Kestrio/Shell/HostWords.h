// The words of this host. Texts for people are written once, in the words of the first host; where they are shown or
// written for people, this puts the host's own in their place. Pure; any thread.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace kestrio {

/// The text in this host's words: "this Mac" becomes "this computer", "macOS moved memory" "the system moved memory",
/// "Show in Finder" "Show in Files". Whole words alone, so that names such as "MacBook" and identifiers such as
/// "com.example.Mac" stay; at the start of a sentence, a line or a table's cell the word begins with a capital.
std::string hostWords(std::string_view text);

/// The same around names, such as those of applications: one that the text holds stays as it is.
std::string hostWords(std::string_view text, std::span<const std::string> names);

} // namespace kestrio
