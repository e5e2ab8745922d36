// The rule by which a page that a browser shows is believed: title and address are read one after the other, and for a
// moment after a navigation one of them may still be the old page's. So a pair that is not the one believed so far must
// be read twice, with `settling` in between, before it counts.
//
// A value; the caller brings the time along.
#pragma once

#include "Kestrio/Base/Date.h"

#include <optional>
#include <string>

namespace kestrio {

struct BrowserPage {
    std::string address; // not empty
    std::string title;

    friend bool operator==(const BrowserPage&, const BrowserPage&) = default;
};

class SettledPage {
public:
    /// Title and address were seen to disagree for up to 0.17 s.
    static constexpr Seconds settling{0.2};

    /// While something else is about to settle, the page of before is answered for so long after it was last seen: a
    /// little more than two ticks. A page whose title never rests is then known by its window's title alone.
    static constexpr Seconds holding{5.0};

    /// What was read just now; absent when there was nothing to read.
    void see(const std::optional<BrowserPage>& page, Uptime now);

    /// Whether the page that was read last is believed.
    bool isSettled() const { return isCurrent_; }

    /// Whether the page that was read last may be believed when it is read again.
    bool isSettling() const { return candidate_.has_value(); }

    /// The page to answer: the believed one, if it is there or was a moment ago. Absent when there is none.
    const BrowserPage* answer(Uptime now) const;

private:
    std::optional<BrowserPage> believed_;
    Uptime believedSeen_;
    bool isCurrent_ = false; // the believed one was read last
    std::optional<BrowserPage> candidate_;
    Uptime candidateSince_;
};

} // namespace kestrio
