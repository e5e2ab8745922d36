// The applications of a report: the list, and what is told of the one that is selected. Plain values.
#pragma once

#include "Kestrio/Pages/CategoryMenu.h"
#include "Kestrio/Pages/OverviewPage.h"
#include "Kestrio/Pages/UsageTrend.h"

namespace kestrio {

struct AppsPage {
    static Placeholder placeholder() { return {"Select an app", "macwindow"}; }

    std::vector<UsageRow> rows; // by bundle identifier
    friend bool operator==(const AppsPage&, const AppsPage&) = default;
};

std::variant<EmptyActivity, AppsPage> appsPage(const ActivityReport& report);

struct AppDetail {
    DetailHeader header;
    CategoryMenu categoryMenu;
    std::optional<TopCard<UsageRow>> websites; // of a browser that showed any
    ItemCard windows;
    std::optional<ItemCard> alongside; // absent when nothing played
    UsageTrend trend;
    friend bool operator==(const AppDetail&, const AppDetail&) = default;
};

enum class AppSort { browser, other };

/// What is selected, and what the report does not know about it.
struct AppSelection {
    std::string bundleID;
    AppSort sort = AppSort::other;
    CategoryOrigin categoryOrigin = CategoryOrigin::byDefault;
    ItemFilter filter = {};
};

/// Absent when the report does not have the application: the placeholder then shows.
std::optional<AppDetail> appDetail(const ActivityReport& report, const AppSelection& selection,
                                   const Viewpoint& viewpoint);

} // namespace kestrio
