#include "Kestrio/Link/AgentLink.h"

#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Link/BackgroundClient.h"

#include <condition_variable>
#include <map>
#include <mutex>
#include <utility>

namespace kestrio {

std::optional<AgentConnection> connectToAgent(const std::string& busAddress, LoopQueue& worker,
                                              std::function<void()> gone) {
    auto client = BackgroundClient::connect(busAddress);
    if (!client)
        return std::nullopt;
    const auto told = std::make_shared<bool>(false);
    const auto tellGone = [told, gone = std::move(gone)] {
        if (!std::exchange(*told, true))
            gone();
    };
    const auto deliver = [served = client.get(), tellGone] {
        if (!served->serve(Seconds(0)))
            tellGone();
    };
    AgentConnection connection;
    connection.tokens.push_back(client->observeEnd(tellGone));
    connection.tokens.push_back(worker.watch(client->descriptor(), deliver));
    connection.background = std::move(client);
    connection.deliver = deliver;
    return connection;
}

/// What belongs to the worker queue, and what both sides read under the lock.
struct AgentLink::Worker {
    Connect connect;
    std::optional<AgentConnection> connection;
    struct Kept {
        std::function<Subscription(Background&)> subscribe;
        Subscription token;
    };
    std::map<std::uint64_t, Kept> kept;

    std::mutex mutex; // guards all below
    std::condition_variable looked;
    bool hasLooked = false;
    std::optional<AgentStatus> known;

    void learn(std::optional<AgentStatus> status) {
        {
            const std::lock_guard guard(mutex);
            known = std::move(status);
            hasLooked = true;
        }
        looked.notify_all();
    }

    void close() {
        for (auto& [id, one] : kept)
            one.token.cancel();
        connection.reset();
    }
};

AgentLink::AgentLink(Queue& main, Queue& worker, Connect connect)
    : main_(main), workerQueue_(worker), worker_(std::make_shared<Worker>()) {
    worker_->connect = std::move(connect);
}

AgentLink::~AgentLink() {
    workerQueue_.async([worker = worker_] {
        worker->kept.clear();
        worker->connection.reset();
    });
}

void AgentLink::start() {
    connect();
}

std::optional<AgentStatus> AgentLink::known(Seconds patience) const {
    std::unique_lock guard(worker_->mutex);
    worker_->looked.wait_for(guard, patience, [&] { return worker_->hasLooked; });
    return worker_->known;
}

void AgentLink::connect() {
    // Everything that arrives at the worker queue goes to the main one by this, as long as the link lives.
    const auto toMain = [&main = main_, weak = std::weak_ptr(self_)](std::function<void(AgentLink&)> work) {
        main.async([weak, work = std::move(work)] {
            if (const auto self = weak.lock())
                work(**self);
        });
    };
    const auto tell = [toMain, weak = std::weak_ptr(worker_)](std::optional<AgentStatus> status) {
        if (const auto worker = weak.lock())
            worker->learn(status);
        toMain([status = std::move(status)](AgentLink& link) { link.accept(status); });
    };
    workerQueue_.async([toMain, tell, &queue = workerQueue_, worker = worker_] {
        // Not at once: it is the connection itself that tells.
        const auto gone = [tell, &queue, weak = std::weak_ptr(worker)] {
            queue.async([tell, weak] {
                if (const auto left = weak.lock())
                    left->close();
                tell(std::nullopt);
            });
        };
        worker->connection = worker->connect(gone);
        auto status = worker->connection ? worker->connection->background->status() : std::nullopt;
        if (!status) {
            worker->close();
            return tell(std::nullopt);
        }
        auto& connection = *worker->connection;
        connection.tokens.push_back(connection.background->observe([tell](const auto& news) { tell(news); }));
        connection.tokens.push_back(connection.background->observeData(
            [toMain] { toMain([](AgentLink& link) { link.dataChanged_.emit(); }); }));
        for (auto& [id, one] : worker->kept)
            one.token = one.subscribe(*connection.background);
        tell(std::move(status));
        connection.deliver();
    });
}

void AgentLink::accept(std::optional<AgentStatus> status) {
    const bool isPresent = status.has_value();
    status_.set(std::move(status));
    presence_.set(isPresent ? Presence::present : Presence::absent);
    if (!isPresent)
        retry_ = main_.after(retryInterval, [this] { connect(); });
}

void AgentLink::perform(std::function<std::function<void()>(Background*)> work) {
    workerQueue_.async([&main = main_, worker = worker_, weak = std::weak_ptr(self_), work = std::move(work)] {
        auto& connection = worker->connection;
        auto take = work(connection ? connection->background.get() : nullptr);
        if (connection)
            connection->deliver();
        main.async([weak, take = std::move(take)] {
            if (weak.lock())
                take();
        });
    });
}

Subscription AgentLink::keep(std::function<Subscription(Background&)> subscribe) {
    const auto id = nextKept_++;
    workerQueue_.async([worker = worker_, id, subscribe = std::move(subscribe)] {
        auto& one = worker->kept[id];
        one.subscribe = subscribe;
        if (worker->connection)
            one.token = one.subscribe(*worker->connection->background);
    });
    return Subscription([&queue = workerQueue_, weak = std::weak_ptr(worker_), id] {
        if (const auto worker = weak.lock())
            queue.async([worker, id] { worker->kept.erase(id); });
    });
}

} // namespace kestrio
