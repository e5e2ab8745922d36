// The pieces that several pages are made of: rows, cards, heads of detail panes, empty states. Plain values in the
// words that show; nothing is composed after them.
#pragma once

#include "Kestrio/Pages/Icons.h"
#include "Kestrio/Pages/ItemFilter.h"
#include "Kestrio/Pages/Viewpoint.h"
#include "Kestrio/Reports/Report.h"

#include <optional>
#include <span>
#include <vector>

namespace kestrio {

/// A page without anything to show.
struct EmptyActivity {
    std::string title;
    std::string symbol;
    std::string message;
    friend bool operator==(const EmptyActivity&, const EmptyActivity&) = default;
};

/// What pages say before anything was recorded.
EmptyActivity noActivityYet();

/// What stands beside a list in which nothing is selected.
struct Placeholder {
    std::string title;
    std::string symbol;
    friend bool operator==(const Placeholder&, const Placeholder&) = default;
};

/// The head of a titled panel.
struct CardHead {
    std::string title;
    std::optional<std::string> symbol;
    friend bool operator==(const CardHead&, const CardHead&) = default;
};

struct SeeAllButton {
    static constexpr auto title = "See all";
    static constexpr auto symbol = "chevron.right";
};

struct OpenLinkButton {
    static constexpr auto title = "Open";
    static constexpr auto symbol = "arrow.up.right.square";
};

struct ChartNote {
    static constexpr auto symbol = "info.circle";
};

/// A row that shows what it consists of, or does not, for those who do not see it.
struct Disclosure {
    static constexpr auto opened = "expanded";
    static constexpr auto closed = "collapsed";
};

/// One figure. Cards stand in a grid of cells at least so many points wide.
struct StatCard {
    static constexpr double leastWidth = 148;

    std::string title;
    std::string symbol;
    std::string value;
    std::optional<std::string> detail;
    SystemColor tint = SystemColor::gray;
    std::optional<std::string> help = {};
    friend bool operator==(const StatCard&, const StatCard&) = default;
};

/// A row with a bar and its duration at the right. `key` is what the row is about: a bundle identifier, a domain, ...
struct UsageRow {
    std::string key;
    RowIcon icon;
    std::string title;
    std::optional<std::string> subtitle;
    std::string duration;
    double fraction = 0; // of the bar, from 0 to 1
    SystemColor tint = SystemColor::gray;
    friend bool operator==(const UsageRow&, const UsageRow&) = default;
};

// All the rows of applications and sites compare what was in front and alongside together with the first row's.
std::vector<UsageRow> appRows(std::span<const AppUsage> apps, std::size_t limit);
std::vector<UsageRow> domainRows(std::span<const DomainUsage> domains, std::size_t limit);
std::vector<UsageRow> projectRows(std::span<const ProjectUsage> projects, std::size_t limit);

/// Whether the second line may name the first item where there is nothing to tell apart.
enum class SecondLine { splitOnly, splitOrFirstItem };
UsageRow usageRow(const AppUsage& app, Seconds longest, SecondLine secondLine);
UsageRow usageRow(const DomainUsage& site, Seconds longest, SecondLine secondLine);

/// The part of a whole, from 0 to 1; of nothing, 0.
double fraction(Seconds part, Seconds whole);

/// A row of a detail list.
struct UsageItemRow {
    std::string id;
    std::string title;
    std::optional<std::string> subtitle;
    std::string detail;              // "{count} {countLabel} · last {lastSeen}"
    std::optional<std::string> link; // what the button opens
    std::string duration;
    double fraction = 0;
    friend bool operator==(const UsageItemRow&, const UsageItemRow&) = default;
};

enum class Links { hidden, shown };

UsageItemRow usageItemRow(const UsageItem& item, Seconds total, std::string_view countLabel, Links links,
                          const Viewpoint& viewpoint);

/// Says of which kind a session was.
struct AlongsideBadge {
    std::string title;
    std::optional<std::string> help;
    std::string symbol;
    friend bool operator==(const AlongsideBadge&, const AlongsideBadge&) = default;
};

AlongsideBadge alongsideBadge(SessionKind kind);

/// A thing played alongside.
struct AlongsideRow {
    std::string id;
    RowIcon icon;
    std::string title;
    AlongsideBadge badge;
    std::string detail; // "{site or application} · last {lastSeen}"
    std::string duration;
    double fraction = 0;
    friend bool operator==(const AlongsideRow&, const AlongsideRow&) = default;
};

AlongsideRow alongsideRow(const AlongsideItem& item, Seconds total, const Viewpoint& viewpoint);

struct CategoryPill {
    std::string label;
    SystemColor color = SystemColor::gray;
    friend bool operator==(const CategoryPill&, const CategoryPill&) = default;
};

CategoryPill categoryPill(ActivityCategory category);

/// The head of a detail pane.
struct DetailHeader {
    RowIcon icon;
    std::string title;
    std::string duration;
    std::string share; // "{percent} of active time"
    std::vector<std::string> stats;
    std::optional<std::string> note;
    friend bool operator==(const DetailHeader&, const DetailHeader&) = default;
};

DetailHeader detailHeader(RowIcon icon, std::string title, Seconds duration, Seconds total);

inline constexpr auto noMatches = "No matches.";

/// A card of rows that a person can filter, or the message that stands in their place.
struct ItemCard {
    CardHead head;
    bool hasFilter = false;
    std::size_t initialCount = 0; // of its `ExpandableList`
    std::vector<UsageItemRow> rows;
    std::optional<std::string> message;
    friend bool operator==(const ItemCard&, const ItemCard&) = default;
};

/// How a card presents items.
struct ItemListing {
    Seconds total; // to which the bars compare
    std::string_view countLabel;
    Links links = Links::shown;
    ItemFilter filter = {};
};

/// The items that the filter keeps.
std::vector<UsageItemRow> itemRows(std::span<const UsageItem> items, const ItemListing& listing,
                                   const Viewpoint& viewpoint);

/// A card with a filter over the items; "No matches." when it leaves nothing.
ItemCard filteredCard(CardHead head, std::size_t initialCount, std::span<const UsageItem> items,
                      const ItemListing& listing, const Viewpoint& viewpoint);

/// A card that says why it is empty.
ItemCard messageCard(CardHead head, std::string message);

} // namespace kestrio
