#include "Kestrio/Resources/OwnCost.h"

namespace kestrio {
namespace {

/// A counter that fell counts nothing: threads take theirs with them when they end.
double increase(std::uint64_t newer, std::uint64_t older) {
    return newer > older ? static_cast<double>(newer - older) : 0;
}

} // namespace

bool OwnCostWatch::isReadingDue(Uptime now) const {
    return readings_.empty() || now - readings_.back().at >= readingInterval;
}

void OwnCostWatch::add(const OwnUse& use, Uptime now) {
    if (!readings_.empty() && now <= readings_.back().at)
        return;
    readings_.push_back({use, now});
    while (readings_.size() > 2 && now - readings_[1].at >= window)
        readings_.pop_front();
}

std::optional<OwnCost> OwnCostWatch::cost() const {
    if (readings_.size() < 2)
        return std::nullopt;
    const auto& older = readings_.front();
    const auto& newer = readings_.back();
    const auto span = newer.at - older.at;
    return OwnCost{.span = span,
                   .cores = (newer.use.cpu - older.use.cpu) / span,
                   .memory = newer.use.memory,
                   .wakeupsPerSecond = increase(newer.use.wakeups, older.use.wakeups) / span.count(),
                   .bytesWrittenPerSecond = increase(newer.use.bytesWritten, older.use.bytesWritten) / span.count()};
}

bool OwnCostWatch::isOverBudget() const {
    const auto measured = cost();
    return measured && measured->span >= window && measured->cores > budget;
}

} // namespace kestrio
