// Reads browsers by what their extensions told: answers from memory. Belongs to the monitor's queue.
//
// A browser without the extension answers an empty text. Extensions do not see private windows: when a browser is in
// front and none of the windows it tells has the focus, the one in front is private, or one of its tools'. Either is
// told as private, without an address or a title.
#pragma once

#include "Kestrio/Base/Date.h"
#include "Kestrio/Platform/BrowserReader.h"
#include "Kestrio/Platform/Linux/TabBoard.h"

namespace kestrio {

class BridgeBrowserReader final : public BrowserReader {
public:
    /// How long a browser in front without a focused window is given to tell that one has it. It hears of a switch
    /// after the window system's notice: mostly within 2 ms, on a busy machine within 100. A private window costs this
    /// wait at each look.
    static constexpr Seconds focusPatience{0.25};

    /// The board must outlive the reader.
    explicit BridgeBrowserReader(const TabBoard& board, Seconds patience = focusPatience);

    BrowserAnswer frontTab(const std::string& bundleIdentifier) override;
    BrowserAnswer windows(const std::string& bundleIdentifier) override;

private:
    const TabBoard& board_;
    const Seconds patience_;
};

} // namespace kestrio
