#include "Kestrio/Monitor/SystemMonitor.h"

namespace kestrio {
namespace {

constexpr Seconds intervalWithPanel{2};
constexpr Seconds intervalWithoutPanel{3};
constexpr double toleranceShare = 0.2;

/// The first detailed sample has nothing to compare the applications' CPU time with; the next one has this much.
constexpr Seconds firstComparison{1};

/// A cheap sample, and one whose sensors said nothing, does not blank what is known.
SystemSnapshot completed(SystemSnapshot snapshot, const SystemSnapshot& earlier) {
    if (snapshot.topMemory.empty()) {
        snapshot.topCPU = earlier.topCPU;
        snapshot.topMemory = earlier.topMemory;
        snapshot.hasAppCPU = earlier.hasAppCPU;
    }
    if (!snapshot.temperature)
        snapshot.temperature = earlier.temperature;
    return snapshot;
}

} // namespace

SystemMonitor::SystemMonitor(Queue& main, Queue& worker, SystemSampler& sampler, Setup setup)
    : main_(main), worker_(worker), sampler_(sampler), setup_(std::move(setup)) {}

SystemMonitor::~SystemMonitor() {
    if (inFlight_)
        worker_.sync([] {});
}

void SystemMonitor::start() {
    scheduleTimer();
    refresh();
}

void SystemMonitor::setPanelVisible(bool isVisible) {
    if (isVisible == isPanelVisible_)
        return;
    isPanelVisible_ = isVisible;
    scheduleTimer();
    if (!isVisible)
        return;
    refresh();
    secondRefresh_ = main_.after(firstComparison, [this] { refresh(); });
}

void SystemMonitor::scheduleTimer() {
    const auto interval = isPanelVisible_ ? intervalWithPanel : intervalWithoutPanel;
    timer_ = main_.every({.interval = interval, .tolerance = toleranceShare * interval}, [this] { timerFired(); });
}

void SystemMonitor::timerFired() {
    if (isPanelVisible_ || setup_.isIconShown())
        refresh();
}

void SystemMonitor::refresh() {
    if (inFlight_)
        return;
    inFlight_ = true;
    const auto detail = isPanelVisible_ ? SampleDetail::detailed : SampleDetail::cheap;
    worker_.async([&sampler = sampler_, &main = main_, detail, self = std::weak_ptr(self_)] {
        main.async([snapshot = sampler.sample(detail), self] {
            if (const auto monitor = self.lock())
                (*monitor)->apply(snapshot);
        });
    });
}

void SystemMonitor::apply(SystemSnapshot snapshot) {
    inFlight_ = false;
    auto next = state_.value();
    next.snapshot = next.snapshot ? completed(std::move(snapshot), *next.snapshot) : std::move(snapshot);
    next.cpuHistory.push_back(next.snapshot->cpu);
    if (next.cpuHistory.size() > longestHistory)
        next.cpuHistory.erase(next.cpuHistory.begin());
    next.insights = SystemInsight::make(*next.snapshot, next.cpuHistory, setup_.calendar);
    state_.set(std::move(next));
}

} // namespace kestrio
