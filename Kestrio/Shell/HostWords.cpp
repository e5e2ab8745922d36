#include "Kestrio/Shell/HostWords.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <vector>

namespace kestrio {
namespace {

struct Word {
    std::string_view foreign;
    std::string_view own;
    /// Written alike wherever it stands, so that the start of a sentence has to be seen to.
    bool isName = false;
};

/// The longer of two that begin alike comes first.
constexpr std::array words{
    Word{"terminals, Xcode, Docker", "terminals, Docker"},
    Word{"Activity Monitor", "System Monitor"},
    Word{"macOS version", "system version", true},
    Word{"menu bar icon", "tray icon"},
    Word{"menu bar", "panel"},
    Word{"whole-Mac", "whole-computer"},
    Word{"the Dock", "the panel"},
    Word{"The Dock", "The panel"},
    Word{"macOS", "the system", true},
    Word{"Finder", "Files"},
    Word{"Macs", "computers", true},
    Word{"Mac", "computer", true},
};

bool isPlainLetterOrDigit(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

/// Dashes, quotation marks, dots and the like, U+2000 to U+207F: of what is not ASCII the only thing that parts words.
bool isPunctuation(std::string_view character) {
    return character.size() == 3 && character[0] == '\xE2' && (character[1] == '\x80' || character[1] == '\x81');
}

/// Whether a word can end where `rest` begins.
bool endsWord(std::string_view rest) {
    if (rest.empty())
        return true;
    const char next = rest.front();
    if (static_cast<unsigned char>(next) >= 0x80)
        return isPunctuation(rest.substr(0, 3));
    if (next == '.' || next == '/' || next == ':') // the end of a sentence, or the middle of an identifier
        return rest.size() == 1 || !isPlainLetterOrDigit(rest[1]);
    return !isPlainLetterOrDigit(next) && next != '-' && next != '_' && next != '@';
}

/// Whether a word can begin after `before`.
bool beginsWord(std::string_view before) {
    if (before.empty())
        return true;
    const char last = before.back();
    if (static_cast<unsigned char>(last) >= 0x80)
        return before.size() >= 3 && isPunctuation(before.substr(before.size() - 3));
    constexpr std::string_view joining = "-_./@:\\";
    return !isPlainLetterOrDigit(last) && joining.find(last) == std::string_view::npos;
}

/// Whether what comes after `before` is the first word of a sentence, a line or a cell.
bool beginsSentence(std::string_view before) {
    constexpr std::string_view opening = " \"'(*#-";
    const auto last = before.find_last_not_of(opening);
    if (last == std::string_view::npos || before[last] == '\n' || before[last] == '|')
        return true;
    constexpr std::string_view ending = ".!?";
    return ending.find(before[last]) != std::string_view::npos && before.find(' ', last) != std::string_view::npos;
}

std::string capitalised(std::string_view word) {
    std::string made(word);
    if (made.front() >= 'a' && made.front() <= 'z')
        made.front() = static_cast<char>(made.front() - 'a' + 'A');
    return made;
}

/// Whether the name holds one of the words, beside others that tell it from the word.
bool isToBeKept(const std::string& name) {
    return std::ranges::any_of(words, [&](const Word& word) {
        return name.size() > word.foreign.size() && name.find(word.foreign) != std::string::npos;
    });
}

/// Length of the longest name that the text begins with, or 0.
std::size_t nameLength(std::string_view text, const std::vector<std::string_view>& names) {
    std::size_t longest = 0;
    for (const auto name : names)
        if (text.starts_with(name))
            longest = std::max(longest, name.size());
    return longest;
}

} // namespace

std::string hostWords(std::string_view text) {
    return hostWords(text, {});
}

std::string hostWords(std::string_view text, std::span<const std::string> names) {
    std::vector<std::string_view> kept;
    std::ranges::copy_if(names, std::back_inserter(kept), isToBeKept);
    std::string made;
    made.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const auto rest = text.substr(at);
        if (const auto length = nameLength(rest, kept); length > 0) {
            made += rest.substr(0, length);
            at += length;
            continue;
        }
        const auto* const word = std::ranges::find_if(words, [&](const Word& candidate) {
            return rest.starts_with(candidate.foreign) && endsWord(rest.substr(candidate.foreign.size()));
        });
        if (word == words.end() || !beginsWord(text.substr(0, at))) {
            made += text[at++];
            continue;
        }
        made += word->isName && beginsSentence(text.substr(0, at)) ? capitalised(word->own) : std::string(word->own);
        at += word->foreign.size();
    }
    return made;
}

} // namespace kestrio
