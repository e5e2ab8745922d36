// The agent, but for one thing: with KESTRIO_STEP in the environment its optimizer stands still for ever before that
// deed, such as "stop 3", and says so by a file "there" in the folder KESTRIO_NOTES. For tests that murder it there.
#include "Programs/Agent/Agent.h"
#include "Tests/Support/SteppedSignals.h"

#include <memory>

namespace kestrio {
namespace {

class SteppedProcessSignals final : public ProcessSignals {
public:
    SteppedProcessSignals(std::unique_ptr<ProcessSignals> real, Steps steps)
        : real_(std::move(real)), steps_(std::move(steps)), signals_(*real_, steps_) {}

    ProcessCondition condition(ProcessKey key) override { return signals_.condition(key); }
    bool stop(ProcessKey key) override { return signals_.stop(key); }
    bool resume(ProcessKey key) override { return signals_.resume(key); }
    std::optional<ProcessPriority> priority(ProcessKey key) override { return signals_.priority(key); }
    bool slow(ProcessKey key) override { return signals_.slow(key); }
    bool restore(ProcessKey key, const ProcessPriority& before) override { return signals_.restore(key, before); }
    std::vector<ProcessKey> heirs(const ProcessPriority& before) override { return signals_.heirs(before); }

private:
    const std::unique_ptr<ProcessSignals> real_;
    Steps steps_;
    SteppedSignals signals_;
};

std::unique_ptr<ProcessSignals> stepped(std::unique_ptr<ProcessSignals> real) {
    return std::make_unique<SteppedProcessSignals>(
        std::move(real),
        Steps(processEnvironment("KESTRIO_STEP").value_or(""), processEnvironment("KESTRIO_NOTES").value_or("")));
}

} // namespace
} // namespace kestrio

int main() {
    return kestrio::runAgent({.isLoginItem = true, .onChange = {}, .wrapSignals = kestrio::stepped});
}
