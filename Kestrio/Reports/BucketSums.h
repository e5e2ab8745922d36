// Seconds per hour or day and category: the columns of a chart.
#pragma once

#include "Kestrio/Reports/IntervalWalk.h"

#include <vector>

namespace kestrio {

class BucketSums {
public:
    /// The calendar must outlive the sums.
    BucketSums(const Calendar& calendar, Granularity granularity) : walk_(calendar, granularity) {}

    /// Adds a span, cut at every border of an hour or day. Quick when spans come in the order of their starts.
    void add(Date start, Date end, ActivityCategory category);

    /// Ascending by start, then by the category's raw text.
    std::vector<TimeBucket> timeBuckets() const;

    /// Ascending by start.
    std::vector<SimpleBucket> simpleBuckets() const;

private:
    struct Sum {
        Date start;
        CategoryTimes times;
    };

    CategoryTimes& timesFrom(Date start);

    IntervalWalk walk_;
    std::vector<Sum> sums_; // ascending by start
    std::size_t latest_ = 0;
};

} // namespace kestrio
