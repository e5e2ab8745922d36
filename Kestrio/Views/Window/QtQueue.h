// The main queue of a program whose main thread runs the view framework's event loop: work and timers are served
// between its events. The loop's timers are asked to be precise; waiting together is the schedule's own business.
//
// Made and dropped on the thread of the application object. Its work runs while the application's events do.
#pragma once

#include "Kestrio/Base/Queue.h"

#include <memory>

namespace kestrio {

class QtQueue final : public Queue {
public:
    explicit QtQueue(std::string label = "main");
    ~QtQueue() override;
    QtQueue(const QtQueue&) = delete;
    QtQueue& operator=(const QtQueue&) = delete;

    const std::string& label() const override { return label_; }
    bool isCurrent() const override;
    void async(Work work) override;
    [[nodiscard]] Subscription after(Seconds delay, Work work) override;
    [[nodiscard]] Subscription every(Pace pace, Work work) override;

protected:
    void runAndWait(const Work& work) override;

private:
    struct State;
    class Server;

    Subscription subscription(std::uint64_t id);

    const std::string label_;
    // Shared with the tokens, which may outlive the queue.
    std::shared_ptr<State> state_;
    std::unique_ptr<Server> server_;
};

} // namespace kestrio
