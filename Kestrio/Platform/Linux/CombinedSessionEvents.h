// Several sources of session events as one, for hosts on which different services know different events.
//
// Belongs to the queue of its sources, which must outlive it and its tokens' use.
#pragma once

#include "Kestrio/Platform/SessionEvents.h"

#include <functional>
#include <vector>

namespace kestrio {

class CombinedSessionEvents final : public SessionEvents {
public:
    /// A source that knows bare events only: subscribes the receiver to it.
    using PlainSource = std::function<Subscription(std::function<void(SessionEvent)> receiver)>;

    CombinedSessionEvents(std::vector<SessionEvents*> sources, std::vector<PlainSource> plainSources);

    /// Hears each event of each source, in the order in which they come; what several sources know may come twice.
    Subscription observe(std::function<void(const SessionNotice&)> receiver) override;

    /// The first answer among the sources.
    std::optional<Date> sessionStart() override;

private:
    const std::vector<SessionEvents*> sources_;
    const std::vector<PlainSource> plainSources_;
};

} // namespace kestrio
