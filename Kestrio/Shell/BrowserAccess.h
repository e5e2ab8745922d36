// Whether the browsers may be read, as the faces show it, and the way to be let in.
//
// Belongs to the main queue. What can block, asking the host and the person, runs on a worker queue.
#pragma once

#include "Kestrio/Activity/Permissions.h"
#include "Kestrio/Base/Observable.h"
#include "Kestrio/Base/Queue.h"

#include <map>
#include <memory>

namespace kestrio {

class BrowserAccess {
public:
    /// A browser that was started for being asked needs so long until it can answer.
    static constexpr Seconds patienceAfterStart{2.0};

    /// All must outlive the access, and the permissions also the worker queue's last work.
    BrowserAccess(Queue& main, Queue& worker, const Permissions& permissions);

    const Observable<std::vector<BrowserPermission>>& permissions() const { return all_; }

    /// By bundle identifier, what is left to the person with the browsers that they picked, until those can be read.
    using Steps = std::map<std::string, BrowserStep>;
    const Observable<Steps>& stepsLeft() const { return stepsLeft_; }

    /// Reads the status of every installed browser anew. Does not wait.
    void refresh();

    /// For a browser that the person picked: starts it in the background if it does not run, asks for consent, leads
    /// to the host's settings where the answer was no before, and refreshes. Does not wait.
    void request(const BrowserApp& browser);

    /// Leads the person to where the step that is left is done. Does not wait.
    void openStep(const BrowserApp& browser);

private:
    /// Runs `question` on the worker queue and `take` with its answer on the main one, if this still lives then.
    template <class Question, class Take>
    void ask(Question question, Take take);

    void requestConsent(const BrowserApp& browser);
    void take(const std::vector<BrowserPermission>& all);
    void note(const std::string& bundleID, const std::optional<BrowserStep>& step);

    Queue& main_;
    Queue& worker_;
    const Permissions& permissions_;
    Observable<std::vector<BrowserPermission>> all_;
    Observable<Steps> stepsLeft_;
    std::map<std::string, Subscription> starting_; // by bundle identifier
    std::shared_ptr<BrowserAccess*> self_;         // work on the way holds it weakly
};

} // namespace kestrio
