#include "Fuzz/Fuzz.h"
#include "Kestrio/Platform/Linux/BridgeBrowserReader.h"
#include "Kestrio/Platform/Linux/TabFrames.h"

#include <algorithm>

namespace {

std::size_t count(const std::string& text, char wanted) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), wanted));
}

/// Whatever is on the board, an answer has the fields that it should have.
void requireFields(const kestrio::TabBoard& board) {
    kestrio::BridgeBrowserReader reader(board, kestrio::Seconds(0));
    const auto front = std::get<std::string>(reader.frontTab("browser"));
    kestrio::require(front.empty() || count(front, '\x1F') == 2);
    const auto windows = std::get<std::string>(reader.windows("browser"));
    kestrio::require(windows.empty() || count(windows, '\x1F') == 8 * (count(windows, '\x1E') + 1));
}

} // namespace

/// A stream as a native host may send it: cut into messages, and what they tell read from the board.
void kestrio::fuzz(std::string_view input) {
    TabFrameReader whole;
    TabFrameReader inPieces;
    TabBoard board;
    whole.add(input);
    for (const char byte : input)
        inPieces.add({&byte, 1});
    while (const auto message = whole.next()) {
        require(inPieces.next() == message);
        if (auto windows = bridgedWindows(*message)) {
            board.put(1, "browser", std::move(*windows));
            requireFields(board);
        }
    }
    require(!inPieces.next() && whole.isBroken() == inPieces.isBroken());
    if (auto windows = bridgedWindows(input)) {
        board.put(2, "browser", std::move(*windows));
        requireFields(board);
    }
}
