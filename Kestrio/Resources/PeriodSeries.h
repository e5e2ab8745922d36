// Makes the periods of a chart from the log's rows as these come by, in the order of time.
//
// Periods in the making hold sums where they will hold averages, so that sums can be joined to sums. Plain values; the
// columns of a row are those that the store's series name.
#pragma once

#include "Kestrio/Base/SqliteFold.h"
#include "Kestrio/Resources/ResourceRecords.h"

#include <cstdint>
#include <vector>

namespace kestrio {

void add(SystemBucket& bucket, sqlite::RowValues row);
void add(SecondBucket& bucket, sqlite::RowValues row);

/// Joins the sums of later minutes to those of a period.
void add(SystemBucket& bucket, const SystemBucket& sums);

/// Makes averages of sums over so many rows.
void finish(SystemBucket& bucket, double rows);
void finish(SecondBucket& bucket, double rows);

template <class Bucket>
class PeriodSeries {
public:
    /// Periods of so many seconds, aligned to 1970.
    explicit PeriodSeries(std::int64_t length) : length_(length) {}

    /// A row, whose first value is its time.
    void receive(sqlite::RowValues row) {
        auto& period = periodOf(row.integer());
        ++period.rows;
        add(period.bucket, row);
    }

    /// What so many rows from one time on come to.
    void receive(std::int64_t time, const Bucket& sums, std::int64_t rows) {
        auto& period = periodOf(time);
        period.rows += static_cast<double>(rows);
        add(period.bucket, sums);
    }

    std::vector<Bucket> averages() const {
        auto buckets = sums();
        for (std::size_t i = 0; i < buckets.size(); ++i)
            finish(buckets[i], periods_[i].rows);
        return buckets;
    }

    /// The same with sums where averages would be.
    std::vector<Bucket> sums() const {
        std::vector<Bucket> buckets;
        buckets.reserve(periods_.size());
        for (const auto& period : periods_)
            buckets.push_back(period.bucket);
        return buckets;
    }

private:
    struct Period {
        std::int64_t start;
        Bucket bucket;
        double rows;
    };

    Period& periodOf(std::int64_t time) {
        const auto start = time / length_ * length_;
        if (periods_.empty() || start != periods_.back().start)
            periods_.push_back({start, {.start = Date(static_cast<double>(start))}, 0});
        return periods_.back();
    }

    const std::int64_t length_;
    std::vector<Period> periods_;
};

} // namespace kestrio
