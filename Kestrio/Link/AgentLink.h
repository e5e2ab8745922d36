// A face's tie to an agent that may come and go while the face stays open.
//
// Belongs to the main queue and never makes it wait: the connection lives on a worker queue, where calls may block up
// to their deadline. Dropping the link lets go of the agent.
#pragma once

#include "Kestrio/Base/Observable.h"
#include "Kestrio/Base/Queue.h"
#include "Kestrio/Link/Background.h"

#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace kestrio {

class LoopQueue;

/// An agent that answers. Belongs to the worker queue.
struct AgentConnection {
    std::unique_ptr<Background> background;
    /// Hands out what arrived while a call waited for its answer.
    std::function<void()> deliver;
    /// What listens meanwhile.
    std::vector<Subscription> tokens;
};

/// Connects to the agent at the session bus of this address and serves the connection on the worker queue, in whose
/// work it is called. `gone` is called there once when the agent or the bus has left. Absent when no agent answers.
std::optional<AgentConnection> connectToAgent(const std::string& busAddress, LoopQueue& worker,
                                              std::function<void()> gone);

class AgentLink {
public:
    /// How long after a vain attempt, or after the agent left, it is looked for again.
    static constexpr Seconds retryInterval{2.0};

    using Connect = std::function<std::optional<AgentConnection>(std::function<void()> gone)>;

    /// The queues must outlive the link, the worker queue also the work that it leaves behind. `connect` is called on
    /// the worker queue.
    AgentLink(Queue& main, Queue& worker, Connect connect);
    ~AgentLink();
    AgentLink(const AgentLink&) = delete;
    AgentLink& operator=(const AgentLink&) = delete;

    /// Looks for the agent now and whenever it is away. Does not wait.
    void start();

    enum class Presence {
        unknown, // not looked for yet
        absent,
        present,
    };
    const Observable<Presence>& presence() const { return presence_; }

    /// What the agent last told of itself; absent while it is away.
    const Observable<std::optional<AgentStatus>>& status() const { return status_; }

    /// The same from any thread but the main one. Until the agent was looked for the first time it waits, `patience` at
    /// most.
    std::optional<AgentStatus> known(Seconds patience) const;

    /// `receiver` is called whenever stored sessions changed other than by recording.
    Subscription observeData(std::function<void()> receiver) { return dataChanged_.subscribe(std::move(receiver)); }

    /// Asks on the worker queue and takes the answer on the main queue, if the link still lives then. The answer is
    /// absent while the agent is away.
    template <class Question, class Take>
    void ask(Question question, Take take) {
        using Answer = std::invoke_result_t<Question&, Background&>;
        perform([question = std::move(question), take = std::move(take)](Background* agent) mutable {
            auto answer = agent ? std::optional<Answer>(question(*agent)) : std::nullopt;
            return [take = std::move(take), answer = std::move(answer)]() mutable { take(std::move(answer)); };
        });
    }

    /// Keeps a subscription at the agent for as long as the token lives, and makes it anew whenever the agent comes
    /// back. `subscribe` and the receivers in it run on the worker queue.
    Subscription keep(std::function<Subscription(Background&)> subscribe);

private:
    struct Worker;

    void perform(std::function<std::function<void()>(Background*)> work);
    void connect();
    void accept(std::optional<AgentStatus> status);

    Queue& main_;
    Queue& workerQueue_;
    std::shared_ptr<Worker> worker_;
    Observable<Presence> presence_{Presence::unknown};
    Observable<std::optional<AgentStatus>> status_;
    Signal<> dataChanged_;
    Subscription retry_;
    std::uint64_t nextKept_ = 0;
    std::shared_ptr<AgentLink*> self_ = std::make_shared<AgentLink*>(this); // work on the way holds it weakly
};

} // namespace kestrio
