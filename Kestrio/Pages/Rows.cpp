#include "Kestrio/Pages/Rows.h"

#include "Kestrio/Base/Formatters.h"

#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>

namespace kestrio {
namespace {

template <class Usage>
Seconds shownTime(const Usage& usage) {
    return usage.duration + usage.alongside;
}

template <class Usage>
std::vector<UsageRow> topRows(std::span<const Usage> usages, std::size_t limit) {
    std::vector<UsageRow> rows;
    for (const auto& usage : usages.first(std::min(limit, usages.size())))
        rows.push_back(usageRow(usage, shownTime(usages.front()), SecondLine::splitOrFirstItem));
    return rows;
}

/// What was in front and what was alongside, where that tells anything; else, if allowed, the first item.
std::optional<std::string> secondLine(Seconds focused, Seconds alongside, std::span<const UsageItem> items,
                                      SecondLine allowed) {
    if (auto split = Fmt::split(focused, alongside))
        return split;
    if (allowed == SecondLine::splitOnly || items.empty())
        return std::nullopt;
    return items.front().title;
}

} // namespace

EmptyActivity noActivityYet() {
    return {"No activity yet", "chart.bar.xaxis",
            "Use your Mac as usual — apps, websites and videos will show up here within a few seconds."};
}

double fraction(Seconds part, Seconds whole) {
    return whole > Seconds(0) ? std::clamp(part / whole, 0.0, 1.0) : 0;
}

UsageRow usageRow(const AppUsage& app, Seconds longest, SecondLine allowed) {
    return {.key = app.bundleID,
            .icon = AppIcon{app.bundleID},
            .title = app.name,
            .subtitle = secondLine(app.duration, app.alongside, app.items, allowed),
            .duration = Fmt::duration(shownTime(app)),
            .fraction = fraction(shownTime(app), longest),
            .tint = color(app.category)};
}

UsageRow usageRow(const DomainUsage& site, Seconds longest, SecondLine allowed) {
    return {.key = site.domain,
            .icon = rowIcon(siteIcon(site.domain)),
            .title = site.domain,
            .subtitle = secondLine(site.duration, site.alongside, site.pages, allowed),
            .duration = Fmt::duration(shownTime(site)),
            .fraction = fraction(shownTime(site), longest),
            .tint = color(site.category)};
}

std::vector<UsageRow> appRows(std::span<const AppUsage> apps, std::size_t limit) {
    return topRows(apps, limit);
}

std::vector<UsageRow> domainRows(std::span<const DomainUsage> domains, std::size_t limit) {
    return topRows(domains, limit);
}

std::vector<UsageRow> projectRows(std::span<const ProjectUsage> projects, std::size_t limit) {
    constexpr std::size_t namedApps = 3;
    std::vector<UsageRow> rows;
    for (const auto& project : projects.first(std::min(limit, projects.size()))) {
        std::vector<std::string_view> apps;
        for (const auto& app : std::span(project.apps).first(std::min(namedApps, project.apps.size())))
            apps.push_back(app.title);
        rows.push_back(
            {.key = project.name,
             .icon = SymbolIcon{"folder.fill"},
             .title = project.name,
             .subtitle = apps.empty() ? std::nullopt : std::optional(fmt::format("{}", fmt::join(apps, ", "))),
             .duration = Fmt::duration(project.duration),
             .fraction = fraction(project.duration, projects.front().duration),
             .tint = SystemColor::blue});
    }
    return rows;
}

UsageItemRow usageItemRow(const UsageItem& item, Seconds total, std::string_view countLabel, Links links,
                          const Viewpoint& viewpoint) {
    return {.id = item.id,
            .title = item.title,
            .subtitle = item.subtitle,
            .detail = fmt::format("{} {} · last {}", item.count, countLabel,
                                  Fmt::lastSeen(item.lastSeen, viewpoint.now, viewpoint.calendar)),
            .link = links == Links::shown ? item.url : std::nullopt,
            .duration = Fmt::duration(item.duration),
            .fraction = fraction(item.duration, total)};
}

AlongsideBadge alongsideBadge(SessionKind kind) {
    const std::string title(label(kind));
    switch (kind) {
    case SessionKind::focus: return {title, std::nullopt, "cursorarrow.rays"};
    case SessionKind::watching: return {title, "Watching alongside", "play.rectangle.fill"};
    case SessionKind::listening: return {title, "Listening in background", "headphones"};
    }
    return {};
}

AlongsideRow alongsideRow(const AlongsideItem& item, Seconds total, const Viewpoint& viewpoint) {
    return {.id = item.id,
            .icon = item.domain ? rowIcon(siteIcon(*item.domain)) : AppIcon{item.bundleID},
            .title = item.title.empty() ? item.appName : item.title,
            .badge = alongsideBadge(item.kind),
            .detail = fmt::format("{} · last {}", item.domain.value_or(item.appName),
                                  Fmt::lastSeen(item.lastSeen, viewpoint.now, viewpoint.calendar)),
            .duration = Fmt::duration(item.duration),
            .fraction = fraction(item.duration, total)};
}

CategoryPill categoryPill(ActivityCategory category) {
    return {std::string(label(category)), color(category)};
}

DetailHeader detailHeader(RowIcon icon, std::string title, Seconds duration, Seconds total) {
    return {.icon = std::move(icon),
            .title = std::move(title),
            .duration = Fmt::duration(duration),
            .share = Fmt::percent(duration.count(), total.count()) + " of active time",
            .stats = {},
            .note = {}};
}

std::vector<UsageItemRow> itemRows(std::span<const UsageItem> items, const ItemListing& listing,
                                   const Viewpoint& viewpoint) {
    std::vector<UsageItemRow> rows;
    for (const auto& item : items)
        if (listing.filter.keeps(item))
            rows.push_back(usageItemRow(item, listing.total, listing.countLabel, listing.links, viewpoint));
    return rows;
}

ItemCard filteredCard(CardHead head, std::size_t initialCount, std::span<const UsageItem> items,
                      const ItemListing& listing, const Viewpoint& viewpoint) {
    auto rows = itemRows(items, listing, viewpoint);
    const bool isLeftEmpty = rows.empty() && !items.empty();
    return {.head = std::move(head),
            .hasFilter = true,
            .initialCount = initialCount,
            .rows = std::move(rows),
            .message = isLeftEmpty ? std::optional<std::string>(noMatches) : std::nullopt};
}

ItemCard messageCard(CardHead head, std::string message) {
    return {.head = std::move(head), .hasFilter = false, .initialCount = 0, .rows = {}, .message = std::move(message)};
}

} // namespace kestrio
