#include "Kestrio/Platform/Linux/SettledPage.h"

#include <utility>

namespace kestrio {

void SettledPage::see(const std::optional<BrowserPage>& page, Uptime now) {
    if (page && page != believed_ && page == candidate_ && now - candidateSince_ >= settling)
        believed_ = std::exchange(candidate_, std::nullopt);
    isCurrent_ = page && page == believed_;
    if (isCurrent_) {
        believedSeen_ = now;
        candidate_.reset();
    } else if (page != candidate_) {
        candidate_ = page;
        candidateSince_ = now;
    }
}

const BrowserPage* SettledPage::answer(Uptime now) const {
    return believed_ && (isCurrent_ || now - believedSeen_ <= holding) ? &*believed_ : nullptr;
}

} // namespace kestrio
