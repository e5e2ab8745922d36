#include "Kestrio/Reports/BucketSums.h"

namespace kestrio {

void BucketSums::add(Date start, Date end, ActivityCategory category) {
    walk_.cut(start, end, [&](Date interval, Seconds slice) { timesFrom(interval).add(category, slice); });
}

CategoryTimes& BucketSums::timesFrom(Date start) {
    if (latest_ < sums_.size() && sums_[latest_].start == start)
        return sums_[latest_].times;
    const auto found = std::lower_bound(sums_.begin(), sums_.end(), start,
                                        [](const Sum& sum, Date wanted) { return sum.start < wanted; });
    latest_ = static_cast<std::size_t>(found - sums_.begin());
    if (found == sums_.end() || found->start != start)
        sums_.insert(found, {start, {}});
    return sums_[latest_].times;
}

std::vector<TimeBucket> BucketSums::timeBuckets() const {
    std::vector<TimeBucket> buckets;
    for (const auto& sum : sums_) {
        const auto first = buckets.size();
        sum.times.forEach([&](ActivityCategory category, Seconds time) {
            buckets.push_back({sum.start, category, time});
        });
        std::sort(buckets.begin() + static_cast<std::ptrdiff_t>(first), buckets.end(),
                  [](const TimeBucket& a, const TimeBucket& b) { return rawValue(a.category) < rawValue(b.category); });
    }
    return buckets;
}

std::vector<SimpleBucket> BucketSums::simpleBuckets() const {
    std::vector<SimpleBucket> buckets;
    for (const auto& sum : sums_) {
        Seconds total{};
        sum.times.forEach([&](ActivityCategory, Seconds time) { total += time; });
        buckets.push_back({sum.start, total});
    }
    return buckets;
}

} // namespace kestrio
