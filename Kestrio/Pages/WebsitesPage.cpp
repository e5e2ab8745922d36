#include "Kestrio/Pages/WebsitesPage.h"

#include "Kestrio/Base/Formatters.h"
#include "Kestrio/Base/Text.h"

#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <set>

namespace kestrio {
namespace {

constexpr std::size_t initialPages = 25;

bool keeps(const ItemFilter& filter, const DomainUsage& site) {
    return filter.finds(site.domain) ||
           std::ranges::any_of(site.pages, [&](const UsageItem& page) { return filter.finds(page.title); });
}

/// The applications that showed the site, in the report's order.
std::string appNames(const ActivityReport& report, const std::string& domain) {
    std::set<std::string_view> showing;
    for (const auto* sessions : {&report.sessions, &report.alongsideSessions})
        for (const auto& session : *sessions)
            if (session.domain && text::equivalent(*session.domain, domain))
                showing.insert(session.bundleID);
    std::vector<std::string_view> names;
    for (const auto& app : report.apps)
        if (showing.contains(app.bundleID))
            names.push_back(app.name);
    return fmt::format("{}", fmt::join(names, ", "));
}

DetailHeader header(const ActivityReport& report, const DomainUsage& site) {
    auto header = detailHeader(rowIcon(siteIcon(site.domain)), site.domain, site.duration, report.total);
    header.stats = {fmt::format("{} visits", site.visits), fmt::format("{} pages", site.pages.size()),
                    appNames(report, site.domain)};
    header.note = Fmt::split(site.duration, site.alongside);
    return header;
}

ItemCard pagesCard(const DomainUsage& site, const ItemFilter& filter, const Viewpoint& viewpoint) {
    CardHead head{"Pages", "doc.richtext"};
    if (site.pages.empty())
        return messageCard(std::move(head), "Only played alongside — never the focused tab.");
    return filteredCard(std::move(head), initialPages, site.pages,
                        {.total = site.duration, .countLabel = "visits", .filter = filter}, viewpoint);
}

std::optional<TopCard<AlongsideRow>> alongsideCard(const ActivityReport& report, const DomainUsage& site,
                                                   const Viewpoint& viewpoint) {
    TopCard<AlongsideRow> card{.head = {"Played alongside", "rectangle.on.rectangle"}, .rows = {}};
    for (const auto& item : report.alongsideItems)
        if (item.domain && text::equivalent(*item.domain, site.domain))
            card.rows.push_back(alongsideRow(item, site.alongside, viewpoint));
    return card.rows.empty() ? std::nullopt : std::optional(std::move(card));
}

} // namespace

std::variant<EmptyActivity, WebsitesPage> websitesPage(const ActivityReport& report, const ItemFilter& filter) {
    if (report.domains.empty())
        return EmptyActivity{"No websites yet", "globe",
                             "Websites are read from the active tab in Chrome, Safari, Brave, Edge, Arc, Vivaldi and "
                             "Opera. If you use one of these, allow access in Settings › Permissions."};
    WebsitesPage page;
    const auto longest = report.domains.front().duration + report.domains.front().alongside;
    for (const auto& site : report.domains)
        if (keeps(filter, site))
            page.rows.push_back(usageRow(site, longest, SecondLine::splitOnly));
    if (page.rows.empty())
        page.message = noMatches;
    return page;
}

std::optional<DomainDetail> domainDetail(const ActivityReport& report, const DomainSelection& selection,
                                         const Viewpoint& viewpoint) {
    const auto site = std::ranges::find(report.domains, selection.domain, &DomainUsage::domain);
    if (site == report.domains.end())
        return std::nullopt;
    const auto belongs = [&](const ClassifiedSession& session) {
        return session.domain && text::equivalent(*session.domain, site->domain);
    };
    return DomainDetail{.header = header(report, *site),
                        .categoryMenu = categoryMenu(site->category, selection.categoryOrigin),
                        .pages = pagesCard(*site, selection.filter, viewpoint),
                        .alongside = alongsideCard(report, *site, viewpoint),
                        .trend = usageTrend(report, belongs, color(site->category), viewpoint.calendar)};
}

} // namespace kestrio
