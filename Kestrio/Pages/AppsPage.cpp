#include "Kestrio/Pages/AppsPage.h"

#include "Kestrio/Base/Formatters.h"
#include "Kestrio/Base/Text.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>

namespace kestrio {
namespace {

constexpr std::size_t initialItems = 25;

struct SiteTime {
    std::string_view domain;
    Seconds duration{};
};

/// The sites that the sessions of an application were on, longest first; equal ones by name.
std::vector<SiteTime> sites(const ActivityReport& report, std::string_view bundleID) {
    std::map<std::string_view, Seconds> times;
    for (const auto& session : report.sessions)
        if (session.domain && text::equivalent(session.bundleID, bundleID))
            times[*session.domain] += session.duration();
    std::vector<SiteTime> all;
    for (const auto& [domain, time] : times)
        all.push_back({domain, time});
    std::ranges::stable_sort(all, std::ranges::greater(), &SiteTime::duration);
    return all;
}

/// Of the site itself, whatever application showed it.
SystemColor siteColor(const ActivityReport& report, std::string_view domain) {
    const auto site = std::ranges::find_if(
        report.domains, [&](const DomainUsage& one) { return text::equivalent(one.domain, domain); });
    return site == report.domains.end() ? SystemColor::gray : color(site->category);
}

std::optional<TopCard<UsageRow>> websitesCard(const ActivityReport& report, const AppUsage& app, AppSort sort) {
    constexpr std::size_t limit = 10;
    if (sort != AppSort::browser)
        return std::nullopt;
    const auto all = sites(report, app.bundleID);
    if (all.empty())
        return std::nullopt;
    TopCard<UsageRow> card{.head = {"Websites in " + app.name, "globe"}, .rows = {}};
    for (const auto& site : std::span(all).first(std::min(limit, all.size())))
        card.rows.push_back({.key = std::string(site.domain),
                             .icon = rowIcon(siteIcon(std::string(site.domain))),
                             .title = std::string(site.domain),
                             .subtitle = {},
                             .duration = Fmt::duration(site.duration),
                             .fraction = fraction(site.duration, all.front().duration),
                             .tint = siteColor(report, site.domain)});
    return card;
}

ItemCard windowsCard(const AppUsage& app, const AppSelection& selection, const Viewpoint& viewpoint) {
    CardHead head{selection.sort == AppSort::browser ? "Pages" : "Windows & Activity", "list.bullet"};
    if (app.items.empty() && !app.alongsideItems.empty())
        return messageCard(std::move(head), "Only played alongside — never the focused window.");
    if (app.items.empty())
        return messageCard(std::move(head), "No window titles recorded. Grant Accessibility access to see them.");
    const ItemListing listing{.total = app.duration, .countLabel = "times", .filter = selection.filter};
    return filteredCard(std::move(head), initialItems, app.items, listing, viewpoint);
}

std::optional<ItemCard> alongsideCard(const AppUsage& app, const Viewpoint& viewpoint) {
    if (app.alongsideItems.empty())
        return std::nullopt;
    return ItemCard{.head = {"Played alongside", "rectangle.on.rectangle"},
                    .hasFilter = false,
                    .initialCount = initialItems,
                    .rows = itemRows(app.alongsideItems, {.total = app.alongside, .countLabel = "times"}, viewpoint),
                    .message = {}};
}

DetailHeader header(const ActivityReport& report, const AppUsage& app, std::int64_t sessions) {
    auto header = detailHeader(AppIcon{app.bundleID}, app.name, app.duration, report.total);
    header.stats = {fmt::format("{} sessions", sessions), app.bundleID};
    header.note = Fmt::split(app.duration, app.alongside);
    return header;
}

} // namespace

std::variant<EmptyActivity, AppsPage> appsPage(const ActivityReport& report) {
    if (report.apps.empty())
        return noActivityYet();
    AppsPage page;
    const auto longest = report.apps.front().duration + report.apps.front().alongside;
    for (const auto& app : report.apps)
        page.rows.push_back(usageRow(app, longest, SecondLine::splitOnly));
    return page;
}

std::optional<AppDetail> appDetail(const ActivityReport& report, const AppSelection& selection,
                                   const Viewpoint& viewpoint) {
    const auto app = std::ranges::find(report.apps, selection.bundleID, &AppUsage::bundleID);
    if (app == report.apps.end())
        return std::nullopt;
    const auto belongs = [&](const ClassifiedSession& session) {
        return text::equivalent(session.bundleID, app->bundleID);
    };
    return AppDetail{.header = header(report, *app, std::ranges::count_if(report.sessions, belongs)),
                     .categoryMenu = categoryMenu(app->category, selection.categoryOrigin),
                     .websites = websitesCard(report, *app, selection.sort),
                     .windows = windowsCard(*app, selection, viewpoint),
                     .alongside = alongsideCard(*app, viewpoint),
                     .trend = usageTrend(report, belongs, color(app->category), viewpoint.calendar)};
}

} // namespace kestrio
