// The recorded activity as the settings look at it: how much there is, what took the most time, and all of it for an
// export. The interface belongs to a worker queue, where it may block; `ArchiveLink` asks it from the main queue.
#pragma once

#include "Kestrio/Activity/Database.h"
#include "Kestrio/Base/Queue.h"
#include "Kestrio/Pages/Settings/DataSettings.h"

#include <memory>
#include <optional>
#include <vector>

namespace kestrio {

class ActivityArchive {
public:
    virtual ~ActivityArchive() = default;

    virtual DataSettings::Stored stored() = 0;
    /// The ones with the most time first; empty on failure.
    virtual std::vector<NamedTotal> appTotals() = 0;
    virtual std::vector<NamedTotal> domainTotals() = 0;
    /// Those that reach into the interval, with what is open.
    virtual FoundSessions sessions(DateInterval interval) = 0;
};

class ArchiveLink {
public:
    /// All must outlive the link, and the main queue and the archive the worker queue's last work.
    ArchiveLink(Queue& main, Queue& worker, ActivityArchive& archive)
        : main_(main), worker_(worker), archive_(archive) {}

    /// Asks on the worker queue and takes the answer on the main one, unless the token was dropped before.
    template <class Question, class Take>
    [[nodiscard]] Subscription ask(Question question, Take take) {
        const auto isWanted = std::make_shared<bool>(true);
        worker_.async([&main = main_, &archive = archive_, isWanted, question = std::move(question),
                       take = std::move(take)]() mutable {
            using Answer = std::invoke_result_t<Question&, ActivityArchive&>;
            const auto answer = std::make_shared<Answer>(question(archive));
            main.async([isWanted, answer, take = std::move(take)]() mutable {
                if (*isWanted)
                    take(std::move(*answer));
            });
        });
        return Subscription([isWanted] { *isWanted = false; });
    }

private:
    Queue& main_;
    Queue& worker_;
    ActivityArchive& archive_;
};

} // namespace kestrio
