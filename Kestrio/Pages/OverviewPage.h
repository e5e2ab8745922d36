// The first page: the figures of a range at a glance, and the first few of every list. Plain values.
#pragma once

#include "Kestrio/Pages/ActivityChart.h"
#include "Kestrio/Pages/CategoryBreakdown.h"
#include "Kestrio/Pages/DashboardSection.h"
#include "Kestrio/Reports/RangeMode.h"

namespace kestrio {

/// A card of rows with the button that leads to their page, or the text that stands in their place.
template <class Row>
struct TopCard {
    CardHead head;
    std::vector<Row> rows;
    std::optional<DashboardSection> seeAll = {};
    std::optional<std::string> message = {};
    std::optional<std::string> note = {};
    friend bool operator==(const TopCard&, const TopCard&) = default;
};

/// A card that holds a chart, which is made from the same report.
template <class Chart>
struct ChartCard {
    CardHead head;
    Chart chart;
    friend bool operator==(const ChartCard&, const ChartCard&) = default;
};

struct OverviewPage {
    static constexpr std::size_t topLimit = 7;
    static constexpr std::size_t furtherLimit = 6;

    std::vector<StatCard> stats;
    ChartCard<ActivityChart> activity;
    ChartCard<CategoryBreakdown> categories;
    TopCard<UsageRow> apps;
    TopCard<UsageRow> websites;
    TopCard<UsageRow> youtube;
    std::optional<TopCard<AlongsideRow>> alongside; // absent when nothing played
    std::optional<TopCard<UsageRow>> projects;      // absent without any
    friend bool operator==(const OverviewPage&, const OverviewPage&) = default;
};

std::variant<EmptyActivity, OverviewPage> overviewPage(const ActivityReport& report, RangeMode mode,
                                                       Thumbnails thumbnails, const Viewpoint& viewpoint);

/// The six figures.
std::vector<StatCard> overviewStats(const ActivityReport& report, RangeMode mode, const Calendar& calendar);

} // namespace kestrio
