// Which applications use sound and screen, as the optimizer may know it without waiting: the last answer of readers
// that live on another queue, and may hang there. Asking takes the last answer and sends for a new one.
//
// Belongs to the optimizer's queue; answers may come on any.
#pragma once

#include "Kestrio/Base/Clock.h"
#include "Kestrio/Optimizer/Protections.h"

#include <functional>
#include <memory>
#include <mutex>
#include <optional>

namespace kestrio {

class LatestMediaUse {
public:
    /// An answer older than this says nothing any more.
    static constexpr Seconds lifetime{60};

    using Read = std::function<void(std::function<void(MediaUse)>)>;

    /// The clock must outlive this. Sends for the first answer at once.
    LatestMediaUse(const Clock& clock, Read read) : clock_(clock), read_(std::move(read)) { send(); }

    /// Nothing, before the first answer.
    MediaUse value() {
        send();
        const std::lock_guard guard(answer_->lock);
        return answer_->use;
    }

    /// Whether there is an answer that is not too old.
    bool isKnown() const {
        const std::lock_guard guard(answer_->lock);
        return answer_->at && clock_.uptime() - *answer_->at < lifetime;
    }

private:
    struct Answer {
        std::mutex lock; // guards the rest
        MediaUse use = {};
        std::optional<Uptime> at = {};
        bool isComing = false;
    };

    /// A reader that hangs is not asked a second time.
    void send() {
        {
            const std::lock_guard guard(answer_->lock);
            if (answer_->isComing)
                return;
            answer_->isComing = true;
        }
        read_([answer = answer_, &clock = clock_](MediaUse use) {
            const std::lock_guard guard(answer->lock);
            answer->use = std::move(use);
            answer->at = clock.uptime();
            answer->isComing = false;
        });
    }

    const Clock& clock_;
    const Read read_;
    const std::shared_ptr<Answer> answer_ = std::make_shared<Answer>();
};

} // namespace kestrio
