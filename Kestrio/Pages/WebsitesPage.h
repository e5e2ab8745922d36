// The sites of a report: the list, and what is told of the one that is selected. Plain values.
#pragma once

#include "Kestrio/Pages/CategoryMenu.h"
#include "Kestrio/Pages/OverviewPage.h"
#include "Kestrio/Pages/UsageTrend.h"

namespace kestrio {

struct WebsitesPage {
    static Placeholder placeholder() { return {"Select a website", "globe"}; }

    std::vector<UsageRow> rows;         // by domain
    std::optional<std::string> message; // when the filter leaves nothing
    friend bool operator==(const WebsitesPage&, const WebsitesPage&) = default;
};

/// The filter looks into the titles of a site's pages too.
std::variant<EmptyActivity, WebsitesPage> websitesPage(const ActivityReport& report, const ItemFilter& filter);

struct DomainDetail {
    DetailHeader header;
    CategoryMenu categoryMenu;
    ItemCard pages;
    std::optional<TopCard<AlongsideRow>> alongside; // absent when nothing played
    UsageTrend trend;
    friend bool operator==(const DomainDetail&, const DomainDetail&) = default;
};

struct DomainSelection {
    std::string domain;
    CategoryOrigin categoryOrigin = CategoryOrigin::byDefault;
    ItemFilter filter = {};
};

/// Absent when the report does not have the site: the placeholder then shows.
std::optional<DomainDetail> domainDetail(const ActivityReport& report, const DomainSelection& selection,
                                         const Viewpoint& viewpoint);

} // namespace kestrio
