#include "Kestrio/Reports/Report.h"

#include <fmt/format.h>

namespace kestrio {

std::string_view rawValue(Granularity granularity) {
    switch (granularity) {
    case Granularity::hour: return "hour";
    case Granularity::day: return "day";
    }
    return {};
}

std::string TimeBucket::id() const {
    return fmt::format("{}-{}", start.seconds(), rawValue(category));
}

std::string TimelineBlock::searchText() const {
    std::string text = appName;
    for (const auto& entry : entries) {
        text += ' ';
        text += entry.title;
        text += ' ';
        text += entry.domain.value_or("");
    }
    return text;
}

ActivityReport ActivityReport::empty(DateInterval interval, Granularity granularity) {
    ActivityReport report;
    report.interval = interval;
    report.granularity = granularity;
    return report;
}

} // namespace kestrio
