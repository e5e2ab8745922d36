#include "Kestrio/Platform/Linux/CombinedSessionEvents.h"

#include <memory>
#include <utility>

namespace kestrio {

CombinedSessionEvents::CombinedSessionEvents(std::vector<SessionEvents*> sources, std::vector<PlainSource> plainSources)
    : sources_(std::move(sources)), plainSources_(std::move(plainSources)) {}

Subscription CombinedSessionEvents::observe(std::function<void(const SessionNotice&)> receiver) {
    auto tokens = std::make_shared<std::vector<Subscription>>();
    for (auto* source : sources_)
        tokens->push_back(source->observe(receiver));
    for (const auto& source : plainSources_)
        tokens->push_back(source([receiver](SessionEvent event) { receiver({event}); }));
    return Subscription([tokens = std::move(tokens)] { tokens->clear(); });
}

std::optional<Date> CombinedSessionEvents::sessionStart() {
    for (auto* source : sources_)
        if (const auto start = source->sessionStart())
            return start;
    return std::nullopt;
}

} // namespace kestrio
