// Seam: what a running browser shows, in its front tab and in all its windows.
//
// Called on the monitor's queue: the front tab at each tick while the browser is in front, the windows at the slower
// pace of what plays alongside. A tab is answered within 2 s and windows within 3 s, whatever the browser does. An
// empty text is valid: the browser does not run, has no window, cannot be read, or did not answer in time. An address
// and a title in one answer belong together; a reader that cannot be sure of that answers an empty text.
#pragma once

#include <string>
#include <string_view>
#include <variant>

namespace kestrio {

/// Stands for the address of a private page, of which a reader passes on nothing but the mode: an empty address would
/// say that there is no page at all.
inline constexpr std::string_view privateAddress = "about:private";

/// The person does not allow this browser to be read, or has not been asked and cannot be. Asking again soon is no use.
struct BrowserRefusal {
    friend bool operator==(const BrowserRefusal&, const BrowserRefusal&) = default;
};

/// A text of fields, in valid UTF-8. Between fields stands U+001F, between windows U+001E, between the tabs inside a
/// field U+001D; none of them can occur in a title or an address, so nothing is quoted.
using BrowserAnswer = std::variant<std::string, BrowserRefusal>;

class BrowserReader {
public:
    virtual ~BrowserReader() = default;

    /// Of the active tab of the front window three fields: address, title, and the mode of the window, "incognito" for
    /// a private one and "normal" otherwise.
    virtual BrowserAnswer frontTab(const std::string& bundleIdentifier) = 0;

    /// Of every window, front to back, nine fields: its left, top, right and bottom edge in points, its mode, the
    /// address and the title of its active tab, the addresses of all its tabs, and their titles in the same order. A
    /// window that cannot be read is left out.
    virtual BrowserAnswer windows(const std::string& bundleIdentifier) = 0;
};

} // namespace kestrio
